// Volumes from pixels, which slice is shown and selected, their histograms.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "c_interface/code_page_text.h"
#include "c_interface/image_objects.h"
#include "c_interface/session.h"

using namespace c_interface;

namespace {

constexpr int SIDE_MOST = 65535;
constexpr int BINS_MOST = 4097;  // as "$GLI_HISTO_BINS_MAX" is at first
constexpr std::int64_t MOST_PIXELS = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t VOLUME_SETTINGS_LEAST = offsetof(kit_volume_settings, descriptor) + sizeof(const char*);

std::size_t Pixel_Size(std::uint32_t pixel) {
    switch (pixel) {
        case KIT_PIXEL_UNSIGNED_8:
            return 1;
        case KIT_PIXEL_SIGNED_16:
        case KIT_PIXEL_UNSIGNED_16:
            return 2;
        case KIT_PIXEL_SIGNED_32:
        case KIT_PIXEL_COLOR:
            return 4;
        default:
            throw Failure{KIT_ERROR_ARGUMENT, "no such kind of pixel"};
    }
}

template <class Stored>
void Row_Copy(const unsigned char* from, std::span<std::int32_t> to) {
    for (std::int32_t& level : to) {
        Stored stored;
        std::memcpy(&stored, from, sizeof stored);  // rows of a host need not be aligned
        level = static_cast<std::int32_t>(stored);
        from += sizeof stored;
    }
}

void Row_Levels(std::uint32_t pixel, const unsigned char* from, std::span<std::int32_t> to) {
    switch (pixel) {
        case KIT_PIXEL_UNSIGNED_8:
            Row_Copy<std::uint8_t>(from, to);
            break;
        case KIT_PIXEL_SIGNED_16:
            Row_Copy<std::int16_t>(from, to);
            break;
        case KIT_PIXEL_UNSIGNED_16:
            Row_Copy<std::uint16_t>(from, to);
            break;
        case KIT_PIXEL_COLOR:
            Row_Copy<std::int32_t>(from, to);
            std::ranges::for_each(to, [](std::int32_t& level) { level &= 0xFFFFFF; });
            break;
        default:
            Row_Copy<std::int32_t>(from, to);
    }
}

int Times_Of(const kit_volume_settings& wanted) {
    return wanted.times > 0 ? wanted.times : 1;
}

void Settings_Check(const kit_volume_settings& wanted) {
    Require(wanted.width >= 1 && wanted.width <= SIDE_MOST && wanted.height >= 1 && wanted.height <= SIDE_MOST &&
                wanted.slices >= 1 && wanted.slices <= SIDE_MOST,
            KIT_ERROR_ARGUMENT, "width, height or slices is not from 1 to 65535");
    Require(wanted.times >= 0 && wanted.times <= SIDE_MOST, KIT_ERROR_ARGUMENT, "times is not from 0 to 65535");
    const std::int64_t planes = std::int64_t{wanted.slices} * Times_Of(wanted);
    Require(planes <= MOST_PIXELS && std::int64_t{wanted.width} * wanted.height * planes <= MOST_PIXELS,
            KIT_ERROR_ARGUMENT, "the volume is too large");
    Require(wanted.pixels != nullptr || wanted.on_row != nullptr, KIT_ERROR_ARGUMENT,
            "pixels and on_row are both null");
    Require(std::isfinite(wanted.slope) && std::isfinite(wanted.intercept) && wanted.slope >= 0.0F, KIT_ERROR_ARGUMENT,
            "slope or intercept is no number, or slope is negative");
    Require(wanted.modality <= 0xFFFF, KIT_ERROR_ARGUMENT, "modality is not two letters");
}

/** The rows of a host, by address or by call-back. */
class Row_Source {
  public:
    explicit Row_Source(const kit_volume_settings& settings)
        : wanted(settings), row_bytes(static_cast<std::size_t>(settings.width) * Pixel_Size(settings.pixel)) {
        row_stride = wanted.row_stride != 0 ? wanted.row_stride : static_cast<std::int64_t>(row_bytes);
        slice_stride = wanted.slice_stride != 0 ? wanted.slice_stride : row_stride * wanted.height;
        time_stride = wanted.time_stride != 0 ? wanted.time_stride : slice_stride * wanted.slices;
        room.resize(wanted.pixels == nullptr ? row_bytes : 0);
    }
    const unsigned char* Row(int slice, int time, int row) {
        if (wanted.pixels != nullptr) {
            return static_cast<const unsigned char*>(wanted.pixels) + time * time_stride + slice * slice_stride +
                   row * row_stride;
        }
        const auto plane = static_cast<std::int32_t>(std::int64_t{time} * wanted.slices + slice);
        Require(wanted.on_row(wanted.context, plane, row, room.data()) == 1, KIT_ERROR_ARGUMENT,
                "on_row ended the making of the volume");
        return room.data();
    }

  private:
    const kit_volume_settings& wanted;
    std::size_t row_bytes;
    std::int64_t row_stride;
    std::int64_t slice_stride;
    std::int64_t time_stride;
    std::vector<unsigned char> room;
};

/** In the host's order, which is slice by slice of one time after the other; kept time by time of one slice. */
void Levels_Read(const kit_volume_settings& wanted, Volume& volume) {
    const auto width = static_cast<std::size_t>(wanted.width);
    const std::size_t plane = width * static_cast<std::size_t>(wanted.height);
    const auto times = static_cast<std::size_t>(Times_Of(wanted));
    Row_Source source(wanted);
    volume.levels.resize(plane * static_cast<std::size_t>(wanted.slices) * times);
    for (int time = 0; time < Times_Of(wanted); ++time) {
        for (int slice = 0; slice < wanted.slices; ++slice) {
            std::size_t at = (static_cast<std::size_t>(slice) * times + static_cast<std::size_t>(time)) * plane;
            for (int row = 0; row < wanted.height; ++row, at += width) {
                Row_Levels(wanted.pixel, source.Row(slice, time, row), {volume.levels.data() + at, width});
            }
        }
    }
}

void Frames_Make(const kit_volume_settings& wanted, Volume& volume) {
    const bool is_color = wanted.pixel == KIT_PIXEL_COLOR;
    const float slope = wanted.slope > 0.0F ? wanted.slope : 1.0F;
    const auto [lowest, highest] = std::ranges::minmax(volume.levels);
    volume.times = Times_Of(wanted);
    volume.grid = is_color ? Histo_Grid{} : Histo_Grid_Of_Levels(lowest, highest, slope, wanted.intercept, BINS_MOST);
    volume.masks.resize(static_cast<std::size_t>(wanted.slices));
    const std::size_t slice_levels = volume.levels.size() / static_cast<std::size_t>(wanted.slices);
    for (std::size_t slice = 0; slice < volume.masks.size(); ++slice) {
        auto data = std::make_unique<Level_Frame>(volume.levels.data() + slice * slice_levels, wanted.width,
                                                  wanted.height, 1, volume.times, slope, wanted.intercept, is_color);
        data->modality = static_cast<unsigned short>(wanted.modality);
        auto frame = std::make_unique<Quorel_2D>();
        frame->Title_Set("Frame");
        frame->Name_Set(std::to_string(slice + 1).c_str());
        std::snprintf(frame->icon, sizeof frame->icon, "%s", "icon image.tga");
        frame->frame = data.get();
        frame->descriptor = volume.descriptor.c_str();
        Require(volume.object.Child_Add(frame.get()) != 0, KIT_ERROR_MEMORY, "no memory for a slice");
        volume.data.push_back(std::move(data));
        volume.frames.push_back(std::move(frame));
        volume.Histogram_Make(slice);
    }
}

Quorel_2D& Slice_Of(Volume& volume, std::int32_t slice) {
    Require(slice >= 0 && static_cast<std::size_t>(slice) < volume.frames.size(), KIT_ERROR_ARGUMENT,
            "slice is not one of the volume");
    return *volume.frames[static_cast<std::size_t>(slice)];
}

void Mask_Set(Volume& volume, std::size_t slice, const std::uint8_t* mask, std::int64_t row_stride) {
    const Level_Frame& frame = *volume.data[slice];
    std::vector<std::uint8_t> kept;
    if (mask != nullptr) {
        kept.reserve(std::size_t{frame.width} * frame.height);
        for (int row = 0; row < frame.height; ++row) {
            const std::uint8_t* const from = mask + row * (row_stride != 0 ? row_stride : frame.width);
            kept.insert(kept.end(), from, from + frame.width);
        }
    }
    volume.masks[slice] = std::move(kept);
    volume.Histogram_Make(slice);
}

void Select(Quorel_2D& frame, bool is_selected) {
    if (is_selected) {
        frame.Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
    } else {
        frame.Flag_Set_Off(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
    }
}

}  // namespace

extern "C" {

kit_status kit_volume_create(const kit_volume_settings* settings, kit_handle* volume) {
    return Call("kit_volume_create", 0, [&] {
        Write_To<kit_handle>(volume, 0);
        const kit_volume_settings wanted = Struct_Of(settings, VOLUME_SETTINGS_LEAST);
        Settings_Check(wanted);
        auto made = std::make_unique<Volume>();
        const std::string name = wanted.name != nullptr ? Page_Text(wanted.name) : "Volume";
        made->descriptor = wanted.descriptor != nullptr ? Page_Text(wanted.descriptor) : std::string();
        made->object.Title_Set("Volume");
        made->object.Name_Set(name.c_str());
        made->object.descriptor = made->descriptor.c_str();
        std::snprintf(made->object.icon, sizeof made->object.icon, "%s", "icon volume.tga");
        Levels_Read(wanted, *made);
        Frames_Make(wanted, *made);
        Volume& live = *made;
        Session& session = Session::The();
        const kit_handle handle = session.handles.Add(std::move(made));
        if (World().root_2d.Child_Add(&live.object) == 0) {
            session.handles.Take(handle);
            throw std::bad_alloc();
        }
        for (const auto& frame : live.frames) {
            Object_Register_2D(frame.get());
        }
        session.Announce(UPDATE_STRUCTURE | UPDATE_LEVEL_2D);
        *volume = handle;
    });
}

kit_status kit_volume_destroy(kit_handle volume) {
    return Destroy<Volume>("kit_volume_destroy", volume);
}

kit_status kit_volume_show(kit_handle volume, int32_t slice) {
    return Call("kit_volume_show", volume, [&] {
        Quorel_2D* const frame = volume != 0 ? &Slice_Of(Object_Of<Volume>(volume), slice) : nullptr;
        Window_Frame_Set(&World().window, frame);
        if (frame != nullptr) {
            // The window's volume is the one made here, also when a user has moved the slice to another class.
            World().window.volume = &Object_Of<Volume>(volume).object;
        }
        Session::The().Announce(UPDATE_FRAME_CUR | UPDATE_WINDOW_CUR | UPDATE_SELECTION | UPDATE_LEVEL_2D);
    });
}

kit_status kit_volume_shown(kit_handle* volume, int32_t* slice) {
    return Call("kit_volume_shown", 0, [&] {
        const Frame_Place place = Place_Of_Frame(Window_Frame(&World().window));
        Write_To(volume, place.volume);
        Write_To<int32_t>(slice, place.slice);
    });
}

kit_status kit_volume_select(kit_handle volume, int32_t slice, int32_t selected) {
    return Call("kit_volume_select", volume, [&] {
        auto& live = Object_Of<Volume>(volume);
        Require(selected == 0 || selected == 1, KIT_ERROR_ARGUMENT, "selected is neither 0 nor 1");
        if (slice == -1) {
            for (const auto& frame : live.frames) {
                Select(*frame, selected != 0);
            }
        } else {
            Select(Slice_Of(live, slice), selected != 0);
        }
        Session::The().Announce(UPDATE_SELECTION | UPDATE_LEVEL_2D);
    });
}

kit_status kit_volume_selected(kit_handle volume, int32_t slice, int32_t* selected) {
    return Call("kit_volume_selected", volume, [&] {
        const Quorel_2D& frame = Slice_Of(Object_Of<Volume>(volume), slice);
        Write_To<int32_t>(selected,
                          frame.Flag_Get_Bit(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION) != 0 ? 1 : 0);
    });
}

kit_status kit_volume_slices(kit_handle volume, int32_t* slices) {
    return Call("kit_volume_slices", volume,
                [&] { Write_To(slices, static_cast<int32_t>(Object_Of<Volume>(volume).frames.size())); });
}

kit_status kit_volume_times(kit_handle volume, int32_t* times) {
    return Call("kit_volume_times", volume, [&] { Write_To<int32_t>(times, Object_Of<Volume>(volume).times); });
}

kit_status kit_volume_time_show(kit_handle volume, int32_t time) {
    return Call("kit_volume_time_show", volume, [&] {
        auto& live = Object_Of<Volume>(volume);
        Require(time >= 0 && time < live.times, KIT_ERROR_ARGUMENT, "time is not one of the volume");
        live.time = time;
        for (std::size_t slice = 0; slice < live.frames.size(); ++slice) {
            live.frames[slice]->slice[1] = time;
            if (!live.masks[slice].empty()) {
                live.Histogram_Make(slice);
            }
        }
        Session::The().Announce(UPDATE_FRAME_CUR | UPDATE_MOUSE_FRAME | UPDATE_HISTO_DATA);
    });
}

kit_status kit_volume_time_shown(kit_handle volume, int32_t* time) {
    return Call("kit_volume_time_shown", volume, [&] { Write_To<int32_t>(time, Object_Of<Volume>(volume).time); });
}

kit_status kit_volume_mask_set(kit_handle volume, int32_t slice, const uint8_t* mask, int64_t row_stride) {
    return Call("kit_volume_mask_set", volume, [&] {
        auto& live = Object_Of<Volume>(volume);
        if (slice == -1) {
            for (std::size_t one = 0; one < live.frames.size(); ++one) {
                Mask_Set(live, one, mask, row_stride);
            }
        } else {
            Slice_Of(live, slice);
            Mask_Set(live, static_cast<std::size_t>(slice), mask, row_stride);
        }
        Session::The().Announce(UPDATE_HISTO_DATA);
    });
}

kit_status kit_volume_pointer(kit_handle volume, int32_t slice, float x, float y) {
    return Call("kit_volume_pointer", volume, [&] {
        Quorel_2D* const frame = volume != 0 ? &Slice_Of(Object_Of<Volume>(volume), slice) : nullptr;
        Require(std::isfinite(x) && std::isfinite(y) && std::abs(x) <= 1e6F && std::abs(y) <= 1e6F, KIT_ERROR_ARGUMENT,
                "x or y is no position");
        auto* const place = static_cast<float*>(Variable_Array("$MOUSE_FRM", VARIABLE_FLOAT, nullptr));
        Require(place != nullptr, KIT_ERROR_MISSING, "a variable is gone");
        place[0] = x;
        place[1] = y;
        Variable_Define_Pointer("$FRAME_OVR", frame);
        Session::The().Announce(UPDATE_MOUSE_FRAME);
    });
}

kit_status kit_volume_histogram(kit_handle volume, int32_t slice, kit_histogram* histogram, uint32_t* counts,
                                uint32_t room, uint32_t* needed) {
    return Call("kit_volume_histogram", volume, [&] {
        const Histo_Record* const record = Slice_Of(Object_Of<Volume>(volume), slice).frame->Histogram_Get();
        Require(record != nullptr && record->counts != nullptr, KIT_ERROR_STATE, "there is no histogram");
        if (histogram != nullptr) {
            Struct_Fill(histogram, {0, record->nb_bins, record->origin, record->bin_width, record->max_count, 0});
        }
        if (histogram == nullptr || counts != nullptr || room != 0 || needed != nullptr) {
            Array_Out<std::uint32_t>({record->counts, record->nb_bins}, counts, room, needed);
        }
    });
}

}  // extern "C"
