#include "workbench/volumes/nifti_reader.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <span>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "workbench/volumes/decoded_source.h"
#include "workbench/volumes/level_builder.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/nifti_geometry.h"
#include "workbench/volumes/nifti_header.h"
#include "workbench/volumes/nifti_pair.h"
#include "workbench/volumes/text_header_reader.h"

namespace volumes {

namespace {

constexpr std::size_t BLOCK_SIZE =
    1024U * 1024U;  // about as many bytes of voxels are read between two reports of progress

// Ends a load; Volume_Load turns it into its result.
struct Load_Failure {
    std::string sentence;
    bool cancelled = false;
};

[[noreturn]] void Fail(const std::string& name, const std::string& what) {
    throw Load_Failure{name + ' ' + what + '.'};
}

// One load from opened sources.
class Loader {
  public:
    Loader(Byte_Source& source, const Load_Progress& load_progress, const Load_Limits& load_limits,
           Load_Result& load_result)
        : file(source.Name()),
          decoded(source),
          progress(load_progress),
          limits(load_limits),
          result(load_result),
          claim(load_limits.share) {}

    void Header_Load();
    const Nifti_Header& Header() const { return header; }
    void Voxels_Load(Byte_Source* image);
    /** Whether a header that claims to be a single file is one of a pair: there is no room for voxels behind it. */
    bool Is_Pair_In_Disguise() const;
    /** Looks for the voxels of a single file in another one. */
    void Pair_Make(const Byte_Source& image);

  private:
    void Report(double fraction) const;
    void Warn(const std::string& name, const std::string& what) { result.warnings.push_back(name + ' ' + what + '.'); }
    void Extensions_Pass(std::uint64_t position);
    void Size_Check(const std::string& name, const Decoded_Source& voxels, std::uint64_t position) const;
    void Voxels_Read(const std::string& name, Decoded_Source& voxels, Level_Builder& builder) const;
    void Tail_Check(const std::string& name, Decoded_Source& voxels);
    std::string Voxels_Present(std::uint64_t count) const;
    std::string Encoding_Text(bool is_compressed) const;

    std::string file;
    Decoded_Source decoded;
    const Load_Progress& progress;
    const Load_Limits& limits;
    Load_Result& result;
    Memory_Claim claim;
    Nifti_Header header;
};

void Loader::Report(double fraction) const {
    if (progress && !progress(fraction)) {
        throw Load_Failure{"Loading " + file + " was cancelled.", true};
    }
}

std::string Loader::Voxels_Present(std::uint64_t count) const {
    return Count_Text(count) + " of " + Count_Text(header.voxel_nb) + " voxels present";
}

void Loader::Header_Load() {
    Report(0.0);
    std::array<std::uint8_t, NIFTI2_HEADER_SIZE> bytes{};
    const std::span all(bytes);
    const std::size_t mark = decoded.Read(all.first<4>());
    const auto fail_early = [&](std::size_t got, std::size_t wanted) {
        Fail(file,
             Decode_End_Text(decoded.End(), Count_Text(got) + " of " + Count_Text(wanted) + " header bytes present"));
    };
    if (mark == 0 && decoded.End() == Decode_End::Complete) {
        Fail(file, "is empty");
    }
    if (mark < 4) {
        fail_early(mark, NIFTI1_HEADER_SIZE);
    }
    const std::optional<Nifti_Header_Kind> kind = Nifti_Header_Recognise(all.first<4>());
    if (!kind) {
        Fail(file, "is not a NIfTI file");
    }
    const std::size_t got = mark + decoded.Read(all.subspan(mark, kind->size - mark));
    if (got < kind->size) {
        fail_early(got, kind->size);
    }
    Nifti_Header_Result decoding = Nifti_Header_Decode(all.first(kind->size));
    if (!decoding.error.empty()) {
        Fail(file, decoding.error);
    }
    header = decoding.header;
    const std::uint64_t most = limits.decoded_bytes;
    const std::uint64_t voxel_size = Voxel_Type_Size(header.type);
    const bool is_narrow = voxel_size <= sizeof(std::uint16_t);
    const std::uint64_t memory_size =
        std::max<std::uint64_t>(voxel_size, is_narrow ? sizeof(std::uint16_t) : sizeof(std::int32_t));
    if (header.voxel_nb > most / memory_size) {
        Fail(file, "is too large: its " + Count_Text(header.voxel_nb) + " voxels would need " +
                       Count_Text(memory_size) + " bytes of memory each, and " + Size_Text(most) +
                       " in all are allowed");
    }
    if (!claim.Grow_To(header.voxel_nb * memory_size)) {
        Fail(file, limits.share->Refusal_Text());
    }
    if (header.voxel_offset > most) {
        Fail(file, "is too large: its voxels would begin behind " + Size_Text(header.voxel_offset) +
                       " of other data, and " + Size_Text(most) + " are allowed");
    }
}

// Compares what a plain file has with what its header claims, before any memory is taken.
void Loader::Size_Check(const std::string& name, const Decoded_Source& voxels, std::uint64_t position) const {
    const std::optional<std::uint64_t> size = voxels.Size();
    if (!size) {
        return;
    }
    const std::uint64_t begin = std::max(header.voxel_offset, position);
    const std::uint64_t present = *size > begin ? (*size - begin) / Voxel_Type_Size(header.type) : 0;
    if (present < header.voxel_nb) {
        Fail(name, Decode_End_Text(Decode_End::Complete, Voxels_Present(present)));
    }
}

// Moves from the end of the header to the voxels, over the extensions. Those only matter to the programs that wrote
// them, so one that makes no sense is no reason to refuse the image, whose place does not depend on them.
void Loader::Extensions_Pass(std::uint64_t position) {
    std::array<std::uint8_t, 8> head{};  // size and code of an extension
    std::uint64_t got = decoded.Read(std::span(head).first<NIFTI_EXTENDER_SIZE>());
    position += got;
    bool follow = got == NIFTI_EXTENDER_SIZE && head[0] != 0;
    while (follow && position < header.voxel_offset) {
        const std::uint64_t room = header.voxel_offset - position;
        if (room < head.size()) {
            Warn(file, "has an extension that is too short; its extensions were passed over");
            break;
        }
        got = decoded.Read(head);
        position += got;
        if (got < head.size()) {
            break;
        }
        const auto size = Value_Read<std::int32_t>(head.data(), header.order);
        if (size < static_cast<std::int32_t>(NIFTI_EXTENSION_STEP) ||
            size % static_cast<std::int32_t>(NIFTI_EXTENSION_STEP) != 0 || static_cast<std::uint64_t>(size) > room) {
            Warn(file, "has an extension of an impossible size; its extensions were passed over");
            break;
        }
        const std::uint64_t body = static_cast<std::uint64_t>(size) - head.size();
        const std::uint64_t passed = decoded.Skip(body);
        position += passed;
        follow = passed == body;
    }
    const std::uint64_t rest = header.voxel_offset - position;
    if (decoded.Skip(rest) < rest) {
        Fail(file, Decode_End_Text(decoded.End(), Voxels_Present(0)));
    }
}

void Loader::Voxels_Read(const std::string& name, Decoded_Source& voxels, Level_Builder& builder) const {
    const std::size_t voxel_size = Voxel_Type_Size(header.type);
    const std::size_t block_nb = BLOCK_SIZE / voxel_size;
    const std::uint64_t own_nb = builder.Is_Collecting() ? 0 : std::min<std::uint64_t>(block_nb, header.voxel_nb);
    std::vector<std::uint8_t> block(static_cast<std::size_t>(own_nb) * voxel_size);
    while (builder.Voxel_Nb() < header.voxel_nb) {
        const std::uint64_t left = header.voxel_nb - builder.Voxel_Nb();
        const std::span<std::uint8_t> room = builder.Is_Collecting() ? builder.Room() : std::span(block);
        const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left * voxel_size, room.size()));
        const std::size_t got = voxels.Read(room.first(wanted));
        if (builder.Is_Collecting()) {
            builder.Take(got / voxel_size * voxel_size);
        } else {
            builder.Append(room.first(got / voxel_size * voxel_size));
        }
        if (got < wanted) {
            Fail(name, Decode_End_Text(voxels.End(), Voxels_Present(builder.Voxel_Nb())));
        }
        // The last step is kept for the conversion.
        Report(0.95 * static_cast<double>(builder.Voxel_Nb()) / static_cast<double>(header.voxel_nb));
    }
}

// Behind the voxels of a compressed file stands the checksum that covers them: it has to be reached.
void Loader::Tail_Check(const std::string& name, Decoded_Source& voxels) {
    if (!voxels.Compressed()) {
        return;
    }
    std::uint64_t passed = 0;
    while (voxels.End() == Decode_End::Not_Yet) {
        passed += voxels.Skip(BLOCK_SIZE);
        if (passed > limits.decoded_bytes) {
            Fail(name,
                 "is too large: more than " + Size_Text(limits.decoded_bytes) + " of other data follow its voxels");
        }
        Report(0.95);
    }
    if (voxels.End() == Decode_End::Cut_Off) {
        Fail(name, "is truncated: all " + Count_Text(header.voxel_nb) +
                       " voxels are present, but not the checksum at its end");
    }
    if (voxels.End() != Decode_End::Complete) {
        Fail(name, Decode_End_Text(voxels.End(), Voxels_Present(header.voxel_nb)));
    }
    if (voxels.Has_Garbage()) {
        Warn(name, "has foreign data behind its compressed content; they were ignored");
    }
}

void Loader::Voxels_Load(Byte_Source* image) {
    std::optional<Decoded_Source> separate;
    std::string name = file;
    if (header.single_file) {
        const std::uint64_t position = header.format == Nifti_Format::Nifti_2 ? NIFTI2_HEADER_SIZE : NIFTI1_HEADER_SIZE;
        Size_Check(name, decoded, position);
        Extensions_Pass(position);
    } else {
        if (image == nullptr) {
            Fail(file, "is only a header; the file with its voxels is missing");
        }
        name = image->Name();
        separate.emplace(*image);
        Size_Check(name, *separate, 0);
        if (separate->Skip(header.voxel_offset) < header.voxel_offset) {
            Fail(name, Decode_End_Text(separate->End(), Voxels_Present(0)));
        }
    }
    Decoded_Source& voxels = separate ? *separate : decoded;
    Level_Builder builder(header.type, header.order, header.voxel_nb);
    // Voxels of a plain file are known to be there. Images are seldom packed to less than an eighth: with that much in
    // the file room for them is no leap in the dark, and growing little by little would copy them again and again.
    constexpr std::uint64_t likely_ratio = 8;
    builder.Reserve(voxels.Stored_Size().value_or(0) * (voxels.Compressed() ? likely_ratio : 1) /
                    Voxel_Type_Size(header.type));
    Voxels_Read(name, voxels, builder);
    Tail_Check(name, voxels);

    Volume volume;
    volume.nx = header.size[0];
    volume.ny = header.size[1];
    volume.nz = header.size[2];
    volume.nt = header.size[3];
    volume.stored = header.geometry;
    Geometry_Apply(header.geometry, volume);
    builder.Finish(header.slope, header.intercept, volume);
    for (const std::string& text : Geometry_Warnings(header.geometry, volume)) {
        Warn(file, text);
    }
    for (const std::string& text : Values_Outside_Texts(volume)) {
        Warn(name, text);
    }
    if (header.format == Nifti_Format::Analyze && header.slope != 1) {
        Warn(file, "has the scale factor " + Value_Text(header.slope) +
                       " that some programs add to Analyze files; its values are multiplied by it");
    }
    volume.encoding = Encoding_Text(voxels.Compressed());
    Report(1.0);
    result.volume = std::move(volume);
    result.tally = std::move(builder.Tally());
}

std::string Loader::Encoding_Text(bool is_compressed) const {
    std::string text = header.format == Nifti_Format::Analyze
                           ? "Analyze 7.5"
                           : (header.format == Nifti_Format::Nifti_1 ? "NIfTI-1" : "NIfTI-2");
    text += header.single_file ? "" : ", header and voxels in two files";
    text += header.order == Byte_Order::Little ? ", little-endian" : ", big-endian";
    return text + (is_compressed ? ", gzip-compressed" : "");
}

bool Loader::Is_Pair_In_Disguise() const {
    const std::uint64_t needed = header.voxel_nb * Voxel_Type_Size(header.type);
    const std::optional<std::uint64_t> size = decoded.Size();
    return header.single_file && (!size || *size < needed || *size - needed < header.voxel_offset);
}

void Loader::Pair_Make(const Byte_Source& image) {
    Warn(file, "says that it holds its voxels itself; they are read from " + image.Name());
    header.single_file = false;
    const std::uint64_t needed = header.voxel_nb * Voxel_Type_Size(header.type);
    const std::optional<std::uint64_t> size = image.Size();
    // The position is that in a single file, unless the other file is just so much longer.
    if (!size || *size != header.voxel_offset + needed) {
        header.voxel_offset = 0;
    }
}

// Runs `load` and turns whatever it throws into the result's sentence.
template <class Load>
Load_Result Guarded(const std::string& name, Load load) {
    Load_Result result;
    try {
        load(result);
        return result;
    } catch (Load_Failure& failure) {
        result.error = std::move(failure.sentence);
        result.cancelled = failure.cancelled;
    } catch (const std::bad_alloc&) {
        result.error = name + " needs more memory than is free.";
    } catch (const std::length_error&) {
        result.error = name + " needs more memory than is free.";
    } catch (const std::exception& exception) {
        result.error = name + " could not be loaded: " + exception.what() + '.';
    } catch (...) {
        result.error = name + " could not be loaded.";
    }
    result.volume.reset();
    return result;
}

// The last resort when even the sentence finds no memory: short enough to need none.
Load_Result No_Memory() noexcept {
    Load_Result result;
    result.error = "Out of memory.";
    return result;
}

void Path_Load(const std::filesystem::path& path, const Load_Progress& progress, const Load_Limits& limits,
               Load_Result& result) {
    std::filesystem::path header_path = path;
    std::filesystem::path image_path;
    if (const std::filesystem::path partner = Partner_Find(path, ".img", ".hdr"); !partner.empty()) {
        header_path = partner;
        image_path = path;
    } else {
        image_path = Partner_Find(path, ".hdr", ".img");
    }
    File_Source file(header_path);
    if (!file.Error().empty()) {
        Fail(file.Name(), file.Error());
    }
    Loader loader(file, progress, limits, result);
    loader.Header_Load();
    if (image_path.empty() || (loader.Header().single_file && !loader.Is_Pair_In_Disguise())) {
        loader.Voxels_Load(nullptr);
        return;
    }
    File_Source image(image_path);
    if (!image.Error().empty()) {
        Fail(image.Name(), image.Error());
    }
    if (loader.Header().single_file) {
        loader.Pair_Make(image);
    }
    loader.Voxels_Load(&image);
}

}  // namespace

Load_Result Volume_Load(const std::filesystem::path& path, const Load_Progress& progress,
                        const Load_Limits& limits) noexcept {
    if (Text_Header_Find(path)) {
        return Text_Header_Load(path, progress, limits);
    }
    try {
        return Guarded(File_Name_Text(path), [&](Load_Result& result) { Path_Load(path, progress, limits, result); });
    } catch (...) {
        return No_Memory();
    }
}

Load_Result Volume_Load(Byte_Source& source, Byte_Source* image, const Load_Progress& progress,
                        const Load_Limits& limits) noexcept {
    try {
        return Guarded(source.Name(), [&](Load_Result& result) {
            Loader loader(source, progress, limits, result);
            loader.Header_Load();
            loader.Voxels_Load(image);
        });
    } catch (...) {
        return No_Memory();
    }
}

}  // namespace volumes
