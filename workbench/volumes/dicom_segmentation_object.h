/** A DICOM segmentation object while it is read: what it holds, where its frames lie, whose voxels they give to TAGs.
 */
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_frames.h"
#include "workbench/volumes/dicom_pixels.h"
#include "workbench/volumes/dicom_segmentation.h"
#include "workbench/volumes/dicom_stored_frames.h"
#include "workbench/volumes/frame_voxels.h"

namespace volumes {

/** One object while it is read. */
class Segmentation_Reader {
  public:
    Segmentation_Reader(std::span<const std::uint8_t> file_bytes, const Volume& shown_image,
                        std::optional<double> share_threshold, const Load_Limits& file_limits,
                        const Load_Progress& file_progress)
        : bytes(file_bytes),
          image(shown_image),
          threshold(share_threshold),
          limits(file_limits),
          progress(file_progress) {}

    /** Once. @throw Dicom_Refusal, std::bad_alloc */
    Segmentation_Result Read();

  private:
    struct Frame {
        std::int32_t number = 0;  ///< of the file, from 0
        std::int32_t segment = 0;
        Picture_Voxels voxels;
    };

    enum class Kind { Binary, Label_Map, Shares };

    DcmDataset& Data_Set() { return *file.getDataset(); }
    void Kind_Read();
    void Segments_Read();
    void Tags_Give(const std::vector<std::string>& descriptions);
    void Format_Read();
    std::int32_t Segment_Of_Frame(std::int32_t frame, DcmItem* own, DcmItem* shared);
    void Frames_Read();
    Placed_Picture Picture_Of(std::int32_t frame) const;
    bool Is_Coarser(const std::map<std::array<std::int32_t, 3>, double>& depth_of) const;
    bool On_Image();
    void On_Own_Grid();
    bool Is_Distance_Told();
    double Own_Distance(const std::vector<double>& depths, const std::array<double, 3>& spacing);
    void Labels_Begin(const Volume& like);
    void Labels_Fill();
    /** Gives voxels to a TAG, or to those of a label map. */
    void Frame_Lay(const Frame& frame, std::span<const std::int64_t> values);
    void Warnings_Tell();

    std::span<const std::uint8_t> bytes;
    const Volume& image;
    std::optional<double> threshold;
    const Load_Limits& limits;
    const Load_Progress& progress;
    Data_Set_Source source;  // outlives the data set
    DcmFileFormat file;
    std::optional<Stored_Frames> stored;
    Kind kind = Kind::Binary;
    Pixel_Format format;
    std::int64_t share_whole = 0;  // value of a voxel that is wholly of the segment
    std::map<std::int32_t, int> tag_of_segment;
    Frame_Plan plan;
    std::vector<Frame> frames;
    std::uint64_t overlapping_nb = 0;
    std::uint64_t outside_nb = 0;
    std::uint64_t unknown_nb = 0;  // of a label map: numbers that are no segments
    bool has_damage = false;       // frames that their codec had errors with
    Segmentation_Result result;
};

}  // namespace volumes
