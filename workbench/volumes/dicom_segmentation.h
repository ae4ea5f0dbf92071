/** Labels as DICOM keeps them: segmentation objects and structure sets, and reading them onto an image. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/volume.h"
#include "workbench/volumes/volume_load.h"

namespace volumes {

/** A meaning from a dictionary of codes: "10200004", "SCT", "Liver". */
struct Coded_Concept {
    std::string value;
    std::string scheme;
    std::string meaning;
    bool operator==(const Coded_Concept&) const = default;
};

inline constexpr int TAG_MOST = 255;  ///< largest number of a TAG

/** What an object says of one of its segments. Texts are UTF-8. */
struct Segment {
    int tag = 0;                         ///< 1 .. TAG_MOST
    std::string label;                   ///< its name
    std::optional<std::uint32_t> color;  ///< 0x00RRGGBB
    Coded_Concept category;              ///< "Tissue"
    Coded_Concept type;                  ///< "White matter"
};

/** Whose images an object belongs to, or an image is. Empty: it does not say. */
struct Object_Owner {
    std::string patient;             ///< number, not name
    std::string frame_of_reference;  ///< unique identifier
    /** Whether both say something, and not the same. */
    bool Is_Other(const Object_Owner& than) const {
        const auto differs = [](const std::string& a, const std::string& b) {
            return !a.empty() && !b.empty() && a != b;
        };
        return differs(patient, than.patient) || differs(frame_of_reference, than.frame_of_reference);
    }
};

/** Of a file; says nothing when the file is no DICOM file or cannot be read. Never throws. */
Object_Owner Object_Owner_Read(const std::filesystem::path& file, const Load_Limits& limits) noexcept;

struct Segmentation_Result {
    /** Levels are TAG numbers, 0 is background. On the voxels of the image where the object's frames lie on them,
     *  whatever their order; else on the object's own. No value: see the other members. */
    std::optional<Volume> labels;
    std::vector<Segment> segments;
    Object_Owner owner;
    bool is_on_image = false;           ///< `labels` has the image's voxels
    bool needs_threshold = false;       ///< it holds shares, and no threshold was given: ask, and read it again
    std::string error;                  ///< to follow the file's name: "is no segmentation object"; empty on success
    std::vector<std::string> warnings;  ///< said in the same way
    bool is_other_object = false;       ///< it is an object of another kind; `error` says so too
    bool is_cancelled = false;          ///< the progress callback gave up; `error` says so too
};

/** Reads the segmentations of others, too: binary ones, label maps and shares, frames in any order, of some slices
 *  only, compressed or deflated. The TAG of a segment is its number, or what its description says where this program
 *  wrote it. Of segments that overlap, the one with the higher number has the voxel. Never throws.
 *  @param image only where its voxels lie is looked at: sizes and affine
 *  @param threshold share of a voxel, 0 .. 1
 *  @param limits most bytes of the labels, and of an inflated data set, each for itself
 *  @param progress may be empty; called on the caller's thread */
Segmentation_Result Dicom_Segmentation_Read(std::span<const std::uint8_t> file, const Volume& image,
                                            std::optional<double> threshold, const Load_Limits& limits = {},
                                            const Load_Progress& progress = {}) noexcept;

/** Reads a radiotherapy structure set: the closed contours of each region are filled into a TAG on the slice that they
 *  lie in, by the even-odd rule at the centres of the voxels, all contours of a region and a slice together, so that
 *  one inside another is a hole. The TAG of a region is its number where all numbers are TAGs. Never throws; otherwise
 *  as Dicom_Segmentation_Read, with labels that are always on the image. */
Segmentation_Result Dicom_Structure_Set_Read(std::span<const std::uint8_t> file, const Volume& image,
                                             const Load_Limits& limits = {},
                                             const Load_Progress& progress = {}) noexcept;

/** "TAG 17": the description of a segment, from which its TAG is found again. */
std::string Tag_Description_Text(int tag);

}  // namespace volumes
