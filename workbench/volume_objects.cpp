#include "workbench/volume_objects.h"

#include <algorithm>
#include <cstdio>

#include "volumes/message_text.h"

namespace {

constexpr int grid_bins_max = 4096;
constexpr unsigned short modality_magnetic_resonance = 'M' << 8 | 'R';
constexpr unsigned short modality_other = 'O' << 8 | 'T';

void Icon_Set(Quorel_2D& object, const char* file) {
    std::snprintf(object.icon, sizeof object.icon, "%s", file);
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
    frames.clear();
    volume.reset();
    root.reset();
    for (const auto& frame : data) {
        Frame_Histogram_Free(frame.get());
    }
    data.clear();
}

void Volume_Objects::Build(const Session& session) {
    Clear();
    const Volume& image = session.Image();
    const auto slope = static_cast<float>(image.slope);
    const auto intercept = static_cast<float>(image.intercept);
    title = File_Name_Text(session.Path());
    descriptor = image.color ? "Colour image" : "Grey image, " + image.scalar_type;
    root = std::make_unique<Quorel_2D>();
    root->Title_Set("Images");
    Icon_Set(*root, "class Images.tga");
    volume = std::make_unique<Quorel_2D>();
    volume->Title_Set("Volume");
    Icon_Set(*volume, "icon volume.tga");
    volume->Name_Set(title.c_str());
    volume->descriptor = descriptor.c_str();
    root->Child_Add(volume.get());
    for (int slice = 0; slice < session.Slice_Nb(); ++slice) {
        auto pixels = std::make_unique<Level_Frame>(session.Levels(slice).data(), image.nx, image.ny, 1, 1, slope,
                                                    intercept, image.color);
        pixels->modality = image.color ? modality_other : modality_magnetic_resonance;
        auto frame = std::make_unique<Quorel_2D>();
        frame->Title_Set("Frame");
        Icon_Set(*frame, "icon image.tga");
        frame->Name_Set(std::to_string(slice + 1).c_str());
        frame->frame = pixels.get();
        frame->descriptor = descriptor.c_str();
        volume->Child_Add(frame.get());
        Object_Register_2D(frame.get());
        data.push_back(std::move(pixels));
        frames.push_back(std::move(frame));
    }
    Histograms_Build(session, -1);
    Variable_Define_Pointer("$WINDOW_CUR", &window);
    Variable_Define_Pointer("$DB_2D_ROOT_PT", root.get());
}

Quorel_2D* Volume_Objects::Frame(int slice) const {
    return slice >= 0 && static_cast<std::size_t>(slice) < frames.size() ? frames[static_cast<std::size_t>(slice)].get()
                                                                         : nullptr;
}

int Volume_Objects::Slice_Of(const Quorel_2D* frame) const {
    return volume ? volume->Child_Get_Id(frame) : -1;
}

void Volume_Objects::Show(int slice) {
    Window_Frame_Set(&window, Frame(slice));
}

void Volume_Objects::Select(int first, int last) {
    for (int slice = 0; static_cast<std::size_t>(slice) < frames.size(); ++slice) {
        Quorel_2D* frame = Frame(slice);
        if (slice >= first && slice <= last) {
            frame->Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
        } else {
            frame->Flag_Set_Off(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
        }
    }
}

void Volume_Objects::Histograms_Build(const Session& session, int tag) {
    const Volume& image = session.Image();
    const Histo_Grid grid = Histo_Grid_Of_Levels(image.level_min, image.level_max, static_cast<float>(image.slope),
                                                 static_cast<float>(image.intercept), grid_bins_max);
    std::vector<unsigned char> mask;
    for (std::size_t slice = 0; slice < data.size(); ++slice) {
        if (tag >= 0) {
            const std::span<const std::uint8_t> tags = session.Labels().Slice(static_cast<int>(slice));
            mask.resize(tags.size());
            std::ranges::transform(tags, mask.begin(), [tag](std::uint8_t at) { return at == tag ? 1 : 0; });
        }
        Frame_Histogram_Build(data[slice].get(), grid, tag >= 0 ? mask.data() : nullptr);
    }
}
