/** Loaded files, frames and the objects that refer to them, as a host of the file view holds them. */
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "database/db_list.h"
#include "kits/dataset/dataset_host.h"

class File_Scene {
  public:
    struct File {
        File_Record record;
        std::string path;
        std::vector<Quorel_2D_Frame*> frames;
        std::vector<unsigned short> flags;
    };

    File_Scene() { Variable_Define_Pointer("$WINDOW_CUR", &window); }
    ~File_Scene() {
        for (const char* name : {"$WINDOW_CUR", "$DB_2D_FILE_NB", "$DB_2D_FILE_PT"}) {
            Variable_Undefine(name);
        }
    }
    File_Scene(const File_Scene&) = delete;
    File_Scene& operator=(const File_Scene&) = delete;

    Quorel_2D_Frame& Add_Frame(int slices = 1, int times = 1, int width = 64, int height = 32, int modality = 0x4354) {
        Quorel_2D_Frame& frame = frames.emplace_back();
        frame.slices = static_cast<unsigned short>(slices);
        frame.times = static_cast<unsigned short>(times);
        frame.width = static_cast<unsigned short>(width);
        frame.height = static_cast<unsigned short>(height);
        frame.modality = static_cast<unsigned short>(modality);
        return frame;
    }
    File& Add_File(const std::string& path, const std::vector<Quorel_2D_Frame*>& its_frames) {
        File& file = files.emplace_back();
        file.path = path;
        file.frames = its_frames;
        file.flags.resize(its_frames.size());
        file.record.path = file.path.c_str();
        file.record.frame_nb = static_cast<int>(its_frames.size());
        file.record.frame = file.frames.data();
        file.record.frame_flags = file.flags.data();
        table.push_back(&file.record);
        Publish();
        return file;
    }
    /** A file of `frame_nb` plain frames. */
    File& Add_File(const std::string& path, int frame_nb) {
        std::vector<Quorel_2D_Frame*> its_frames;
        its_frames.reserve(static_cast<std::size_t>(frame_nb));
        for (int i = 0; i < frame_nb; ++i) {
            its_frames.push_back(&Add_Frame());
        }
        return Add_File(path, its_frames);
    }
    void Add_Null_File() {
        table.push_back(nullptr);
        Publish();
    }
    /** An object of the plain 2D class that the iterators yield. */
    Quorel_2D& Add_Object(Quorel_2D_Frame* frame, const std::vector<Quorel_2D_Frame*>& more = {}) {
        Quorel_2D& object = objects.emplace_back();
        object.frame = frame;
        if (!more.empty()) {
            further.push_back(more);
            object.frame_more = further.back().data();
            object.frame_more_nb = static_cast<int>(more.size());
        }
        Object_Register_2D(&object);
        return object;
    }
    void Publish() {
        Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, static_cast<double>(table.size()));
        Variable_Define_Array_At("$DB_2D_FILE_PT", VARIABLE_POINTER, static_cast<int>(table.size()), table.data());
    }

    Quorel_Window window;
    std::deque<Quorel_2D_Frame> frames;
    std::deque<File> files;
    std::vector<File_Record*> table;
    std::deque<std::vector<Quorel_2D_Frame*>> further;
    std::deque<Quorel_2D> objects;
};
