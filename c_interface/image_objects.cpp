#include "c_interface/image_objects.h"

#include <algorithm>

namespace c_interface {

namespace {

std::unique_ptr<Image_World> world;

template <class Class_Object>
void Children_To_Parent(Class_Object& object, Class_Object& root) {
    Class_Object* const parent = object.Parent_Get_Pt() != nullptr ? object.Parent_Get_Pt() : &root;
    int position = std::max(parent->Child_Get_Id(&object), 0);
    while (object.Child_Get_Nb() > 0) {
        Class_Object* const child = object.Child_Get_Pt(0);
        if (parent->Child_Insert(position, child) == 0) {
            object.Child_Remove(0);
        }
        ++position;
    }
    parent->Child_Remove(&object);
}

void File_Fill(File& file, const Volume* volume) {
    file.frames.clear();
    if (volume != nullptr) {
        for (const auto& data : volume->data) {
            file.frames.push_back(data.get());
        }
    }
    file.flags.resize(file.frames.size(), 0);
    file.record = {file.path.c_str(), static_cast<int>(file.frames.size()), file.frames.data(), file.flags.data()};
}

void Volume_Leave(Volume& volume) {
    Image_World& images = World();
    const Quorel_2D* const shown = Window_Frame(&images.window);
    if (std::ranges::any_of(volume.frames, [&](const auto& frame) { return frame.get() == shown; })) {
        Window_Frame_Set(&images.window, nullptr);
    }
    Variable_Define_Pointer("$FRAME_OVR", nullptr);
    for (const auto& frame : volume.frames) {
        Object_Unregister_2D(frame.get());
        if (Quorel_2D* const parent = frame->Parent_Get_Pt(); parent != nullptr) {
            parent->Child_Remove(frame.get());
        }
    }
    Children_To_Parent(volume.object, images.root_2d);
    Files_Table_Make();
}

void Class_Leave(Class& one) {
    Image_World& images = World();
    if (one.one != nullptr) {
        Children_To_Parent(*one.one, images.root_1d);
    } else if (one.two != nullptr) {
        Children_To_Parent(*one.two, images.root_2d);
    } else if (one.three != nullptr) {
        Children_To_Parent(*one.three, images.root_3d);
    }
}

}  // namespace

Volume::~Volume() {
    for (const auto& frame : data) {
        Frame_Histogram_Free(frame.get());
    }
}

void Volume::Histogram_Make(std::size_t slice) {
    Level_Frame& frame = *data[slice];
    const std::int32_t* const all = frame.levels;
    const bool is_masked = !masks[slice].empty();
    if (is_masked) {
        // The kit takes the first plane where there is a mask: for the moment that is the shown one.
        frame.levels = all + static_cast<std::size_t>(time) * frame.width * frame.height;
    }
    const int made = Frame_Histogram_Build(&frame, grid, is_masked ? masks[slice].data() : nullptr);
    frame.levels = all;
    if (made == 0) {
        throw std::bad_alloc();
    }
}

Image_World& World() {
    return *world;
}

void World_Make() {
    world = std::make_unique<Image_World>();
    world->window.Name_Set("Image");
    world->root_1d.Title_Set("Classes");
    world->root_2d.Title_Set("Images");
    world->root_3d.Title_Set("Volumes");
}

void World_End() {
    world.reset();
}

Frame_Place Place_Of_Frame(const Quorel_2D* frame) {
    const Handle_Table& handles = Session::The().handles;
    for (const kit_handle handle : handles.All(Kind::Volume)) {
        const auto& volume = static_cast<const Volume&>(*handles.Find(handle));
        const auto found = std::ranges::find(volume.frames, frame, &std::unique_ptr<Quorel_2D>::get);
        if (found != volume.frames.end()) {
            return {handle, static_cast<int>(found - volume.frames.begin())};
        }
    }
    return {};
}

void Files_Table_Make() {
    const Handle_Table& handles = Session::The().handles;
    const std::vector<kit_handle> all = handles.All(Kind::File);
    const int nb = static_cast<int>(all.size());
    auto** const table = static_cast<void**>(Variable_Define_Array("$DB_2D_FILE_PT", VARIABLE_POINTER, nb));
    for (std::size_t at = 0; table != nullptr && at < all.size(); ++at) {
        auto& file = static_cast<File&>(*handles.Find(all[at]));
        const Object* const volume = handles.Find(file.volume);
        File_Fill(file, static_cast<const Volume*>(volume));
        table[at] = &file.record;
    }
    Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, table != nullptr ? nb : 0);
}

void Object_Leave(Object& object) {
    switch (object.kind) {
        case Kind::Volume:
            Volume_Leave(static_cast<Volume&>(object));
            break;
        case Kind::Class:
            Class_Leave(static_cast<Class&>(object));
            break;
        case Kind::File:
            Files_Table_Make();
            break;
        case Kind::Panel:
            break;
    }
}

}  // namespace c_interface
