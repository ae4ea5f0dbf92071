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

constexpr int side_most = 65535;
constexpr int bins_most = 4096;
constexpr std::size_t settings_least = offsetof(kit_volume_settings, descriptor) + sizeof(const char*);

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

void Settings_Check(const kit_volume_settings& wanted) {
    Require(wanted.width >= 1 && wanted.width <= side_most && wanted.height >= 1 && wanted.height <= side_most &&
                wanted.slices >= 1 && wanted.slices <= side_most,
            KIT_ERROR_ARGUMENT, "width, height or slices is not from 1 to 65535");
    Require(std::int64_t{wanted.width} * wanted.height * wanted.slices <= std::numeric_limits<std::int32_t>::max(),
            KIT_ERROR_ARGUMENT, "the volume is too large");
    Require(wanted.pixels != nullptr || wanted.on_row != nullptr, KIT_ERROR_ARGUMENT,
            "pixels and on_row are both null");
    Require(std::isfinite(wanted.slope) && std::isfinite(wanted.intercept) && wanted.slope >= 0.0F, KIT_ERROR_ARGUMENT,
            "slope or intercept is no number, or slope is negative");
    Require(wanted.modality <= 0xFFFF, KIT_ERROR_ARGUMENT, "modality is not two letters");
}

void Levels_Read(const kit_volume_settings& wanted, std::vector<std::int32_t>& levels) {
    const std::size_t pixel_size = Pixel_Size(wanted.pixel);
    const auto width = static_cast<std::size_t>(wanted.width);
    const auto row_bytes = static_cast<std::int64_t>(width * pixel_size);
    const std::int64_t row_stride = wanted.row_stride != 0 ? wanted.row_stride : row_bytes;
    const std::int64_t slice_stride = wanted.slice_stride != 0 ? wanted.slice_stride : row_stride * wanted.height;
    levels.resize(width * static_cast<std::size_t>(wanted.height) * static_cast<std::size_t>(wanted.slices));
    std::vector<unsigned char> row_room(wanted.pixels == nullptr ? width * pixel_size : 0);
    std::size_t at = 0;
    for (std::int32_t slice = 0; slice < wanted.slices; ++slice) {
        for (std::int32_t row = 0; row < wanted.height; ++row, at += width) {
            const unsigned char* from = row_room.data();
            if (wanted.pixels != nullptr) {
                from = static_cast<const unsigned char*>(wanted.pixels) + slice * slice_stride + row * row_stride;
            } else {
                Require(wanted.on_row(wanted.context, slice, row, row_room.data()) == 1, KIT_ERROR_ARGUMENT,
                        "on_row ended the making of the volume");
            }
            Row_Levels(wanted.pixel, from, {levels.data() + at, width});
        }
    }
}

/** The grid of levels; where bins are of several levels, with room for the bin that the panel adds. */
Histo_Grid Grid_Of(std::int32_t lowest, std::int32_t highest, float slope, float intercept) {
    const Histo_Grid grid = Histo_Grid_Of_Levels(lowest, highest, slope, intercept, bins_most);
    if (std::int64_t{highest} - lowest < bins_most || !(grid.bin_width > 0.0F)) {
        return grid;
    }
    const int added = static_cast<int>(std::clamp(1.0F / grid.bin_width, 0.0F, bins_most / 2.0F)) + 1;
    return Histo_Grid_Of_Levels(lowest, highest, slope, intercept, bins_most - added);
}

void Frames_Make(const kit_volume_settings& wanted, Volume& volume) {
    const bool is_color = wanted.pixel == KIT_PIXEL_COLOR;
    const float slope = wanted.slope > 0.0F ? wanted.slope : 1.0F;
    const auto [lowest, highest] = std::ranges::minmax(volume.levels);
    const Histo_Grid grid = is_color ? Histo_Grid{} : Grid_Of(lowest, highest, slope, wanted.intercept);
    const std::size_t plane = static_cast<std::size_t>(wanted.width) * static_cast<std::size_t>(wanted.height);
    for (std::int32_t slice = 0; slice < wanted.slices; ++slice) {
        auto data = std::make_unique<Level_Frame>(volume.levels.data() + static_cast<std::size_t>(slice) * plane,
                                                  wanted.width, wanted.height, 1, 1, slope, wanted.intercept, is_color);
        data->modality = static_cast<unsigned short>(wanted.modality);
        Require(Frame_Histogram_Build(data.get(), grid, nullptr) != 0, KIT_ERROR_MEMORY, "no histogram could be made");
        auto frame = std::make_unique<Quorel_2D>();
        frame->Title_Set("Frame");
        frame->Name_Set(std::to_string(slice + 1).c_str());
        std::snprintf(frame->icon, sizeof frame->icon, "%s", "icon image.tga");
        frame->frame = data.get();
        frame->descriptor = volume.descriptor.c_str();
        Require(volume.object.Child_Add(frame.get()) != 0, KIT_ERROR_MEMORY, "no memory for a slice");
        volume.data.push_back(std::move(data));
        volume.frames.push_back(std::move(frame));
    }
}

Quorel_2D& Slice_Of(Volume& volume, std::int32_t slice) {
    Require(slice >= 0 && static_cast<std::size_t>(slice) < volume.frames.size(), KIT_ERROR_ARGUMENT,
            "slice is not one of the volume");
    return *volume.frames[static_cast<std::size_t>(slice)];
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
        const kit_volume_settings wanted = Struct_Of(settings, settings_least);
        Settings_Check(wanted);
        auto made = std::make_unique<Volume>();
        const std::string name = wanted.name != nullptr ? Page_Text(wanted.name) : "Volume";
        made->descriptor = wanted.descriptor != nullptr ? Page_Text(wanted.descriptor) : std::string();
        made->object.Title_Set("Volume");
        made->object.Name_Set(name.c_str());
        made->object.descriptor = made->descriptor.c_str();
        std::snprintf(made->object.icon, sizeof made->object.icon, "%s", "icon volume.tga");
        Levels_Read(wanted, made->levels);
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
    return Call("kit_volume_destroy", volume, [&] {
        Object_Of<Volume>(volume);
        Session& session = Session::The();
        session.Give_Back(session.handles.Take(volume));
    });
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
