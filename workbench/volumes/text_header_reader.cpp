#include "workbench/volumes/text_header_reader.h"

#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "workbench/volumes/message_text.h"
#include "workbench/volumes/nifti_reader.h"
#include "workbench/volumes/packed_source.h"

namespace volumes {

namespace {

constexpr std::size_t BLOCK_SIZE = 64U * 1024U;
constexpr std::size_t RECOGNISED_BY = 512;  // bytes
constexpr std::size_t PRESENTED_SIZE = NIFTI2_HEADER_SIZE + NIFTI_EXTENDER_SIZE;

/** Becomes the result's sentence. */
struct Load_Failure {
    std::string sentence;
};

[[noreturn]] void Fail(const std::string& name, const std::string& what) {
    throw Load_Failure{name + ' ' + what + '.'};
}

/** Bytes that were read already, and what follows them. */
class Rest_Source : public Byte_Source {
  public:
    Rest_Source(std::vector<std::uint8_t> read_before, std::uint64_t taken, Byte_Source& rest)
        : before(std::move(read_before)), taken_nb(taken), source(rest) {}

    std::size_t Read(std::span<std::uint8_t> buffer) override {
        const std::size_t first = std::min(buffer.size(), before.size() - position);
        std::copy_n(before.begin() + static_cast<std::ptrdiff_t>(position), first, buffer.begin());
        position += first;
        return first + (first < buffer.size() ? source.Read(buffer.subspan(first)) : 0);
    }
    bool Failed() const override { return source.Failed(); }
    std::optional<std::uint64_t> Size() const override {
        const std::optional<std::uint64_t> size = source.Size();
        return size && *size >= taken_nb ? std::optional(*size - taken_nb) : std::nullopt;
    }
    std::string Name() const override { return source.Name(); }

  private:
    std::vector<std::uint8_t> before;
    std::size_t position = 0;
    std::uint64_t taken_nb;
    Byte_Source& source;
};

void Bytes_Skip(Byte_Source& source, std::uint64_t count) {
    std::vector<std::uint8_t> block(BLOCK_SIZE);
    while (count > 0) {
        const std::size_t got =
            source.Read(std::span(block).first(static_cast<std::size_t>(std::min<std::uint64_t>(count, BLOCK_SIZE))));
        if (got == 0) {
            return;
        }
        count -= got;
    }
}

/** Passes lines over. @return bytes of them */
std::uint64_t Lines_Skip(Byte_Source& source, std::int64_t count) {
    std::uint64_t passed = 0;
    std::array<std::uint8_t, 1> byte{};
    while (count > 0 && source.Read(byte) == 1) {
        ++passed;
        count -= byte[0] == '\n' ? 1 : 0;
    }
    return passed;
}

/** The header of the same image as a NIfTI-2 file, whose loader does the rest: limits, levels, values left outside. */
std::vector<std::uint8_t> Presented_Header(const Text_Header& header) {
    std::vector<std::uint8_t> bytes(PRESENTED_SIZE);
    const auto put = [&](std::size_t at, auto value) { Value_Write(&bytes[at], value, header.order); };
    put(0, static_cast<std::int32_t>(NIFTI2_HEADER_SIZE));
    constexpr std::array<std::uint8_t, 8> mark = {'n', '+', '2', 0, '\r', '\n', 26, '\n'};
    std::ranges::copy(mark, bytes.begin() + 4);
    put(12, static_cast<std::int16_t>(header.type));
    put(14, static_cast<std::int16_t>(8 * Voxel_Type_Size(header.type)));
    put(16, std::int64_t{4});
    put(104, 1.0);
    for (std::size_t axis = 0; axis < 7; ++axis) {
        put(24 + 8 * axis, axis < 4 ? header.size[axis] : std::int64_t{1});
        put(112 + 8 * axis, axis < 3 ? header.spacing[axis] : axis == 3 ? header.time_step : 0.0);
    }
    put(168, static_cast<std::int64_t>(PRESENTED_SIZE));
    put(176, 1.0);
    if (header.has_place) {
        put(348, std::int32_t{1});
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 4; ++column) {
                put(400 + 32 * row + 8 * column, header.affine[row][column]);
            }
        }
    }
    put(500, std::int32_t{2 + 8});  // millimetres, seconds
    return bytes;
}

/** A header of our own, then voxels. */
class Presented_Source : public Byte_Source {
  public:
    Presented_Source(const Text_Header& header, Byte_Source& voxel_source)
        : head(Presented_Header(header)), voxels(voxel_source) {}

    std::size_t Read(std::span<std::uint8_t> buffer) override {
        const std::size_t first = std::min(buffer.size(), head.size() - position);
        std::copy_n(head.begin() + static_cast<std::ptrdiff_t>(position), first, buffer.begin());
        position += first;
        return first + (first < buffer.size() ? voxels.Read(buffer.subspan(first)) : 0);
    }
    bool Failed() const override { return voxels.Failed(); }
    std::optional<std::uint64_t> Size() const override {
        const std::optional<std::uint64_t> size = voxels_size;
        return size ? std::optional(*size + head.size()) : std::nullopt;
    }
    std::string Name() const override { return voxels.Name(); }
    std::optional<std::uint64_t> voxels_size;  ///< when it is known

  private:
    std::vector<std::uint8_t> head;
    std::size_t position = 0;
    Byte_Source& voxels;
};

/** Reads up to the end of the header. @param rest receives what was read of the bytes behind it */
std::string Header_Read(Byte_Source& source, Text_Header_Kind& kind, std::vector<std::uint8_t>& rest) {
    std::vector<std::uint8_t> bytes;
    bool is_whole = false;
    while (true) {
        const std::size_t before = bytes.size();
        bytes.resize(before + RECOGNISED_BY * 8);
        const std::size_t got = source.Read(std::span(bytes).subspan(before));
        is_whole = got < RECOGNISED_BY * 8;
        bytes.resize(before + got);
        const std::optional<Text_Header_Kind> found =
            Text_Header_Recognise(std::span(bytes).first(std::min(bytes.size(), RECOGNISED_BY)));
        if (!found) {
            Fail(source.Name(), "is neither an NRRD file nor a MetaImage");
        }
        kind = *found;
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        if (const std::optional<std::size_t> size = Text_Header_Size(kind, text, is_whole)) {
            rest.assign(bytes.begin() + static_cast<std::ptrdiff_t>(*size), bytes.end());
            return std::string(text.substr(0, *size));
        }
        if (is_whole || bytes.size() > TEXT_HEADER_MOST) {
            Fail(source.Name(), is_whole ? "is truncated: its header has no end"
                                         : "is corrupt: its header has no end within " + Size_Text(TEXT_HEADER_MOST));
        }
    }
}

/** The bytes of the voxels, as far as they fit a number. */
std::optional<std::uint64_t> Voxel_Bytes(const Text_Header& header) {
    std::uint64_t bytes = Voxel_Type_Size(header.type);
    for (const std::int64_t size : header.size) {
        if (bytes > (std::uint64_t{1} << 62U) / static_cast<std::uint64_t>(size)) {
            return std::nullopt;
        }
        bytes *= static_cast<std::uint64_t>(size);
    }
    return bytes;
}

Load_Result Voxels_Load(Text_Header_Kind kind, const Text_Header& header, Byte_Source& data,
                        const Load_Progress& progress, const Load_Limits& limits) {
    const std::optional<std::uint64_t> needed = Voxel_Bytes(header);
    if (!needed || *needed > limits.decoded_bytes) {
        Fail(data.Name(), "is too large: its voxels would need more than the " + Size_Text(limits.decoded_bytes) +
                              " that are allowed");
    }
    const std::uint64_t passed = Lines_Skip(data, header.skip_lines);
    std::optional<std::uint64_t> left = data.Size();
    if (left) {
        *left -= std::min(*left, passed);
    }
    std::uint64_t skip = static_cast<std::uint64_t>(std::max<std::int64_t>(header.skip_bytes, 0));
    if (header.skip_bytes == -1) {
        if (!left || *left < *needed) {
            Fail(data.Name(), "is truncated: it is shorter than its voxels");
        }
        skip = *left - *needed;
    }
    if (skip > limits.decoded_bytes) {
        Fail(data.Name(), "says that voxels begin at a place that cannot be");
    }
    Bytes_Skip(data, skip);
    if (left) {
        *left -= std::min(*left, skip);
    }
    std::unique_ptr<Byte_Source> unpacked;
    if (header.coding == Voxel_Coding::Gzip) {
        unpacked = Gzip_Unpacked(data, *needed);
    } else if (header.coding == Voxel_Coding::Zlib) {
        unpacked = Zlib_Unpacked(data, *needed);
    }
    Presented_Source presented(header, unpacked ? *unpacked : data);
    presented.voxels_size = unpacked ? std::nullopt : left;
    Load_Result result = Volume_Load(presented, nullptr, progress, limits);
    if (result.volume) {
        result.volume->encoding = std::string(Text_Header_Kind_Name(kind)) +
                                  (header.data_file.empty() ? "" : ", header and voxels in two files") +
                                  (header.order == Byte_Order::Little ? ", little-endian" : ", big-endian") +
                                  (unpacked ? ", compressed" : "");
    }
    return result;
}

/** Runs `load` and turns what it throws into the result's sentence. */
template <class Load>
Load_Result Guarded(const std::string& name, Load load) {
    Load_Result result;
    try {
        return load();
    } catch (Load_Failure& failure) {
        result.error = std::move(failure.sentence);
    } catch (const std::bad_alloc&) {
        result.error = name + " needs more memory than is free.";
    } catch (const std::exception& exception) {
        result.error = name + " could not be loaded: " + exception.what() + '.';
    }
    return result;
}

/** When even a sentence finds no memory: short enough to need none. */
Load_Result No_Memory() noexcept {
    Load_Result result;
    result.error = "Out of memory.";
    return result;
}

/** @param find_data opens the file with the voxels that a header names; null when there is none */
template <class Find_Data>
Load_Result Source_Load(Byte_Source& source, Find_Data find_data, const Load_Progress& progress,
                        const Load_Limits& limits) {
    Text_Header_Kind kind = Text_Header_Kind::Nrrd;
    std::vector<std::uint8_t> rest;
    const std::string text = Header_Read(source, kind, rest);
    const Text_Header_Result read = Text_Header_Decode(kind, text);
    if (!read.error.empty()) {
        Fail(source.Name(), read.error);
    }
    if (read.header.data_file.empty()) {
        Rest_Source behind(std::move(rest), text.size(), source);
        return Voxels_Load(kind, read.header, behind, progress, limits);
    }
    Byte_Source* const data = find_data(read.header.data_file);
    if (data == nullptr) {
        Fail(source.Name(), "is only a header; the file with its voxels is missing");
    }
    return Voxels_Load(kind, read.header, *data, progress, limits);
}

}  // namespace

std::optional<Text_Header_Kind> Text_Header_Find(const std::filesystem::path& path) noexcept {
    try {
        File_Source file(path);
        std::array<std::uint8_t, RECOGNISED_BY> first{};
        const std::size_t got = file.Error().empty() ? file.Read(first) : 0;
        return Text_Header_Recognise(std::span(first).first(got));
    } catch (...) {
        return std::nullopt;
    }
}

Load_Result Text_Header_Load(const std::filesystem::path& path, const Load_Progress& progress,
                             const Load_Limits& limits) noexcept {
    try {
        return Guarded(File_Name_Text(path), [&] {
            File_Source file(path);
            if (!file.Error().empty()) {
                Fail(file.Name(), file.Error());
            }
            std::unique_ptr<File_Source> data;
            const auto find_data = [&](const std::string& name) -> Byte_Source* {
                if (name.find_first_of("/\\:") != std::string::npos || name == "." || name == "..") {
                    Fail(file.Name(), "says that its voxels are in \"" + Printable_Text(name, FIELD_SHOWN_MOST) +
                                          "\"; they are read only from a file beside it");
                }
                data = std::make_unique<File_Source>(path.parent_path() / Path_From_Utf8(name));
                if (!data->Error().empty()) {
                    Fail(data->Name(), data->Error());
                }
                return data.get();
            };
            return Source_Load(file, find_data, progress, limits);
        });
    } catch (...) {
        return No_Memory();
    }
}

Load_Result Text_Header_Load(Byte_Source& source, Byte_Source* data, const Load_Progress& progress,
                             const Load_Limits& limits) noexcept {
    try {
        return Guarded(source.Name(), [&] {
            return Source_Load(
                source, [&](const std::string&) { return data; }, progress, limits);
        });
    } catch (...) {
        return No_Memory();
    }
}

}  // namespace volumes
