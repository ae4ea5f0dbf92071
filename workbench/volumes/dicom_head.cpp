#include "workbench/volumes/dicom_head.h"

#include <algorithm>
#include <new>
#include <span>
#include <utility>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "workbench/volumes/byte_source.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_frames.h"
#include "workbench/volumes/dicom_grid.h"
#include "workbench/volumes/dicom_image_names.h"
#include "workbench/volumes/dicom_pixel_meaning.h"
#include "workbench/volumes/dicom_window.h"

namespace volumes {

namespace {

constexpr std::size_t HEAD_FIRST = std::size_t{1} << 14U;  // bytes: most heads are shorter
constexpr std::size_t HEAD_MOST = std::size_t{1} << 20U;   // what is longer is read whole

/** @return no value: the head goes on behind these bytes. Throws Dicom_Refusal, perhaps only because they end inside an
 *  element */
std::optional<Dicom_Head> Head_Of(std::span<const std::uint8_t> bytes) {
    Data_Set_Source source;  // outlives the data set
    DcmFileFormat file;
    if (!Data_Set_Head_Read(bytes, 0, file, source)) {
        return std::nullopt;
    }
    DcmDataset& data_set = *file.getDataset();
    if (Field_Integer(data_set, DCM_NumberOfFrames).value_or(1) != 1 ||
        data_set.tagExists(DCM_SharedFunctionalGroupsSequence) ||
        data_set.tagExists(DCM_PerFrameFunctionalGroupsSequence)) {
        return Dicom_Head();
    }
    Dicom_Head head{Dicom_Image(), std::move(source.warnings)};
    Dicom_Image& image = *head.image;
    Volume& volume = image.volume;
    const Pixel_Format format = Pixel_Format_Read(data_set, data_set.getOriginalXfer(), 0, head.warnings);
    constexpr std::int32_t bits_most = 16;  // more may be floating-point numbers, which is not known here
    if (format.bits_allocated > bits_most) {
        return Dicom_Head();
    }
    Names_Read(data_set, image);
    const Frame_Plan plan = Frames_Plan(data_set, image.origin.modality, Frame_Size_Of(format, 1));
    head.warnings.insert(head.warnings.end(), plan.warnings.begin(), plan.warnings.end());
    const Frame_Stack& stack = plan.stacks.front();
    if (const Slice_Moment& moment = plan.facts.front().moment; moment != Slice_Moment()) {
        image.moment = moment;
    }
    image.place = stack.place;
    Grid_Take(format, plan, stack, volume);
    volume.encoding = source.syntax_name;
    volume.windows = Windows_Read(data_set);
    return head;
}

/** Fills `bytes` from the file up to `wanted` of them. @return false: there are fewer */
bool Grow(Byte_Source& source, std::size_t wanted, std::vector<std::uint8_t>& bytes) {
    const std::size_t had = bytes.size();
    bytes.resize(wanted);
    bytes.resize(had + source.Read(std::span(bytes).subspan(had)));
    return bytes.size() == wanted;
}

}  // namespace

std::optional<Dicom_Head> Dicom_Head_Of(std::span<const std::uint8_t> beginning) {
    try {
        return Head_Of(beginning);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {  // whatever it is, reading more will tell
        return std::nullopt;
    }
}

Dicom_Head Dicom_Head_Read(const std::filesystem::path& path, Reading_Room& room) {
    File_Source source(path);
    std::vector<std::uint8_t>& bytes = room.file;
    bytes.clear();
    for (const std::size_t wanted : {HEAD_FIRST, HEAD_MOST}) {
        const bool is_more = Grow(source, wanted, bytes);
        if (!Dicom_Is_Likely(bytes)) {
            return {};
        }
        if (std::optional<Dicom_Head> head = Dicom_Head_Of(bytes)) {
            return std::move(*head);
        }
        if (!is_more) {
            return {};
        }
    }
    return {};
}

}  // namespace volumes
