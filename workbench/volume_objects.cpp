#include "workbench/volume_objects.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "workbench/model/background.h"
#include "workbench/model/slice_smoothing.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

void Icon_Set(Quorel_2D& object, const char* file) {
    std::snprintf(object.icon, sizeof object.icon, "%s", file);
}

std::string Panel_Of_Utf8(const std::string& text) {
    return Panel_Of_Wide(Wide_Of_Utf8(text));
}

/** The folder that all files lie below: their paths are shown from its name on. Empty: they have none. */
std::filesystem::path Common_Folder(const std::vector<std::filesystem::path>& files) {
    std::filesystem::path common = files.empty() ? std::filesystem::path() : files.front().parent_path();
    for (const std::filesystem::path& file : files) {
        while (common.has_relative_path() &&
               std::mismatch(common.begin(), common.end(), file.begin(), file.end()).first != common.end()) {
            common = common.parent_path();
        }
    }
    return common;
}

/** The path as it is shown: long ways to the common folder would hide what differs. */
std::string Shown_Path(const std::filesystem::path& file, const std::filesystem::path& common) {
    const std::filesystem::path below = file.lexically_relative(common.parent_path());
    return Panel_Of_Wide((below.empty() || !common.has_relative_path() ? file : below).wstring());
}

bool Is_Selected(const Quorel_2D& frame) {
    return frame.Flag_Get_Bit(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION) != 0;
}

/** Gives the frame the histogram of its 3 x 3 means. @param smooth room for them */
void Smooth_Histogram_Build(Slice_Frame& frame, const volumes::Volume& image, const unsigned char* mask,
                            Level_Room& room, Level_Room& smooth) {
    const std::size_t plane = std::size_t{frame.width} * frame.height;
    const std::int32_t steps = Smoothing_Steps(image.level_min, image.level_max);
    const float slope = frame.slope / static_cast<float>(steps);
    smooth.resize(plane);
    Slice_Smooth({Slice_Levels(frame, room), plane}, frame.width, frame.height, steps, smooth);
    Frame_Histogram_Of(frame, smooth.data(), slope,
                       Slice_Grid(image.level_min * steps, image.level_max * steps, slope, frame.intercept), mask);
}

}  // namespace

Volume_Objects::Volume_Objects() {
    window.Name_Set("Image");
}

Volume_Objects::~Volume_Objects() {
    Clear();
}

void Volume_Objects::Clear() {
    Window_Frame_Set(&window, nullptr);
    Variable_Define_Pointer("$FRAME_OVR", nullptr);
    Variable_Define_Pointer("$DB_2D_ROOT_PT", nullptr);
    Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, 0);
    Variable_Define_Array("$DB_2D_FILE_PT", VARIABLE_POINTER, 0);
    file_of_record.clear();
    files.clear();
    places.clear();
    // Parents first: a frame that hangs nowhere need not be looked for among its neighbours.
    root.reset();
    for (const auto& one : shown) {
        one->object.reset();
        one->frames.clear();
    }
    shown.clear();
    current = -1;
}

void Volume_Objects::Build(const Open_Volumes& volumes, const Session& current_session) {
    Clear();
    root = std::make_unique<Quorel_2D>();
    root->Title_Set("Images");
    Icon_Set(*root, "class Images.tga");
    for (int at = 0; at < volumes.Nb(); ++at) {
        Volume_Build(at, volumes.Facts(at), volumes.Session_Of(at, current_session));
    }
    Files_Build(volumes);
    current = volumes.Current();
    Variable_Define_Pointer("$WINDOW_CUR", &window);
    Variable_Define_Pointer("$DB_2D_ROOT_PT", root.get());
}

void Volume_Objects::Volume_Build(int at, const Volume_Facts& facts, const Session& session) {
    const volumes::Volume& image = session.Image();
    const auto facts_set = [&](Level_Frame& data) {
        data.modality = facts.modality;
        data.flags = facts.is_scout ? FRAME_FLAG_SCOUT : 0;
    };
    Shown_Volume& made = *shown.emplace_back(std::make_unique<Shown_Volume>());
    made.name = Panel_Of_Utf8(facts.title);
    made.descriptor = Panel_Of_Utf8(facts.descriptor);
    made.object = std::make_unique<Quorel_2D>();
    made.object->Title_Set(facts.is_scout ? "Scout" : (facts.is_cine ? "Cine" : "Volume"));
    Icon_Set(*made.object, facts.is_scout ? "icon scout.tga" : (facts.is_cine ? "icon cine.tga" : "icon volume.tga"));
    made.object->Name_Set(made.name.c_str());
    made.object->descriptor = made.descriptor.c_str();
    root->Child_Add(made.object.get());
    if (facts.is_cine) {
        made.cine = Slice_Frame_Make(image, 0, session.Slice_Nb());
        facts_set(*made.cine);
        made.further[0] = made.cine.get();
    }
    for (int slice = 0; slice < session.Slice_Nb(); ++slice) {
        std::unique_ptr<Slice_Frame> data = Slice_Frame_Make(image, slice, 1);
        facts_set(*data);
        auto frame = std::make_unique<Quorel_2D>();
        frame->Title_Set("Frame");
        Icon_Set(*frame, facts.is_scout ? "icon scout.tga" : "icon image.tga");
        frame->Name_Set(std::to_string(slice + 1).c_str());
        frame->frame = data.get();
        frame->frame_more_nb = facts.is_cine ? 1 : 0;
        frame->frame_more = facts.is_cine ? made.further : nullptr;
        frame->descriptor = made.descriptor.c_str();
        made.object->Child_Add(frame.get());
        Object_Register_2D(frame.get());
        places[frame.get()] = {at, slice};
        made.data.push_back(std::move(data));
        made.frames.push_back(std::move(frame));
    }
    made.counting = session.Has_Levels() ? Counting_State::Coming : Counting_State::Waiting;
}

void Volume_Objects::Levels_Came(int volume, const Session& session) {
    Shown_Volume& one = *shown[static_cast<std::size_t>(volume)];
    for (std::size_t slice = 0; slice < one.data.size(); ++slice) {
        Slice_Frame_Fill(*one.data[slice], session.Image(), static_cast<int>(slice), 1);
    }
    one.counting = Counting_State::Coming;
}

void Volume_Objects::Levels_Gone(int volume) {
    Shown_Volume& one = *shown[static_cast<std::size_t>(volume)];
    for (const auto& frame : one.data) {
        frame->Voxels_Set({});
        Frame_Histogram_Free(frame.get());
    }
    one.counting = Counting_State::Waiting;
}

void Volume_Objects::Files_Build(const Open_Volumes& volumes) {
    const std::filesystem::path common = Common_Folder(volumes.Files());
    for (std::size_t at = 0; at < volumes.Files().size(); ++at) {
        File& file = *files.emplace_back(std::make_unique<File>());
        file.path = Shown_Path(volumes.Files()[at], common);
        file.origin = volumes.Origins()[at];
        for (std::string* const text : {&file.origin.patient_name, &file.origin.patient_id, &file.origin.study_text,
                                        &file.origin.series_text, &file.origin.study_date}) {
            *text = Panel_Of_Utf8(*text);
        }
    }
    for (int at = 0; at < volumes.Nb(); ++at) {
        const Volume_Facts& facts = volumes.Facts(at);
        const Shown_Volume& one = *shown[static_cast<std::size_t>(at)];
        if (facts.is_cine) {
            files[static_cast<std::size_t>(facts.file_of_slice.front())]->frames.push_back(one.cine.get());
            continue;
        }
        for (std::size_t slice = 0; slice < one.data.size(); ++slice) {
            files[static_cast<std::size_t>(facts.file_of_slice[slice])]->frames.push_back(one.data[slice].get());
        }
    }
    std::erase_if(files, [](const std::unique_ptr<File>& file) { return file->frames.empty(); });
    const int nb = static_cast<int>(files.size());
    auto** const table = static_cast<void**>(Variable_Define_Array("$DB_2D_FILE_PT", VARIABLE_POINTER, nb));
    for (std::size_t at = 0; table != nullptr && at < files.size(); ++at) {
        File& file = *files[at];
        file.flags.assign(file.frames.size(), 0);
        file.record = {file.path.c_str(), static_cast<int>(file.frames.size()), file.frames.data(), file.flags.data()};
        table[at] = &file.record;
        file_of_record[&file.record] = &file;
    }
    Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, table != nullptr ? nb : 0);
}

const Volume_Objects::Shown_Volume* Volume_Objects::Current() const {
    return current >= 0 && static_cast<std::size_t>(current) < shown.size()
               ? shown[static_cast<std::size_t>(current)].get()
               : nullptr;
}

Quorel_2D* Volume_Objects::Frame(int slice) const {
    const Shown_Volume* const one = Current();
    return one != nullptr && slice >= 0 && static_cast<std::size_t>(slice) < one->frames.size()
               ? one->frames[static_cast<std::size_t>(slice)].get()
               : nullptr;
}

const volumes::File_Origin* Volume_Objects::Origin_Of(const void* file_record) const {
    const auto found = file_of_record.find(file_record);
    return found != file_of_record.end() ? &found->second->origin : nullptr;
}

Frame_Place Volume_Objects::Place_Of(const Quorel_2D* frame) const {
    const auto found = places.find(frame);
    return found != places.end() ? found->second : Frame_Place{};
}

int Volume_Objects::Slice_Of(const Quorel_2D* frame) const {
    const Frame_Place place = Place_Of(frame);
    return place.volume == current ? place.slice : -1;
}

void Volume_Objects::Show(int slice) {
    Window_Frame_Set(&window, Frame(slice));
}

void Volume_Objects::Select(int first, int last) {
    for (std::size_t volume = 0; volume < shown.size(); ++volume) {
        const bool is_current = static_cast<int>(volume) == current;
        int slice = 0;
        for (const auto& frame : shown[volume]->frames) {
            if (is_current && slice >= first && slice <= last) {
                frame->Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
            } else {
                frame->Flag_Set_Off(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
            }
            ++slice;
        }
    }
}

Quorel_2D* Volume_Objects::Selected_Frame() const {
    Quorel_2D* const now = Window_Frame(&window);
    if (now != nullptr && Is_Selected(*now)) {
        return now;
    }
    const auto first_of = [](const Shown_Volume& one) -> Quorel_2D* {
        const auto found = std::ranges::find_if(one.frames, [](const auto& frame) { return Is_Selected(*frame); });
        return found != one.frames.end() ? found->get() : nullptr;
    };
    Quorel_2D* found = Current() != nullptr ? first_of(*Current()) : nullptr;
    for (std::size_t volume = 0; found == nullptr && volume < shown.size(); ++volume) {
        found = first_of(*shown[volume]);
    }
    return found;
}

std::vector<Frame_Place> Volume_Objects::Selected() const {
    std::vector<Frame_Place> selected;
    for (std::size_t volume = 0; volume < shown.size(); ++volume) {
        for (std::size_t slice = 0; slice < shown[volume]->frames.size(); ++slice) {
            if (Is_Selected(*shown[volume]->frames[slice])) {
                selected.push_back({static_cast<int>(volume), static_cast<int>(slice)});
            }
        }
    }
    return selected;
}

std::vector<Slices_To_Count> Volume_Objects::Counting_Begin(const Open_Volumes& volumes,
                                                            const Session& current_session) {
    std::vector<Slices_To_Count> wanted(shown.size());
    for (std::size_t at = 0; at < shown.size(); ++at) {
        if (shown[at]->counting != Counting_State::Done && shown[at]->counting != Counting_State::Waiting) {
            wanted[at] = Slices_To_Count_Of(volumes.Session_Of(static_cast<int>(at), current_session).Image());
            shown[at]->counting = Counting_State::Coming;
        }
    }
    return wanted;
}

void Volume_Objects::Counts_Take(std::vector<Slices_To_Count>&& counted) {
    for (std::size_t at = 0; at < std::min(shown.size(), counted.size()); ++at) {
        Shown_Volume& one = *shown[at];
        if (one.counting != Counting_State::Coming || counted[at].frames.size() != one.data.size()) {
            continue;
        }
        for (std::size_t slice = 0; slice < one.data.size(); ++slice) {
            std::swap(one.data[slice]->histogram, counted[at].frames[slice]->histogram);
            std::swap(one.data[slice]->histogram_built, counted[at].frames[slice]->histogram_built);
        }
        one.counting = Counting_State::Done;
    }
}

void Volume_Objects::Counts_Fail() {
    for (const auto& one : shown) {
        one->counting = one->counting == Counting_State::Coming ? Counting_State::Failed : one->counting;
    }
}

bool Volume_Objects::Histograms_Build(const Session& session, const Counted_Pixels& counted) {
    if (Current() == nullptr) {
        return true;
    }
    Shown_Volume& volume = *shown[static_cast<std::size_t>(current)];
    try {
        Histograms_Count(volume, session, counted);
        volume.counting = Counting_State::Done;
        return true;
    } catch (const std::bad_alloc&) {
        // A part of the histograms, or the former ones of other pixels, would be a wrong histogram of the whole.
        for (const auto& frame : volume.data) {
            Frame_Histogram_Free(frame.get());
        }
        volume.counting = Counting_State::Failed;
        return false;
    }
}

void Volume_Objects::Histograms_Count(Shown_Volume& volume, const Session& session, const Counted_Pixels& counted) {
    const volumes::Volume& image = session.Image();
    const bool is_masked = counted.tag >= 0 || (counted.background && !image.color);
    std::vector<unsigned char> mask;
    Level_Room room;
    Level_Room smooth;
    for (std::size_t slice = 0; slice < volume.data.size(); ++slice) {
        const int at = static_cast<int>(slice);
        if (is_masked) {
            mask.assign(session.Levels(at).size(), 1);
        }
        if (counted.background && !image.color) {
            Background_Leave_Out(session.Levels(at), image.nx, image.ny, image.slope, image.intercept,
                                 *counted.background, mask);
        }
        if (counted.tag >= 0) {
            std::ranges::transform(mask, session.Labels().Slice(at), mask.begin(),
                                   [&](unsigned char is_in, std::uint8_t tag) {
                                       return static_cast<unsigned char>(is_in != 0 && tag == counted.tag ? 1 : 0);
                                   });
        }
        Slice_Frame& frame = *volume.data[slice];
        const unsigned char* const chosen = is_masked ? mask.data() : nullptr;
        if (counted.is_smoothed && !image.color) {
            Smooth_Histogram_Build(frame, image, chosen, room, smooth);
        } else {
            Slice_Histogram_Build(frame, image.level_min, image.level_max, chosen, room);
        }
    }
}

}  // namespace workbench
