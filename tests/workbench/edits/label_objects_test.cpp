#include "workbench/edits/label_objects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "tests/workbench/volumes/dicom_bytes.h"
#include "workbench/volumes/image_folder.h"

using namespace workbench;

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr int SIDE = 4;
constexpr int SLICES = 3;

/** Answers questions with what was set before; runs actions at once. */
class Told_Host : public Label_Object_Host {
  public:
    const Session& Work() const override { return session; }
    std::string Volume_Title() const override { return "CT 3: abdomen"; }
    volumes::Slice_Files Slices() const override { return {files, file_of_slice}; }
    Label_Description Description() const override { return description; }
    int Current_Tag() const override { return tag; }
    void Tag_Name_Set(int named, const std::string& name) override {
        told.push_back("name " + std::to_string(named) + " " + name);
    }
    std::string Program_Version() const override { return "1"; }
    std::string User_Name() const override { return "Ada"; }
    std::optional<fs::path> Object_File_Ask(const fs::path& start) override {
        offered = start;
        return file_answer;
    }
    std::optional<std::string> Text_Ask(const std::string&, const std::string&, const std::string& start) override {
        told.push_back("ask " + start);
        return text_answer;
    }
    int Line_Ask(const std::string&, const std::string&, const std::vector<std::string>& shown, int current) override {
        lines = shown;
        line_offered = current;
        return line_answer;
    }
    int Way_Ask(const std::string&, const std::string&, const std::vector<std::string>& ways) override {
        ++ways_asked;
        return ways.size() == 3 ? way_answer : load_answer;
    }
    void Run(const std::string& what, const std::function<void(const volumes::Load_Progress&)>& action) override {
        ran.push_back(what);
        action([this](double) { return !is_giving_up; });
    }
    void Tell(const std::string& text) override { told.push_back(text); }
    void Warn(const std::string& text) override { warned.push_back(text); }

    Session session;
    std::vector<fs::path> files;
    std::vector<std::int32_t> file_of_slice;
    Label_Description description;
    int tag = 2;
    std::optional<fs::path> file_answer;
    std::optional<std::string> text_answer;
    int line_answer = -1;
    int way_answer = 0;
    int load_answer = -1;  // whether what belongs to another image is loaded
    int ways_asked = 0;
    bool is_giving_up = false;
    fs::path offered;
    std::vector<std::string> lines;
    int line_offered = -1;
    std::vector<std::string> told;
    std::vector<std::string> warned;
    std::vector<std::string> ran;
};

class Label_Objects_Test : public testing::Test {
  protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / ("kit_label_objects_" + std::to_string(std::random_device()()));
        fs::create_directories(folder);
        for (int z = 0; z < SLICES; ++z) {
            const Bytes file = Image(z).File();
            std::ofstream(folder / (std::to_string(z) + ".dcm"), std::ios::binary)
                .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
        }
        const fs::path paths[] = {folder};
        volumes::Image_Folder opened = volumes::Image_Folder_Open(paths);
        ASSERT_THAT(opened.volumes, SizeIs(1));
        host.files = opened.files;
        host.file_of_slice = opened.volumes.front().file_of_slice;
        host.session.Take(std::move(opened.volumes.front().volume), opened.files.front());
        host.description.tags = {
            {.number = 2, .color = 0x123456, .is_locked = true, .low = 95.0F, .high = {}, .name = "Liver"},
            {.number = 9, .color = 0xABCDEF, .low = {}, .high = {}, .name = {}}};
        host.file_answer = folder / "out.dcm";
        Paint(2, 0, 1, 1);
        Paint(9, 2, 3, 0);
    }
    void TearDown() override { fs::remove_all(folder); }
    static Dicom_Bytes Image(int z) {
        Dicom_Bytes bytes;
        bytes.Pixels_16(std::vector<std::uint16_t>(SIDE * SIDE, 100), SIDE, SIDE);
        bytes.Text(TAG_KIND, "UI", "1.2.840.10008.5.1.4.1.1.2").Text(TAG_INSTANCE, "UI", "1.7." + std::to_string(z));
        bytes.Text(TAG_STUDY, "UI", "1.2").Text(TAG_MODALITY, "CS", "CT").Text(TAG_PIXEL_SPACING, "DS", "1\\1");
        bytes.Place(0, 0, 3.0 * z);
        return bytes;
    }
    void Paint(int tag, int slice, int x, int y) {
        const unsigned char pixel = 1;
        const unsigned char* const row = &pixel;
        Paint_Ink ink;
        ink.tag = static_cast<std::uint8_t>(tag);
        host.session.Stroke_Begin(slice, Brush_Footprint(&row, 0), x, y, ink);
        host.session.Stroke_End();
    }

    fs::path folder;
    Told_Host host;
    Label_Objects objects{host};
};

TEST_F(Label_Objects_Test, what_was_saved_is_loaded_with_names_and_colours) {
    objects.Object_Save();
    EXPECT_THAT(host.warned, IsEmpty());
    EXPECT_THAT(host.told, ElementsAre("Segmentation object saved to out.dcm"));
    EXPECT_EQ(host.offered.filename(), "CT 3 abdomen_seg.dcm");
    EXPECT_TRUE(Label_Objects::Is_Object_File(folder / "out.dcm"));

    host.description.tags = {{.number = 2, .color = 0, .is_locked = true, .low = 95.0F, .high = {}, .name = "Other"}};
    const std::optional<Object_Labels> loaded = objects.Load(folder / "out.dcm");
    ASSERT_TRUE(loaded);
    std::vector<std::uint8_t> tags = host.session.Tags_In_File_Order();
    EXPECT_TRUE(std::ranges::equal(loaded->volume.levels, tags));
    EXPECT_EQ(std::ranges::count(tags, 2), 1);
    EXPECT_EQ(std::ranges::count(tags, 9), 1);
    ASSERT_THAT(loaded->description.tags, SizeIs(2));
    const Tag_Description& liver = loaded->description.tags[0];
    EXPECT_EQ(liver,
              (Tag_Description{
                  .number = 2, .color = 0x123456, .is_locked = true, .low = 95.0F, .high = {}, .name = "Liver"}));
    EXPECT_EQ(loaded->description.tags[1].name, "TAG 9");
    EXPECT_EQ(loaded->description.tags[1].color, 0xABCDEFU);
    EXPECT_EQ(host.session.Labels_Compare(loaded->volume).relation, Grid_Relation::Same);
}

TEST_F(Label_Objects_Test, an_image_is_never_replaced_by_labels) {
    const auto size = fs::file_size(folder / "1.dcm");
    host.file_answer = folder / "." / "1.dcm";
    objects.Object_Save();
    EXPECT_THAT(host.warned, ElementsAre("1.dcm is one of the images; choose another name."));
    EXPECT_EQ(fs::file_size(folder / "1.dcm"), size);
    EXPECT_THAT(host.ran, IsEmpty());
}

TEST_F(Label_Objects_Test, giving_up_anywhere_writes_and_says_nothing) {
    host.way_answer = 2;
    objects.Object_Save();
    host.way_answer = -1;
    objects.Object_Save();
    host.way_answer = 0;
    host.file_answer.reset();
    objects.Object_Save();
    EXPECT_THAT(host.told, IsEmpty());
    EXPECT_THAT(host.warned, IsEmpty());
    host.file_answer = folder / "out.dcm";
    host.is_giving_up = true;
    objects.Object_Save();
    EXPECT_THAT(host.warned, ElementsAre("Writing was given up."));
    EXPECT_FALSE(fs::exists(folder / "out.dcm"));
}

TEST_F(Label_Objects_Test, labels_of_a_volume_that_is_no_dicom_image_are_refused_with_the_reason) {
    std::ofstream(folder / "0.dcm", std::ios::trunc) << "another kind of file";
    objects.Object_Save();
    EXPECT_THAT(host.warned, ElementsAre("0.dcm is no DICOM image; segmentation objects belong to DICOM images."));
    Session none;
    std::swap(none, host.session);
    objects.Object_Save();
    EXPECT_EQ(host.warned.back(), "Open an image first; labels lie on an image.");
    EXPECT_FALSE(objects.Load(folder / "1.dcm"));
    EXPECT_EQ(host.warned.back(), "Open an image first; labels lie on an image.");
}

TEST_F(Label_Objects_Test, a_file_that_holds_no_segments_is_told) {
    EXPECT_FALSE(objects.Load(folder / "1.dcm"));
    EXPECT_FALSE(objects.Load(folder / "none.dcm"));
    EXPECT_THAT(host.warned,
                ElementsAre("1.dcm is neither a segmentation object nor a structure set.", "none.dcm does not exist."));
    EXPECT_FALSE(Label_Objects::Is_Object_File(folder / "none.dcm"));
}

/** One frame at the first slice, whose pixels have the shares 0, 10, 20 ... of 150. */
Bytes Shares_Object() {
    const auto item = [] { return std::move(Dicom_Bytes().Clear()); };
    std::vector<std::uint8_t> shares(SIDE * SIDE);
    for (std::size_t at = 0; at < shares.size(); ++at) {
        shares[at] = static_cast<std::uint8_t>(10 * at);
    }
    Dicom_Bytes bytes;
    bytes.Pixels_8(shares, SIDE, SIDE);
    bytes.Text(TAG_KIND, "UI", "1.2.840.10008.5.1.4.1.1.66.4").Text(0x00620001, "CS", "FRACTIONAL");
    bytes.Short(0x0062000E, 150).Text(TAG_FRAMES, "IS", "1");
    bytes.Sequence(0x00620002, {item().Short(0x00620004, 1).Text(0x00620005, "LO", "Tumour").Elements()});
    bytes.Sequence(
        TAG_FRAMES_SHARED,
        {item()
             .Sequence(0x00209116, {item().Text(TAG_DIRECTION, "DS", "1\\0\\0\\0\\1\\0").Elements()})
             .Sequence(0x00289110,
                       {item().Text(TAG_PIXEL_SPACING, "DS", "1\\1").Text(TAG_SLICE_THICKNESS, "DS", "3").Elements()})
             .Elements()});
    bytes.Sequence(TAG_FRAMES_OWN,
                   {item().Sequence(0x00209113, {item().Text(TAG_PLACE, "DS", "0\\0\\0").Elements()}).Elements()});
    return bytes.File();
}

TEST_F(Label_Objects_Test, shares_of_voxels_ask_for_a_threshold) {
    const Bytes bytes = Shares_Object();
    std::ofstream(folder / "shares.dcm", std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    EXPECT_FALSE(objects.Load(folder / "shares.dcm"));  // given up
    EXPECT_THAT(host.told, ElementsAre("ask 0.5"));
    EXPECT_THAT(host.warned, IsEmpty());
    for (const char* const wrong : {"", "much", "0.5 or so", "1.5", "-1", "nan"}) {
        host.text_answer = wrong;
        EXPECT_FALSE(objects.Load(folder / "shares.dcm"));
        EXPECT_EQ(host.warned.back(), "A number from 0 to 1 is needed, such as 0.5; the labels were not loaded.");
    }
    host.text_answer = "0.6";
    const std::optional<Object_Labels> loaded = objects.Load(folder / "shares.dcm");
    ASSERT_TRUE(loaded);
    EXPECT_EQ(std::ranges::count(loaded->volume.levels, 1), 16 - 9);  // 90 of 150 and more
    EXPECT_EQ(loaded->description.tags.front().name, "Tumour");
}

TEST_F(Label_Objects_Test, labels_of_another_patient_are_loaded_only_if_the_user_says_so) {
    const auto patient = [&](int z, const char* number) {
        const Bytes file = Image(z).Text(0x00100020, "LO", number).File();
        std::ofstream(folder / (std::to_string(z) + ".dcm"), std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    };
    patient(0, "P-1");
    objects.Object_Save();
    EXPECT_TRUE(objects.Load(folder / "out.dcm"));
    EXPECT_EQ(host.ways_asked, 1);
    patient(0, "P-2");
    EXPECT_FALSE(objects.Load(folder / "out.dcm"));
    EXPECT_EQ(host.ways_asked, 2);
    host.load_answer = 1;
    EXPECT_TRUE(objects.Load(folder / "out.dcm"));
}

TEST_F(Label_Objects_Test, a_tag_is_named_from_the_table) {
    host.line_answer = 0;
    objects.Tag_Meaning_Ask();
    EXPECT_THAT(host.lines[static_cast<std::size_t>(host.line_offered)], StartsWith("Liver  "));
    EXPECT_THAT(host.told, ElementsAre("name 2 Adrenal gland"));
    host.line_answer = -1;
    objects.Tag_Meaning_Ask();
    EXPECT_THAT(host.told, SizeIs(1));
    host.tag = 0;
    objects.Tag_Meaning_Ask();
    EXPECT_THAT(host.warned, ElementsAre("TAG 0 is the background; choose another TAG first."));
}

}  // namespace
