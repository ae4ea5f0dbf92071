// Images and the labels on them that leave without who the patient is, as a real archive has them then.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "tests/workbench/archive/own_archive.h"
#include "workbench/archive/anonymous_object.h"
#include "workbench/archive/archive_client.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_segmentation_writer.h"
#include "workbench/volumes/image_folder.h"

using namespace workbench::archive;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
namespace fs = std::filesystem;

namespace {

constexpr int IMAGE_NB = 4;

/** Every value of an element at any depth. */
std::vector<std::string> Values_Of(DcmDataset& data_set, const DcmTagKey& tag) {
    std::vector<std::string> values;
    DcmStack stack;
    while (data_set.nextObject(stack, OFTrue).good()) {
        OFString text;
        if (stack.top()->getTag() == tag && dynamic_cast<DcmElement&>(*stack.top()).getOFStringArray(text).good()) {
            values.emplace_back(text.c_str());
        }
    }
    return values;
}

using Labels_Sent_Anonymously = Own_Archive;

}  // namespace

TEST_F(Labels_Sent_Anonymously, belong_to_the_images_that_were_sent_anonymously) {
    Image_Facts facts;
    facts.patient_name = "Roe^Richard";
    facts.patient_id = "P77-4711";
    const std::vector<fs::path> images = Series_Write(source.path / "images", facts, IMAGE_NB);
    const fs::path folders[] = {source.path / "images"};
    const volumes::Image_Folder opened = volumes::Image_Folder_Open(folders);
    ASSERT_THAT(opened.volumes, SizeIs(1));
    const volumes::Volume& image = opened.volumes.front().volume;
    std::vector<std::uint8_t> labels(image.Voxel_Nb_3D());
    for (std::size_t at = 0; at < labels.size(); ++at) {
        labels[at] = static_cast<std::uint8_t>(at % 3);
    }
    volumes::Segmentation_Content content;
    content.tags = labels;
    content.segments = {{.tag = 1, .label = "Liver", .color = 0xF0CE60, .category = {}, .type = {}},
                        {.tag = 2, .label = "Spleen", .color = 0x010203, .category = {}, .type = {}}};
    content.creator = "Roe^Reader";
    content.program_version = "1";
    const fs::path file = source.path / "labels.dcm";
    ASSERT_EQ(
        volumes::Dicom_Segmentation_Write(file, image, {opened.files, opened.volumes.front().file_of_slice}, content),
        "");
    DcmFileFormat written;
    ASSERT_TRUE(written.loadFile(file.c_str()).good());

    const Send_Wishes wishes = {.is_anonymous = true, .is_picture_trusted = false, .secret = std::string(64, '5')};
    std::vector<fs::path> sent = images;
    sent.push_back(file);
    ASSERT_EQ(Files_Send(server->Settings(), sent, {}, wishes).accepted, IMAGE_NB + 1);
    const Anonymiser anonymiser(wishes.secret);
    Series series;
    series.study = anonymiser.Identifier(facts.study);
    series.identifier = anonymiser.Identifier(volumes::Field_Text(*written.getDataset(), DCM_SeriesInstanceUID));
    const Retrieve_Result back = Series_Retrieve(server->Settings(), series, cache.path, {});
    ASSERT_EQ(back.outcome.error, "");
    std::vector<fs::path> came;
    for (const fs::directory_entry& entry : fs::directory_iterator(back.folder)) {
        came.push_back(entry.path());
    }
    ASSERT_THAT(came, SizeIs(1));
    std::ifstream stream(came[0], std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(stream)), {});
    for (const char* const left : {"Roe", "Richard", "4711", "1.2.3.1"}) {
        EXPECT_THAT(bytes, Not(HasSubstr(left)));
    }
    EXPECT_THAT(bytes, HasSubstr("Spleen")) << "what the labels are called stays";

    DcmFileFormat read;
    ASSERT_TRUE(read.loadFile(came[0].c_str()).good());
    DcmDataset& object = *read.getDataset();
    std::vector<std::string> referenced = Values_Of(object, DCM_ReferencedSOPInstanceUID);
    std::ranges::sort(referenced);
    referenced.erase(std::unique(referenced.begin(), referenced.end()), referenced.end());
    series.identifier = anonymiser.Identifier(facts.series);
    const Retrieve_Result pictures = Series_Retrieve(server->Settings(), series, cache.path, {});
    ASSERT_EQ(pictures.outcome.error, "");
    std::vector<std::string> identifiers;
    std::string patient;
    for (const fs::directory_entry& entry : fs::directory_iterator(pictures.folder)) {
        DcmFileFormat picture;
        ASSERT_TRUE(picture.loadFile(entry.path().c_str()).good());
        identifiers.push_back(volumes::Field_Text(*picture.getDataset(), DCM_SOPInstanceUID));
        patient = volumes::Field_Text(*picture.getDataset(), DCM_PatientID);
    }
    std::ranges::sort(identifiers);
    EXPECT_THAT(identifiers, SizeIs(IMAGE_NB));
    EXPECT_EQ(referenced, identifiers);
    EXPECT_EQ(volumes::Field_Text(object, DCM_PatientID), patient);
    EXPECT_EQ(patient, anonymiser.Patient_Name(facts.patient_id));
    EXPECT_EQ(volumes::Field_Text(object, DCM_StudyInstanceUID), series.study);
    const std::vector<std::string> of_series = Values_Of(object, DCM_SeriesInstanceUID);
    EXPECT_NE(std::ranges::find(of_series, series.identifier), of_series.end()) << "the referenced series";

    // As the workbench would read it, on the images that came.
    const fs::path fetched[] = {pictures.folder};
    const volumes::Image_Folder again = volumes::Image_Folder_Open(fetched);
    ASSERT_THAT(again.volumes, SizeIs(1));
    const std::vector<std::uint8_t> object_bytes(bytes.begin(), bytes.end());
    const volumes::Segmentation_Result result =
        volumes::Dicom_Segmentation_Read(object_bytes, again.volumes.front().volume, {});
    EXPECT_EQ(result.error, "");
    EXPECT_TRUE(result.is_on_image);
    ASSERT_TRUE(result.labels);
    EXPECT_TRUE(std::ranges::equal(result.labels->levels, labels));
}
