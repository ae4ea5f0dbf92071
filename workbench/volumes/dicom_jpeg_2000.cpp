#include "workbench/volumes/dicom_jpeg_2000.h"

#include <openjpeg.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "workbench/volumes/dicom_jpeg_2000_stream.h"

namespace volumes {

namespace {

/** Bytes in memory, as the library reads them. */
struct Memory {
    std::span<const std::uint8_t> bytes;
    std::size_t at = 0;
};

OPJ_SIZE_T Memory_Read(void* buffer, OPJ_SIZE_T count, void* user) {
    Memory& memory = *static_cast<Memory*>(user);
    const std::size_t taken = std::min<std::size_t>(count, memory.bytes.size() - memory.at);
    if (taken == 0) {
        return static_cast<OPJ_SIZE_T>(-1);
    }
    std::memcpy(buffer, memory.bytes.data() + memory.at, taken);
    memory.at += taken;
    return taken;
}

OPJ_OFF_T Memory_Skip(OPJ_OFF_T count, void* user) {
    Memory& memory = *static_cast<Memory*>(user);
    if (count < 0) {
        return -1;
    }
    const auto taken =
        std::min(static_cast<std::uint64_t>(count), static_cast<std::uint64_t>(memory.bytes.size() - memory.at));
    memory.at += static_cast<std::size_t>(taken);
    return taken == 0 && count > 0 ? -1 : static_cast<OPJ_OFF_T>(taken);
}

OPJ_BOOL Memory_Seek(OPJ_OFF_T position, void* user) {
    Memory& memory = *static_cast<Memory*>(user);
    if (position < 0 || static_cast<std::uint64_t>(position) > memory.bytes.size()) {
        return OPJ_FALSE;
    }
    memory.at = static_cast<std::size_t>(position);
    return OPJ_TRUE;
}

void Warning_Note(const char*, void* user) {
    *static_cast<bool*>(user) = true;
}

struct Stream_End {
    void operator()(opj_stream_t* stream) const { opj_stream_destroy(stream); }
};
struct Codec_End {
    void operator()(opj_codec_t* codec) const { opj_destroy_codec(codec); }
};
struct Image_End {
    void operator()(opj_image_t* image) const { opj_image_destroy(image); }
};

/** The library takes a last tile part of untold length to reach to the end of all bytes, filling included. */
std::span<const std::uint8_t> Without_Filling(std::span<const std::uint8_t> packed) {
    while (!packed.empty() && packed.back() == 0) {
        packed = packed.first(packed.size() - 1);
    }
    return packed;
}

/** One frame while it is read. */
class Frame_Reader {
  public:
    explicit Frame_Reader(std::span<const std::uint8_t> packed)
        : memory{packed}, codestream(Jpeg_2000_Stream_Find(packed)) {
        if (!codestream) {
            return;
        }
        if (!codestream->is_file) {
            memory.bytes = Without_Filling(packed);
        }
        codec.reset(opj_create_decompress(codestream->is_file ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K));
        stream.reset(opj_stream_create(OPJ_J2K_STREAM_CHUNK_SIZE, OPJ_TRUE));
        if (!codec || !stream) {
            throw std::bad_alloc();
        }
        opj_set_warning_handler(codec.get(), Warning_Note, &has_warnings);
        opj_set_error_handler(codec.get(), Warning_Note, &has_warnings);
        opj_stream_set_read_function(stream.get(), Memory_Read);
        opj_stream_set_skip_function(stream.get(), Memory_Skip);
        opj_stream_set_seek_function(stream.get(), Memory_Seek);
        opj_stream_set_user_data(stream.get(), &memory, nullptr);
        opj_stream_set_user_data_length(stream.get(), memory.bytes.size());
        opj_dparameters_t parameters;
        opj_set_default_decoder_parameters(&parameters);
        opj_image_t* made = nullptr;
        is_read = opj_setup_decoder(codec.get(), &parameters) != OPJ_FALSE &&
                  opj_read_header(stream.get(), codec.get(), &made) != OPJ_FALSE && made != nullptr;
        image.reset(made);
    }
    Frame_Reader(const Frame_Reader&) = delete;
    Frame_Reader& operator=(const Frame_Reader&) = delete;

    bool Decode() {
        return is_read && opj_decode(codec.get(), stream.get(), image.get()) != OPJ_FALSE &&
               opj_end_decompress(codec.get(), stream.get()) != OPJ_FALSE;
    }
    /** What the header says, if the components are of one kind and size. */
    std::optional<Coded_Format> Format() const {
        constexpr std::uint32_t bits_most = 31;
        constexpr std::uint32_t side_most = 65535;
        if (!is_read || image->numcomps == 0 || image->numcomps > 3) {
            return std::nullopt;
        }
        const std::span parts(image->comps, image->numcomps);
        const opj_image_comp_t& first = parts.front();
        const bool is_even = std::ranges::all_of(parts, [&](const opj_image_comp_t& part) {
            return part.dx == 1 && part.dy == 1 && part.w == first.w && part.h == first.h && part.prec == first.prec &&
                   part.sgnd == first.sgnd;
        });
        if (!is_even || first.prec < 1 || first.prec > bits_most || first.w > side_most || first.h > side_most) {
            return std::nullopt;
        }
        return Coded_Format{static_cast<std::int32_t>(first.w), static_cast<std::int32_t>(first.h),
                            static_cast<std::int32_t>(image->numcomps), static_cast<std::int32_t>(first.prec),
                            first.sgnd != 0};
    }
    std::span<const opj_image_comp_t> Components() const { return {image->comps, image->numcomps}; }
    /** Whether the codec was content with a picture of which nothing is missing. */
    bool Is_Sound() const { return !has_warnings && codestream && Jpeg_2000_Is_Whole(*codestream); }

  private:
    Memory memory;
    std::optional<Jpeg_2000_Stream> codestream;
    bool is_read = false;
    bool has_warnings = false;
    std::unique_ptr<opj_codec_t, Codec_End> codec;
    std::unique_ptr<opj_stream_t, Stream_End> stream;
    std::unique_ptr<opj_image_t, Image_End> image;
};

}  // namespace

std::optional<Coded_Format> Jpeg_2000_Format_Read(std::span<const std::uint8_t> packed) {
    return Frame_Reader(packed).Format();
}

Decode_Report Jpeg_2000_Decode(const Coded_Format& format, std::span<const std::uint8_t> packed,
                               std::span<std::uint8_t> bytes) {
    Frame_Reader reader(packed);
    if (!reader.Decode()) {
        return {"it is damaged or cut short", false};
    }
    if (reader.Format() != format) {
        return {"another size or depth than it says", false};
    }
    const std::span parts = reader.Components();
    const std::size_t pixels = static_cast<std::size_t>(format.width) * static_cast<std::size_t>(format.height);
    const auto size = static_cast<std::size_t>(format.Byte_Nb());
    for (std::size_t sample = 0; sample < parts.size(); ++sample) {
        if (parts[sample].data == nullptr) {
            return {"it has no pixels", false};
        }
        std::uint8_t* to = bytes.data() + sample * size;
        for (std::size_t at = 0; at < pixels; ++at, to += parts.size() * size) {
            const auto value = static_cast<std::uint32_t>(parts[sample].data[at]);
            for (std::size_t byte = 0; byte < size; ++byte) {
                to[byte] = static_cast<std::uint8_t>(value >> 8U * byte);
            }
        }
    }
    return {{}, !reader.Is_Sound()};
}

}  // namespace volumes
