#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_label_reading.h"
#include "workbench/volumes/dicom_segmentation.h"
#include "workbench/volumes/frame_voxels.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/polygon_fill.h"

namespace volumes {

namespace {

/** All numbers of a value; empty when one is none. */
std::vector<double> Numbers_Of(DcmItem& item, const DcmTagKey& tag) {
    DcmElement* element = nullptr;
    OFString text;
    if (item.findAndGetElement(tag, element).bad() || element == nullptr ||
        element->getOFStringArray(text, OFFalse).bad()) {
        return {};
    }
    std::vector<double> numbers;
    const char* at = text.c_str();
    const char* const end = at + text.size();
    while (at != end) {
        const char* const separator = std::find(at, end, '\\');
        const char* first = std::find_if(at, separator, [](char letter) { return letter != ' ' && letter != '+'; });
        double number = 0.0;
        const auto [stopped, failure] = std::from_chars(first, separator, number);
        const bool is_whole = std::all_of(stopped, separator, [](char letter) { return letter == ' ' || letter == 0; });
        if (failure != std::errc() || !is_whole || !std::isfinite(number)) {
            return {};
        }
        numbers.push_back(number);
        at = separator == end ? end : separator + 1;
    }
    return numbers;
}

/** One structure set while it is read. */
class Structure_Reader {
  public:
    Structure_Reader(std::span<const std::uint8_t> file_bytes, const Volume& shown_image,
                     const Load_Limits& file_limits, const Load_Progress& file_progress)
        : bytes(file_bytes),
          image(shown_image),
          limits(file_limits),
          progress(file_progress),
          to_voxels(shown_image.affine) {}

    Segmentation_Result Read() {
        Data_Set_Source source;
        DcmFileFormat file;
        Data_Set_Read(bytes, limits.decoded_bytes, file, source);
        result.warnings = source.warnings;
        DcmDataset& data_set = *file.getDataset();
        if (Field_Text(data_set, DCM_SOPClassUID) != UID_RTStructureSetStorage) {
            result.is_other_object = true;
            result.error = "is neither a segmentation object nor a structure set";
            return std::move(result);
        }
        Image_Place_Demand(image);
        if (!to_voxels.Is_Usable()) {
            throw Dicom_Refusal{"cannot be laid on the image, whose file does not say where it lies in the patient"};
        }
        result.owner = Owner_Of(data_set);
        Regions_Read(data_set);
        result.labels = Labels_Like(image, limits);
        result.is_on_image = true;
        const std::vector<DcmItem*> contoured = Field_Items(data_set, DCM_ROIContourSequence);
        for (std::size_t at = 0; at < contoured.size(); ++at) {
            done = static_cast<double>(at) / static_cast<double>(contoured.size());
            share = 1.0 / static_cast<double>(contoured.size());
            Region_Fill(*contoured[at]);
        }
        Finish();
        return std::move(result);
    }

  private:
    void Regions_Read(DcmItem& data_set) {
        bool is_number = true;
        for (DcmItem* const item : Field_Items(data_set, DCM_StructureSetROISequence)) {
            const std::optional<std::int32_t> number = Field_Integer(*item, DCM_ROINumber);
            if (!number || regions.contains(*number)) {
                throw Dicom_Refusal{"has a region without a number of its own"};
            }
            is_number = is_number && *number >= 1 && *number <= TAG_MOST;
            regions[*number] = result.segments.size();
            Segment one;
            one.tag = *number;
            one.label = Field_Utf8(*item, DCM_ROIName);
            result.segments.push_back(std::move(one));
        }
        if (regions.empty()) {
            throw Dicom_Refusal{"describes no region"};
        }
        if (regions.size() > static_cast<std::size_t>(TAG_MOST)) {
            throw Dicom_Refusal{"has " + Count_Text(regions.size()) + " regions; there are " +
                                std::to_string(TAG_MOST) + " TAGs"};
        }
        for (std::size_t one = 0; one < result.segments.size() && !is_number; ++one) {
            result.segments[one].tag = static_cast<int>(one) + 1;
        }
        if (!is_number) {
            result.warnings.push_back("numbers its regions otherwise than TAGs: they became TAGs 1 to " +
                                      std::to_string(regions.size()));
        }
    }

    void Region_Fill(DcmItem& region) {
        const std::optional<std::int32_t> number = Field_Integer(region, DCM_ReferencedROINumber);
        const auto known = number ? regions.find(*number) : regions.end();
        if (known == regions.end()) {
            throw Dicom_Refusal{"has contours of a region that it does not describe"};
        }
        Segment& segment = result.segments[known->second];
        if (const auto color = Field_Numbers<3>(region, DCM_ROIDisplayColor)) {
            segment.color = 0;
            for (const double part : *color) {
                segment.color = *segment.color << 8U | static_cast<std::uint32_t>(std::clamp(part, 0.0, 255.0));
            }
        }
        std::map<double, std::vector<std::vector<Picture_Point>>> planes;  // contours by depth, in slices of the image
        const std::vector<DcmItem*> contours = Field_Items(region, DCM_ContourSequence);
        for (std::size_t at = 0; at < contours.size(); ++at) {
            if (progress && !progress(done + share * static_cast<double>(at) / static_cast<double>(contours.size()))) {
                throw Label_Reading_Given_Up();
            }
            Contour_Read(*contours[at], planes);
        }
        Planes_Fill(planes, segment);
    }

    // What is drawn on several planes of one slice is drawn several times: the nearest plane counts.
    void Planes_Fill(const std::map<double, std::vector<std::vector<Picture_Point>>>& planes, const Segment& segment) {
        std::map<std::int32_t, double> nearest;  // by slice: depth of the plane
        for (const auto& [depth, contours] : planes) {
            const double slice = std::round(depth);
            const auto [known, is_new] = nearest.emplace(static_cast<std::int32_t>(slice), depth);
            if (!is_new && std::abs(depth - slice) < std::abs(known->second - slice)) {
                known->second = depth;
            }
        }
        constexpr double same_plane = 0.02;  // slices
        for (const auto& [depth, contours] : planes) {
            const double slice = std::round(depth);
            if (std::abs(depth - nearest.at(static_cast<std::int32_t>(slice))) > same_plane) {
                between_nb += contours.size();
            }
            off_most = std::max(off_most, std::abs(nearest.at(static_cast<std::int32_t>(slice)) - slice));
        }
        for (const auto& [z, depth] : nearest) {
            std::vector<std::uint8_t> mask(static_cast<std::size_t>(image.nx) * static_cast<std::size_t>(image.ny));
            for (auto plane = planes.lower_bound(depth - same_plane);
                 plane != planes.end() && plane->first <= depth + same_plane; ++plane) {
                for (const std::vector<Picture_Point>& points : plane->second) {
                    Polygon_Toggle(points, image.nx, image.ny, mask);
                }
            }
            Voxel_Levels& levels = result.labels->levels;
            const std::size_t first = image.Index(0, 0, z);
            for (std::size_t pixel = 0; pixel < mask.size(); ++pixel) {
                if (mask[pixel] != 0) {
                    const std::int32_t before = levels[first + pixel];
                    overlapping_nb += before != 0 && before != segment.tag ? 1 : 0;
                    levels.Set(first + pixel, segment.tag);
                }
            }
        }
        Gaps_Note(nearest);
    }

    /** Notes whether the planes leave slices out all the way. */
    void Gaps_Note(const std::map<std::int32_t, double>& slices) {
        std::int32_t least = image.nz;
        for (auto at = slices.begin(); at != slices.end() && std::next(at) != slices.end(); ++at) {
            least = std::min(least, std::next(at)->first - at->first);
        }
        sparse_nb += slices.size() > 1 && least > 1 ? 1 : 0;
    }

    void Contour_Read(DcmItem& contour, std::map<double, std::vector<std::vector<Picture_Point>>>& planes) {
        const std::string kind = Field_Text(contour, DCM_ContourGeometricType);
        if (!kind.starts_with("CLOSED")) {
            ++open_nb;  // points and open lines enclose nothing
            return;
        }
        const std::vector<double> numbers = Numbers_Of(contour, DCM_ContourData);
        constexpr double coordinate_most = 1e6;  // mm: anything further away is a mistake
        if (numbers.size() % 3 != 0 || numbers.size() < 9 ||
            std::ranges::any_of(numbers, [](double number) { return std::abs(number) > coordinate_most; })) {
            ++unusable_nb;
            return;
        }
        std::vector<Picture_Point> points;
        double lowest = 0.0;
        double highest = 0.0;
        bool is_beyond = false;
        for (std::size_t at = 0; at < numbers.size(); at += 3) {
            // DICOM's axes run to the left and back.
            const std::array<double, 3> voxel = to_voxels.Place({-numbers[at], -numbers[at + 1], numbers[at + 2]});
            points.push_back({voxel[0], voxel[1]});
            is_beyond = is_beyond ||
                        !(voxel[0] > -0.5 && voxel[0] < image.nx - 0.5 && voxel[1] > -0.5 && voxel[1] < image.ny - 0.5);
            lowest = at == 0 ? voxel[2] : std::min(lowest, voxel[2]);
            highest = at == 0 ? voxel[2] : std::max(highest, voxel[2]);
        }
        constexpr double tilt_most = 0.5;  // slices
        if (!(highest - lowest <= tilt_most)) {
            ++tilted_nb;
            return;
        }
        const double depth = (lowest + highest) / 2.0;
        if (!(std::round(depth) >= 0.0 && std::round(depth) < image.nz)) {
            ++outside_nb;
            return;
        }
        cut_nb += is_beyond ? 1 : 0;
        planes[depth].push_back(std::move(points));
    }

    // Contract: nothing of a person's contours is left out or decided without a word.
    void Finish() {
        const auto tell = [&](std::uint64_t count, const char* what) {
            if (count > 0) {
                result.warnings.push_back("has " + Count_Text(count) + (count == 1 ? " contour" : " contours") + what);
            }
        };
        tell(open_nb, " of open lines or points; left out");
        tell(unusable_nb, " without usable points; left out");
        tell(tilted_nb, " across the slices of the image; left out");
        tell(outside_nb, " beyond the image's slices; left out");
        tell(cut_nb, " reaching beyond the image; cut off there");
        tell(between_nb, " between the slices of the image, beside others that are nearer; left out");
        constexpr double told_above = 0.1;
        if (off_most > told_above) {
            result.warnings.push_back("has contours that lie up to " + Amount_Text(off_most) +
                                      " slices beside those of the image; each is on the nearest");
        }
        if (sparse_nb > 0) {
            result.warnings.push_back("has " + Count_Text(sparse_nb) + (sparse_nb == 1 ? " region" : " regions") +
                                      " without contours on every slice; those between stay empty");
        }
        if (overlapping_nb > 0) {
            result.warnings.push_back("has regions that overlap: " + Count_Text(overlapping_nb) +
                                      (overlapping_nb == 1 ? " voxel" : " voxels") + " went to the later region");
        }
        if (outside_nb + cut_nb > 0 &&
            std::ranges::all_of(result.labels->levels, [](std::int32_t level) { return level == 0; })) {
            throw Dicom_Refusal{"lies wholly beyond the image"};
        }
        const auto [lowest, highest] = std::ranges::minmax(result.labels->levels);
        result.labels->level_min = lowest;
        result.labels->level_max = highest;
    }

    std::span<const std::uint8_t> bytes;
    const Volume& image;
    const Load_Limits& limits;
    const Load_Progress& progress;
    To_Voxels to_voxels;
    std::map<std::int32_t, std::size_t> regions;  // by number: index into the result's segments
    std::uint64_t open_nb = 0;
    std::uint64_t unusable_nb = 0;
    std::uint64_t tilted_nb = 0;
    std::uint64_t outside_nb = 0;
    std::uint64_t cut_nb = 0;
    std::uint64_t between_nb = 0;
    std::uint64_t sparse_nb = 0;  // regions with contours on every second slice or fewer
    double off_most = 0.0;        // slices
    double done = 0.0;            // of the work, when a region is begun
    double share = 1.0;           // of the region in it
    std::uint64_t overlapping_nb = 0;
    Segmentation_Result result;
};

}  // namespace

Segmentation_Result Dicom_Structure_Set_Read(std::span<const std::uint8_t> file, const Volume& image,
                                             const Load_Limits& limits, const Load_Progress& progress) noexcept {
    return Labels_Read_Guarded<Structure_Reader>(file, image, limits, progress);
}

}  // namespace volumes
