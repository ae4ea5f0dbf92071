/** Which files of a folder are images, and of what kind: by their names and by what they begin with. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/image_folder.h"

namespace volumes {

/** A file to be opened. */
struct Wanted_File {
    std::filesystem::path path;
    bool is_named = false;  ///< by the user, not found in a folder
};

/** Whether a volume that is no DICOM file is called so. */
bool Is_Volume_Name(const std::string& name);
bool Is_Dicom_Name(const std::string& name);
/** The voxels of a pair: they are read with their header, if that is read too. */
bool Is_Voxels_Of_Pair(const Wanted_File& file, const std::string& name);
/** Whether a file begins as a NIfTI file does that holds its voxels, whatever it is called. */
bool Is_Nifti_Content(std::span<const std::uint8_t> head);
/** Whether a file begins as DICOM's files do, whatever it is called. */
bool Is_Dicom_Content(const std::filesystem::path& path);

}  // namespace volumes
