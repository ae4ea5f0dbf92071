#include "workbench/volumes/packed_source.h"

#include <algorithm>
#include <limits>
#include <new>
#include <vector>

#define ZLIB_CONST
#include <zlib.h>

#include "workbench/volumes/decoded_source.h"

namespace volumes {

namespace {

constexpr std::size_t BLOCK_SIZE = 64U * 1024U;

/** What zlib has packed without the frame of gzip. */
class Zlib_Source : public Byte_Source {
  public:
    Zlib_Source(Byte_Source& packed, std::uint64_t wanted) : source(packed), input(BLOCK_SIZE), left(wanted) {
        if (::inflateInit(&stream) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~Zlib_Source() override { ::inflateEnd(&stream); }
    Zlib_Source(const Zlib_Source&) = delete;
    Zlib_Source& operator=(const Zlib_Source&) = delete;

    std::size_t Read(std::span<std::uint8_t> buffer) override {
        const std::size_t got = Inflated(buffer);
        left -= std::min<std::uint64_t>(left, got);
        if (left == 0 && status == Z_OK) {
            std::vector<std::uint8_t> behind(BLOCK_SIZE);
            Inflated(behind);  // over the checksum
            is_cut = status == Z_OK && stream.avail_in == 0;
        }
        return Failed() ? 0 : got;
    }
    bool Failed() const override { return source.Failed() || is_cut || (status != Z_OK && status != Z_STREAM_END); }
    std::string Name() const override { return source.Name(); }

  private:
    std::size_t Inflated(std::span<std::uint8_t> buffer) {
        std::size_t got = 0;
        while (got < buffer.size() && status == Z_OK) {
            if (stream.avail_in == 0) {
                stream.next_in = input.data();
                stream.avail_in = static_cast<uInt>(source.Read(input));
                if (stream.avail_in == 0) {
                    break;  // cut off
                }
            }
            const std::size_t room = std::min<std::size_t>(buffer.size() - got, std::numeric_limits<int>::max());
            stream.next_out = buffer.data() + got;
            stream.avail_out = static_cast<uInt>(room);
            status = ::inflate(&stream, Z_NO_FLUSH);
            got += room - stream.avail_out;
        }
        return got;
    }

    Byte_Source& source;
    std::vector<std::uint8_t> input;
    z_stream stream{};
    int status = Z_OK;
    std::uint64_t left;
    bool is_cut = false;  ///< before its checksum
};

/** What gzip has packed: damage and wrong checksums are failures. */
class Gzip_Source : public Byte_Source {
  public:
    Gzip_Source(Byte_Source& packed, std::uint64_t wanted) : decoded(packed), name(packed.Name()), left(wanted) {}

    std::size_t Read(std::span<std::uint8_t> buffer) override {
        const std::size_t got = decoded.Read(buffer);
        left -= std::min<std::uint64_t>(left, got);
        if (left == 0 && decoded.End() == Decode_End::Not_Yet) {
            decoded.Skip(BLOCK_SIZE);  // over the checksum
        }
        return Failed() ? 0 : got;
    }
    bool Failed() const override {
        const Decode_End end = decoded.End();
        const bool is_whole = end == Decode_End::Not_Yet || end == Decode_End::Complete;
        // Missing voxels are told as such by who counts them.
        return !decoded.Compressed() || !(is_whole || (end == Decode_End::Cut_Off && left > 0));
    }
    std::string Name() const override { return name; }

  private:
    Decoded_Source decoded;
    std::string name;
    std::uint64_t left;
};

}  // namespace

std::unique_ptr<Byte_Source> Zlib_Unpacked(Byte_Source& packed, std::uint64_t wanted) {
    return std::make_unique<Zlib_Source>(packed, wanted);
}

std::unique_ptr<Byte_Source> Gzip_Unpacked(Byte_Source& packed, std::uint64_t wanted) {
    return std::make_unique<Gzip_Source>(packed, wanted);
}

}  // namespace volumes
