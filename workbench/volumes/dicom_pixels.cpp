#include "workbench/volumes/dicom_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace volumes {

namespace {

std::int32_t Packed(std::int32_t red, std::int32_t green, std::int32_t blue) {
    return red | green << 8 | blue << 16;
}

std::int32_t Byte_Of(double value) {
    return static_cast<std::int32_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}

/** Of full-range luminance and colour differences. */
std::int32_t Packed_Of_Ybr(std::int32_t y, std::int32_t cb, std::int32_t cr) {
    constexpr double middle = 128.0;
    const double blue = cb - middle;
    const double red = cr - middle;
    return Packed(Byte_Of(y + 1.402 * red), Byte_Of(y - 0.344136 * blue - 0.714136 * red), Byte_Of(y + 1.772 * blue));
}

/** Reads the samples of a frame one by one, by their number. */
class Samples {
  public:
    Samples(const Pixel_Format& pixel_format, std::span<const std::uint8_t> frame_bytes)
        : format(pixel_format), bytes(frame_bytes), size(static_cast<std::size_t>(pixel_format.bits_allocated) / 8) {}

    std::int64_t Value(std::size_t number) const {
        std::uint64_t word = 0;
        for (std::size_t byte = size; byte > 0; --byte) {
            word = word << 8U | bytes[number * size + byte - 1];
        }
        const auto stored = static_cast<unsigned>(format.bits_stored);
        word >>= static_cast<unsigned>(format.high_bit + 1) - stored;
        word &= (std::uint64_t{1} << stored) - 1;
        const bool is_negative = format.is_signed && (word >> (stored - 1) & 1U) != 0;
        return static_cast<std::int64_t>(word) - (is_negative ? std::int64_t{1} << stored : 0);
    }
    /** A colour sample's most significant eight bits. */
    std::int32_t Byte(std::size_t number) const {
        const auto value = static_cast<std::uint64_t>(Value(number));
        return static_cast<std::int32_t>((format.bits_stored > 8 ? value >> (format.bits_stored - 8) : value) & 0xFFU);
    }

  private:
    const Pixel_Format& format;
    std::span<const std::uint8_t> bytes;
    std::size_t size;
};

void Decode_Color(const Pixel_Format& format, const Samples& samples, std::span<std::int64_t> levels) {
    const std::size_t plane = format.is_planar ? levels.size() : 1;
    const std::size_t pixel = format.is_planar ? 1 : 3;
    for (std::size_t at = 0; at < levels.size(); ++at) {
        const std::int32_t first = samples.Byte(at * pixel);
        const std::int32_t second = samples.Byte(at * pixel + plane);
        const std::int32_t third = samples.Byte(at * pixel + 2 * plane);
        levels[at] =
            format.kind == Pixel_Format::Kind::Rgb ? Packed(first, second, third) : Packed_Of_Ybr(first, second, third);
    }
}

/** Two pixels of a row share their colour differences: Y Y Cb Cr. */
void Decode_Halved(const Samples& samples, std::span<std::int64_t> levels) {
    for (std::size_t at = 0; at < levels.size(); ++at) {
        const std::size_t group = at / 2 * 4;
        levels[at] = Packed_Of_Ybr(samples.Byte(group + at % 2), samples.Byte(group + 2), samples.Byte(group + 3));
    }
}

/** Samples of grey pixels, as Samples::Value gives them. Their size is known to the compiler, which makes this many
 * times faster. */
template <std::size_t SIZE, class Level>
void Decode_Grey(const Pixel_Format& format, std::span<const std::uint8_t> bytes, std::span<Level> levels) {
    const auto stored = static_cast<unsigned>(format.bits_stored);
    const unsigned below = static_cast<unsigned>(format.high_bit + 1) - stored;
    const std::uint32_t mask = (std::uint32_t{1} << stored) - 1;
    // A negative number's highest bit counts downwards: subtracting it twice is what its sign means.
    const std::uint32_t sign = format.is_signed ? std::uint32_t{1} << (stored - 1) : 0;
    const std::uint8_t* from = bytes.data();
    for (Level& level : levels) {
        std::uint32_t word = from[0];
        if constexpr (SIZE == 2) {
            word |= std::uint32_t{from[1]} << 8U;
        }
        word = word >> below & mask;
        level = static_cast<std::int32_t>(word ^ sign) - static_cast<std::int32_t>(sign);
        from += SIZE;
    }
}

template <class Level>
void Decode_Grey(const Pixel_Format& format, std::span<const std::uint8_t> bytes, std::span<Level> levels) {
    switch (format.bits_allocated) {
        case 8:
            return Decode_Grey<1>(format, bytes, levels);
        case 16:
            return Decode_Grey<2>(format, bytes, levels);
        default:
            break;
    }
    const Samples samples(format, bytes);
    for (std::size_t at = 0; at < levels.size(); ++at) {
        levels[at] = static_cast<Level>(samples.Value(at));
    }
}

}  // namespace

std::uint64_t Pixel_Format::Frame_Size() const {
    const std::uint64_t pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    const std::uint64_t samples =
        kind == Kind::Ybr_Full_422 ? pixels * 2 : pixels * static_cast<std::uint64_t>(Sample_Nb());
    return samples * static_cast<std::uint64_t>(bits_allocated / 8);
}

std::uint64_t Pixel_Format::Stored_Size(std::uint64_t frames) const {
    constexpr std::uint64_t byte_bits = 8;
    return is_bits ? (Frame_Size() * frames + byte_bits - 1) / byte_bits : Frame_Size() * frames;
}

void Frame_Decode(const Pixel_Format& format, std::span<const std::uint8_t> bytes, const Palette& palette,
                  std::span<std::int64_t> levels) {
    const Samples samples(format, bytes);
    switch (format.kind) {
        case Pixel_Format::Kind::Rgb:
        case Pixel_Format::Kind::Ybr_Full:
            return Decode_Color(format, samples, levels);
        case Pixel_Format::Kind::Ybr_Full_422:
            return Decode_Halved(samples, levels);
        case Pixel_Format::Kind::Palette: {
            const auto last = static_cast<std::int64_t>(palette.colors.size()) - 1;
            for (std::size_t at = 0; at < levels.size(); ++at) {
                const std::int64_t entry = std::clamp<std::int64_t>(samples.Value(at) - palette.first, 0, last);
                levels[at] = palette.colors[static_cast<std::size_t>(entry)];
            }
            return;
        }
        default:
            break;
    }
    Decode_Grey(format, bytes, levels);
}

void Levels_Decode_Grey(const Pixel_Format& format, std::span<const std::uint8_t> bytes,
                        std::span<std::int32_t> levels) {
    Decode_Grey(format, bytes, levels);
}

}  // namespace volumes
