// Data for the example: one volume of frames with two kinds of tissue, a table of one file, and brush masks.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "kits/dataset/dataset_host.h"

constexpr int FRAME_NB = 20;
constexpr int SIDE = 96;       // pixels of a frame
constexpr int LEVEL_NB = 256;  // grey levels
constexpr int BRUSH_NB = 4;
constexpr int BRUSH_RADIUS = 12;

struct Made_Data {
    Quorel_Window window;
    Quorel_2D root;    // of the class tree
    Quorel_2D volume;  // its frames are what the window shows
    std::vector<std::unique_ptr<Level_Frame>> image;
    std::vector<std::unique_ptr<Quorel_2D>> frame;
    File_Record file;

    Made_Data() {
        levels.resize(std::size_t{FRAME_NB} * SIDE * SIDE);
        for (std::size_t i = 0; i < levels.size(); ++i) {
            const int x = static_cast<int>(i % SIDE) - SIDE / 2;
            const int y = static_cast<int>(i / SIDE % SIDE) - SIDE / 2;
            const double noise =
                std::sin(static_cast<double>(i) * 12.9898) * 10.0 + std::sin(static_cast<double>(i)) * 8.0;
            levels[i] = static_cast<std::int32_t>((x * x + y * y < 900 ? 170.0 : 80.0) + noise);
        }
        root.Title_Set("Images");
        volume.Title_Set("Volume");
        volume.Name_Set("Phantom");
        root.Child_Add(&volume);
        // The grid and "$GLI_HISTO_BINS_MAX" are given the same number.
        const Histo_Grid grid = Histo_Grid_Of_Levels(0, LEVEL_NB - 1, 1.0F, 0.0F, LEVEL_NB + 1);
        for (int k = 0; k < FRAME_NB; ++k) {
            image.push_back(
                std::make_unique<Level_Frame>(levels.data() + std::size_t{SIDE} * SIDE * static_cast<std::size_t>(k),
                                              SIDE, SIDE, 1, 1, 1.0F, 0.0F, false));
            Frame_Histogram_Build(image.back().get(), grid, nullptr);
            auto made = std::make_unique<Quorel_2D>();
            made->Title_Set("Frame");
            made->Name_Set(std::to_string(k + 1).c_str());
            made->descriptor = "Phantom";
            std::snprintf(made->icon, sizeof made->icon, "icon image.tga");
            made->frame = image.back().get();
            made->Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
            volume.Child_Add(made.get());
            Object_Register_2D(made.get());
            file_frame.push_back(made->frame);
            frame.push_back(std::move(made));
        }
        file.path = "C:\\images\\phantom.raw";
        file.frame_nb = FRAME_NB;
        file.frame = file_frame.data();
        file_flags.assign(FRAME_NB, 0);
        file.frame_flags = file_flags.data();
        Variables_Define();
        Window_Frame_Set(&window, frame[0].get());
    }
    ~Made_Data() {
        for (const char* name : {"$WINDOW_CUR", "$DB_2D_ROOT_PT"}) {
            Variable_Define_Pointer(name, nullptr);
        }
        Variable_Set("$DB_2D_FILE_NB", 0);
        Variable_Set("$BRUSH_NB", 0);
    }
    Made_Data(const Made_Data&) = delete;
    Made_Data& operator=(const Made_Data&) = delete;

  private:
    void Variables_Define() {
        Variable_Define_Pointer("$WINDOW_CUR", &window);
        Variable_Define_Pointer("$DB_2D_ROOT_PT", &root);
        Variable_Define_Scalar("$GLI_HISTO_BINS_MAX", VARIABLE_UNSIGNED_16, LEVEL_NB + 1);
        Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, 1);
        static_cast<void**>(Variable_Define_Array("$DB_2D_FILE_PT", VARIABLE_POINTER, 1))[0] = &file;
        Variable_Define_Scalar("$BRUSH_NB", VARIABLE_UNSIGNED_16, BRUSH_NB);
        Variable_Define_Scalar("$BRUSH_CUR", VARIABLE_UNSIGNED_16, 0);
        Variable_Define_Scalar("$BRUSH_RADIUS", VARIABLE_UNSIGNED_16, BRUSH_RADIUS);
        auto* sizes = static_cast<std::uint16_t*>(Variable_Define_Array("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, BRUSH_NB));
        auto** masks = static_cast<void**>(Variable_Define_Array("$BRUSH_PT", VARIABLE_POINTER, BRUSH_NB));
        for (int brush = 0; brush < BRUSH_NB; ++brush) {
            Mask& mask = mask_of[static_cast<std::size_t>(brush)];
            for (std::size_t row = 0; row < mask.row.size(); ++row) {
                mask.row[row] = mask.bytes[row].data();
            }
            sizes[brush] = static_cast<std::uint16_t>(1 + 3 * brush);
            masks[brush] = mask.row.data();
        }
    }

    struct Mask {
        std::array<std::array<unsigned char, 2 * BRUSH_RADIUS + 1>, 2 * BRUSH_RADIUS + 1> bytes{};
        std::array<unsigned char*, 2 * BRUSH_RADIUS + 1> row{};
    };
    std::array<Mask, BRUSH_NB> mask_of;
    std::vector<std::int32_t> levels;
    std::vector<Quorel_2D_Frame*> file_frame;
    std::vector<unsigned short> file_flags;
};
