/** Volumes, classes and files behind handles, and the image window that shows them. */
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "c_interface/session.h"
#include "kits/dataset/dataset_host.h"

namespace c_interface {

/** A volume with an object for each slice. A slice's levels at all times follow each other. */
class Volume : public Object {
  public:
    static constexpr Kind KIND = Kind::Volume;
    Volume() : Object(KIND) {}
    ~Volume() override;

    /** Counts a slice anew: all its times, or where it has a mask the shown one. Throws bad_alloc. */
    void Histogram_Make(std::size_t slice);

    std::vector<std::int32_t> levels;
    int times = 1;
    int time = 0;  // the one that is shown
    Histo_Grid grid;
    std::vector<std::vector<std::uint8_t>> masks;  // of each slice; empty: all pixels count
    std::string descriptor;                        // in the code page
    std::vector<std::unique_ptr<Level_Frame>> data;
    std::vector<std::unique_ptr<Quorel_2D>> frames;
    Quorel_2D object;
};

/** A class of one dimension. */
class Class : public Object {
  public:
    static constexpr Kind KIND = Kind::Class;
    Class() : Object(KIND) {}

    int dimension = 0;
    std::unique_ptr<Quorel_1D> one;
    std::unique_ptr<Quorel_2D> two;
    std::unique_ptr<Quorel_3D> three;
};

/** A file of the table. */
class File : public Object {
  public:
    static constexpr Kind KIND = Kind::File;
    File() : Object(KIND) {}

    std::string path;  // in the code page
    kit_handle volume = 0;
    std::vector<Quorel_2D_Frame*> frames;
    std::vector<unsigned short> flags;
    File_Record record;
};

/** The roots and the image window. */
struct Image_World {
    Quorel_1D root_1d;
    Quorel_2D root_2d;
    Quorel_3D root_3d;
    Quorel_Window window;
};
Image_World& World();
/** Made by kit_start, gone with kit_stop. Throws bad_alloc. */
void World_Make();
void World_End();

/** Which slice an object is. */
struct Frame_Place {
    kit_handle volume = 0;
    int slice = -1;
};
Frame_Place Place_Of_Frame(const Quorel_2D* frame);

/** Writes the table of files anew from the files that have handles. */
void Files_Table_Make();
/** Takes an object whose handle is gone out of window, trees and tables; it is freed afterwards. */
void Object_Leave(Object& object);
/** What panels must hear when such objects go. */
inline constexpr std::uint64_t UPDATE_GONE = UPDATE_STRUCTURE | UPDATE_SELECTION | UPDATE_LEVEL_1D | UPDATE_LEVEL_2D |
                                             UPDATE_LEVEL_3D | UPDATE_FRAME_CUR | UPDATE_WINDOW_CUR |
                                             UPDATE_HISTO_DATA | UPDATE_MOUSE_FRAME;

}  // namespace c_interface
