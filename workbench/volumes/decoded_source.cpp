#include "workbench/volumes/decoded_source.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string_view>

#define ZLIB_CONST
#include <zlib.h>

namespace volumes {

namespace {
constexpr std::size_t INPUT_SIZE = 256U * 1024U;  // bytes read from the file at once
constexpr int GZIP_WINDOW_BITS = 15 + 16;         // zlib: largest window, gzip header and trailer
constexpr std::array<std::uint8_t, 2> GZIP_MAGIC = {0x1F, 0x8B};
constexpr std::size_t SKIP_SIZE = 64U * 1024U;
}  // namespace

struct Decoded_Source::Inflater {
    z_stream stream{};
    bool ready = false;
    Inflater() { ready = ::inflateInit2(&stream, GZIP_WINDOW_BITS) == Z_OK; }
    ~Inflater() {
        if (ready) {
            ::inflateEnd(&stream);
        }
    }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
};

Decoded_Source::Decoded_Source(Byte_Source& coded_source) : source(coded_source), input(INPUT_SIZE) {
    Refill();
    if (input_end >= GZIP_MAGIC.size() && std::equal(GZIP_MAGIC.begin(), GZIP_MAGIC.end(), input.begin())) {
        inflater = std::make_unique<Inflater>();
        end = inflater->ready ? Decode_End::Not_Yet : Decode_End::No_Memory;
    }
}

Decoded_Source::~Decoded_Source() = default;

std::optional<std::uint64_t> Decoded_Source::Size() const {
    return Compressed() ? std::nullopt : source.Size();
}

std::size_t Decoded_Source::Read(std::span<std::uint8_t> buffer) {
    if (end != Decode_End::Not_Yet) {
        return 0;
    }
    return Compressed() ? Read_Gzip(buffer) : Read_Plain(buffer);
}

std::uint64_t Decoded_Source::Skip(std::uint64_t count) {
    std::vector<std::uint8_t> sink(static_cast<std::size_t>(std::min<std::uint64_t>(count, SKIP_SIZE)));
    std::uint64_t done = 0;
    while (done < count) {
        const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count - done, sink.size()));
        const std::size_t got = Read(std::span(sink).first(wanted));
        done += got;
        if (got < wanted) {
            break;
        }
    }
    return done;
}

// False when no byte came.
bool Decoded_Source::Refill() {
    input_begin = 0;
    input_end = source.Read(input);
    return input_end > 0;
}

std::size_t Decoded_Source::Read_Plain(std::span<std::uint8_t> buffer) {
    std::size_t done = 0;
    while (done < buffer.size()) {
        if (input_begin == input_end && !Refill()) {
            end = source.Failed() ? Decode_End::Read_Error : Decode_End::Complete;
            break;
        }
        const std::size_t count = std::min(buffer.size() - done, input_end - input_begin);
        std::memcpy(buffer.data() + done, input.data() + input_begin, count);
        done += count;
        input_begin += count;
    }
    return done;
}

std::size_t Decoded_Source::Read_Gzip(std::span<std::uint8_t> buffer) {
    z_stream& stream = inflater->stream;
    std::size_t done = 0;
    while (done < buffer.size() && end == Decode_End::Not_Yet) {
        if (input_begin == input_end && !Refill()) {
            end = source.Failed() ? Decode_End::Read_Error : Decode_End::Cut_Off;
            break;
        }
        const std::size_t room = std::min<std::size_t>(buffer.size() - done, std::numeric_limits<uInt>::max());
        stream.next_in = input.data() + input_begin;
        stream.avail_in = static_cast<uInt>(input_end - input_begin);
        stream.next_out = buffer.data() + done;
        stream.avail_out = static_cast<uInt>(room);
        const int result = ::inflate(&stream, Z_NO_FLUSH);
        input_begin = input_end - stream.avail_in;
        done += room - stream.avail_out;
        if (result == Z_STREAM_END) {
            Member_Finish();
        } else if (result == Z_MEM_ERROR) {
            end = Decode_End::No_Memory;
        } else if (result != Z_OK && result != Z_BUF_ERROR) {
            const std::string_view reason = stream.msg != nullptr ? stream.msg : "";
            const bool trailer = reason == "incorrect data check" || reason == "incorrect length check";
            end = trailer ? Decode_End::Wrong_Checksum : Decode_End::Damaged;
        }
    }
    return done;
}

// After one member: another may follow at once, or the content is complete.
void Decoded_Source::Member_Finish() {
    if (input_end - input_begin < GZIP_MAGIC.size()) {
        // The next member's mark may straddle two blocks: move the rest to the front and fill up.
        const std::size_t rest = input_end - input_begin;
        std::memmove(input.data(), input.data() + input_begin, rest);
        input_begin = 0;
        input_end = rest + source.Read(std::span(input).subspan(rest));
    }
    const std::size_t left = input_end - input_begin;
    if (left == 0) {
        end = source.Failed() ? Decode_End::Read_Error : Decode_End::Complete;
    } else if (left >= GZIP_MAGIC.size() &&
               std::memcmp(input.data() + input_begin, GZIP_MAGIC.data(), GZIP_MAGIC.size()) == 0) {
        end = ::inflateReset(&inflater->stream) == Z_OK ? Decode_End::Not_Yet : Decode_End::Damaged;
    } else {
        garbage = true;
        end = Decode_End::Complete;
    }
}

std::string Decode_End_Text(Decode_End end, const std::string& present) {
    switch (end) {
        case Decode_End::Read_Error:
            return "cannot be read to its end: " + present;
        case Decode_End::Damaged:
            return "is corrupt: its compressed data are damaged, " + present;
        case Decode_End::Wrong_Checksum:
            return "is corrupt: its checksum does not fit its data, " + present;
        case Decode_End::No_Memory:
            return "cannot be decompressed for want of memory";
        case Decode_End::Not_Yet:
        case Decode_End::Complete:
        case Decode_End::Cut_Off:
            break;
    }
    return "is truncated: " + present;
}

}  // namespace volumes
