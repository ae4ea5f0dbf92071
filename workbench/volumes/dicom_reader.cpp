#include "workbench/volumes/dicom_reader.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <mutex>
#include <new>
#include <numeric>
#include <optional>
#include <utility>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/dcmdata/dcmetinf.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_frame_values.h"
#include "workbench/volumes/dicom_frames.h"
#include "workbench/volumes/dicom_grid.h"
#include "workbench/volumes/dicom_image_names.h"
#include "workbench/volumes/dicom_pixel_meaning.h"
#include "workbench/volumes/dicom_real_levels.h"
#include "workbench/volumes/dicom_stored_frames.h"
#include "workbench/volumes/dicom_window.h"
#include "workbench/volumes/level_range.h"
#include "workbench/volumes/level_scale.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/work_share.h"

namespace volumes {

namespace {

/** The progress callback gave up. */
struct Given_Up {};

/** There is no room beside what others read. */
struct No_Room {
    std::string text;
};

/** One file while it is read. */
class File_Reader {
  public:
    File_Reader(std::span<const std::uint8_t> file_bytes, const Load_Limits& file_limits,
                const Load_Progress& file_progress, std::vector<std::uint8_t>& spare_room)
        : bytes(file_bytes),
          limits(file_limits),
          progress(file_progress),
          spare(spare_room),
          claim(file_limits.share) {}

    Dicom_Result Read();

  private:
    void Object_Check();
    void Frames_Open();
    /** Whether there may be so much memory for levels. @param level_size bytes of each */
    void Memory_Check(std::uint64_t level_size);
    /** Gets the bytes of frames, on several threads where that is possible, and gives each frame to `take` with its
     * number in the list. */
    void Frames_Decode(std::span<const std::int32_t> frames, const std::function<void(std::size_t, Value_Room&)>& take);
    void Scales_Read();
    void Stack_Decode(const Frame_Stack& stack, Volume& volume);
    void Levels_Decode(const Frame_Stack& stack, Volume& volume);
    void Real_Levels_Decode(const Frame_Stack& stack, Volume& volume);
    void Warnings_Tell();
    void Images_Make();
    void Warn(const std::string& text) { result.warnings.push_back(text); }

    std::span<const std::uint8_t> bytes;
    const Load_Limits& limits;
    const Load_Progress& progress;
    std::vector<std::uint8_t>& spare;  // room for a frame's bytes
    Memory_Claim claim;
    Data_Set_Source source;  // outlives the data set
    DcmFileFormat file;
    E_TransferSyntax syntax = EXS_Unknown;
    std::optional<Stored_Frames> stored;
    Pixel_Meaning meaning;
    std::int32_t frame_nb = 1;
    Frame_Plan plan;
    std::vector<Scaled_Part> scales;  // by the file's frame
    std::size_t decoded_nb = 0;       // frames, each as often as it is needed
    std::size_t needed_nb = 0;
    std::vector<std::uint8_t> has_warnings;  // by the file's frame: 1 where it was decoded with errors
    Dicom_Result result;
    Dicom_Image image;
};

void File_Reader::Object_Check() {
    DcmDataset& data_set = *file.getDataset();
    std::string kind = Field_Text(data_set, DCM_SOPClassUID);
    if (kind.empty()) {
        kind = Field_Text(*file.getMetaInfo(), DCM_MediaStorageSOPClassUID);
    }
    if (kind == UID_MediaStorageDirectoryStorage) {
        throw Dicom_Refusal{"is a directory of other files (DICOMDIR) and holds no image"};
    }
    const char* const name = dcmFindNameOfUID(kind.c_str(), kind.c_str());
    const std::string kind_text = kind.empty() ? "no kind of object is named" : Printable_Text(name, FIELD_SHOWN_MOST);
    try {
        stored.emplace(data_set, syntax);
    } catch (Dicom_Refusal& refusal) {
        if (refusal.text == "holds no image") {
            refusal.text += " (" + kind_text + ")";
        }
        throw;
    }
}

void File_Reader::Memory_Check(std::uint64_t level_size) {
    const std::uint64_t pixels =
        static_cast<std::uint64_t>(meaning.format.width) * static_cast<std::uint64_t>(meaning.format.height);
    const auto frames = static_cast<std::uint64_t>(frame_nb);
    if (pixels * level_size > limits.decoded_bytes / frames) {
        throw Dicom_Refusal{"needs more memory than the limit of " + Size_Text(limits.decoded_bytes) + " (" +
                            Count_Text(frames) + " frames of " + Count_Text(pixels) + " pixels)"};
    }
    if (!claim.Grow_To(pixels * level_size * frames)) {
        throw No_Room{limits.share->Refusal_Text()};
    }
}

void File_Reader::Frames_Open() {
    const std::int32_t told = Field_Integer(*file.getDataset(), DCM_NumberOfFrames).value_or(1);
    if (told < 0) {
        throw Dicom_Refusal{"says that it has " + std::to_string(told) + " frames"};
    }
    frame_nb = std::max(told, 1);
    Memory_Check(meaning.Level_Size_Least());
    frame_nb = stored->Open(told, meaning.format);
    if (told == 0) {
        Warn("says that it has 0 frames; there " + std::string(frame_nb == 1 ? "is " : "are ") +
             std::to_string(frame_nb));
        Memory_Check(meaning.Level_Size_Least());
    }
    stored->Length_Check();
    has_warnings.assign(static_cast<std::size_t>(frame_nb), 0);
}

void File_Reader::Frames_Decode(std::span<const std::int32_t> frames,
                                const std::function<void(std::size_t, Value_Room&)>& take) {
    constexpr std::size_t rooms_most = std::size_t{1} << 28U;  // bytes of all threads' rooms together
    const auto room_size = static_cast<std::size_t>(meaning.format.Frame_Size()) +
                           static_cast<std::size_t>(meaning.format.width) *
                               static_cast<std::size_t>(meaning.format.height) * (sizeof(std::int64_t) + 1);
    const std::size_t threads =
        stored->Is_Shared() ? Work_Thread_Nb(std::max<std::size_t>(rooms_most / room_size, 1)) : 1;
    std::vector<Value_Room> rooms(threads);
    spare.clear();  // what a damaged frame leaves out is zero, not a part of another file
    rooms.front().frame.bytes = std::move(spare);
    std::vector<Value_Room*> idle;
    idle.reserve(rooms.size());
    for (Value_Room& room : rooms) {
        idle.push_back(&room);
    }
    std::mutex mutex;
    const auto decode = [&](std::size_t at) {
        std::unique_lock lock(mutex);
        Value_Room& room = *idle.back();
        idle.pop_back();
        lock.unlock();
        struct Back {  // the room, also when decoding fails
            std::mutex& mutex;
            std::vector<Value_Room*>& idle;
            Value_Room& room;
            ~Back() {
                const std::lock_guard lock(mutex);
                idle.push_back(&room);
            }
        } const back{mutex, idle, room};
        stored->Frame(frames[at], room.frame);
        if (room.frame.has_warnings) {
            has_warnings[static_cast<std::size_t>(frames[at])] = 1;
        }
        take(at, room);
    };
    const auto go_on = [&](std::size_t done) {
        return !progress || progress(static_cast<double>(decoded_nb + done) / static_cast<double>(needed_nb));
    };
    if (!Work_Share(frames.size(), threads, decode, go_on)) {
        throw Given_Up();
    }
    decoded_nb += frames.size();
    spare = std::move(rooms.front().frame.bytes);
}

void File_Reader::Scales_Read() {
    scales.assign(plan.facts.size(), {});
    bool is_one = true;
    for (std::size_t frame = 0; frame < scales.size(); ++frame) {
        if (!meaning.greys) {
            scales[frame].slope = plan.facts[frame].slope;
            scales[frame].intercept = plan.facts[frame].intercept;
        }
        is_one = is_one && scales[frame].slope == scales[0].slope && scales[frame].intercept == scales[0].intercept;
    }
    needed_nb = scales.size();
    if (meaning.format.Is_Color() || stored->Real_Bits() != 0 ||
        (is_one && meaning.format.bits_stored <= BITS_ALWAYS_LEVELS)) {
        return;
    }
    needed_nb += scales.size();
    std::vector<std::int32_t> all(scales.size());
    std::iota(all.begin(), all.end(), 0);
    Frames_Decode(all, [this](std::size_t frame, Value_Room& room) {
        Values_Make(meaning, room);
        const auto [lowest, highest] = std::ranges::minmax(room.values);
        scales[frame].lowest = lowest;
        scales[frame].highest = highest;
        scales[frame].count = room.values.size();
    });
}

void File_Reader::Levels_Decode(const Frame_Stack& stack, Volume& volume) {
    Level_Scale scale;
    if (!volume.color) {
        std::vector<Scaled_Part> parts;
        for (const std::int32_t frame : stack.order) {
            parts.push_back(scales[static_cast<std::size_t>(frame)]);
        }
        scale = Level_Scale_Choose(parts);
        volume.slope = scale.slope;
        volume.intercept = scale.intercept;
        volume.max_error = scale.max_error;
        Outside_Note(scale, volume);
    }
    const auto pixels =
        static_cast<std::size_t>(meaning.format.width) * static_cast<std::size_t>(meaning.format.height);
    const auto map_of = [&](std::int32_t frame) { return Level_Map(scales[static_cast<std::size_t>(frame)], scale); };
    const auto is_level = [&](std::int32_t frame) {
        return volume.color || (map_of(frame).Is_Same() && !scale.Has_Outside());
    };
    const auto range = std::ranges::all_of(stack.order, is_level) ? meaning.Value_Range() : std::nullopt;
    if (!range) {
        Memory_Check(sizeof(std::int32_t));
    }
    Voxel_Levels known;
    std::vector<std::int32_t> unknown;  // of a range that shows when all are there
    if (range) {
        known = Voxel_Levels::Of_Range(pixels * stack.order.size(), range->first, range->second, false);
    } else {
        unknown.resize(pixels * stack.order.size());
    }
    Frames_Decode(stack.order, [&](std::size_t at, Value_Room& room) {
        const std::int32_t frame = stack.order[at];
        room.levels.resize(range ? pixels : 0);
        const std::span levels = range ? std::span(room.levels) : std::span(unknown).subspan(at * pixels, pixels);
        Frame_Levels_Make(meaning, is_level(frame), map_of(frame), room, levels);
        if (range) {
            known.Put(at * pixels, levels);
        }
    });
    volume.levels = range ? std::move(known) : Voxel_Levels(std::move(unknown));
    if (const std::string lost = Level_Scale_Warning(scale, "frames"); !lost.empty()) {
        Warn(lost);
    }
    Level_Range_Find(volume);
}

void File_Reader::Real_Levels_Decode(const Frame_Stack& stack, Volume& volume) {
    Real_Levels levels(*file.getDataset(), stored->Real_Bits());
    for (const std::int32_t frame : stack.order) {
        const Scaled_Part& part = scales[static_cast<std::size_t>(frame)];
        levels.Scale_Add(part.slope, part.intercept);
    }
    levels.Begin(static_cast<std::uint64_t>(meaning.format.width) * static_cast<std::uint64_t>(meaning.format.height) *
                 stack.order.size());
    Frame_Room room;
    for (const std::int32_t frame : stack.order) {
        stored->Frame(frame, room);
        levels.Frame_Add(room.bytes);
        ++decoded_nb;
        if (progress && !progress(static_cast<double>(decoded_nb) / static_cast<double>(needed_nb))) {
            throw Given_Up();
        }
    }
    for (const std::string& text : levels.Finish(volume)) {
        Warn(text);
    }
}

void File_Reader::Stack_Decode(const Frame_Stack& stack, Volume& volume) {
    Grid_Take(meaning.format, plan, stack, volume);
    volume.encoding = source.syntax_name;
    if (stored->Real_Bits() != 0) {
        return Real_Levels_Decode(stack, volume);
    }
    Levels_Decode(stack, volume);
}

// Contract: users judge by what they see: a damaged picture is shown, for it may be all that there is, but never
// without a word.
void File_Reader::Warnings_Tell() {
    const auto wrong_nb = std::ranges::count(has_warnings, 1);
    if (wrong_nb > 0) {
        const auto first = std::ranges::find(has_warnings, 1) - has_warnings.begin() + 1;
        Warn("was decoded with errors (frame " + std::to_string(first) +
             (wrong_nb > 1 ? " and " + Count_Text(static_cast<std::uint64_t>(wrong_nb) - 1) + " more" : "") +
             "): its picture may be damaged");
    }
}

void File_Reader::Images_Make() {
    Scales_Read();
    image.frame_nb = frame_nb;
    image.volume.windows = Windows_Read(*file.getDataset());
    image.part_nb = static_cast<std::int32_t>(plan.stacks.size());
    for (const Frame_Stack& stack : plan.stacks) {
        Dicom_Image one = image;
        one.part = static_cast<std::int32_t>(&stack - plan.stacks.data());
        one.place = stack.place;
        const Slice_Moment& moment = plan.facts[static_cast<std::size_t>(stack.order.front())].moment;
        if (moment != Slice_Moment()) {
            one.moment = moment;
        }
        Stack_Decode(stack, one.volume);
        if (result.image) {
            result.others.push_back(std::move(one));
        } else {
            result.image = std::move(one);
        }
    }
}

Dicom_Result File_Reader::Read() {
    Data_Set_Read(bytes, limits.decoded_bytes, file, source);
    result.warnings = source.warnings;
    syntax = file.getDataset()->getOriginalXfer();
    Object_Check();
    meaning.format = Pixel_Format_Read(*file.getDataset(), syntax, stored->Real_Bits(), result.warnings);
    Frames_Open();
    Tables_Read(*file.getDataset(), meaning, result.warnings);
    Padding_Read(*file.getDataset(), meaning);
    Names_Read(*file.getDataset(), image);
    plan = Frames_Plan(*file.getDataset(), image.origin.modality, Frame_Size_Of(meaning.format, frame_nb));
    result.warnings.insert(result.warnings.end(), plan.warnings.begin(), plan.warnings.end());
    Images_Make();
    Warnings_Tell();
    return std::move(result);
}

}  // namespace

Dicom_Result Dicom_Read(std::span<const std::uint8_t> file, const Load_Limits& limits, const Load_Progress& progress,
                        Reading_Room* room) noexcept {
    Dicom_Result failed;
    try {
        if (file.empty()) {
            failed.error = "is empty";
        } else if (!Dicom_Is_Likely(file)) {
            failed.error = "is no DICOM file";
        } else {
            std::vector<std::uint8_t> own;
            return File_Reader(file, limits, progress, room != nullptr ? room->frame : own).Read();
        }
    } catch (const Dicom_Refusal& refusal) {
        failed.error = refusal.text;
    } catch (const Given_Up&) {
        failed.is_cancelled = true;
        failed.error = "was given up";
    } catch (const No_Room& refusal) {
        failed.has_no_room = true;
        failed.error = refusal.text;
    } catch (const std::bad_alloc&) {
        failed.error = "needs more memory than there is";
    } catch (...) {
        failed.error = "cannot be read";
    }
    return failed;
}

}  // namespace volumes
