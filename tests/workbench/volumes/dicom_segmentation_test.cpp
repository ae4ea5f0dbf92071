// Segmentation objects: what is written is read back, what cannot be is said, and nothing is replaced before it is
// whole.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "tests/workbench/volumes/dicom_bytes.h"
#include "tests/workbench/volumes/nifti_bytes.h"
#include "workbench/volumes/anatomy_codes.h"
#include "workbench/volumes/dicom_segmentation_writer.h"
#include "workbench/volumes/image_folder.h"
#include "workbench/volumes/lab_color.h"
#include "workbench/volumes/polygon_fill.h"
#include "workbench/volumes/unique_identifier.h"

using namespace volumes;

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr int WIDTH = 7;
constexpr int HEIGHT = 5;
constexpr int SLICES = 6;

/** A series of images in a folder of its own, opened, with labels for it. */
class Segmentation_Of_Series : public testing::Test {
  protected:
    void SetUp() override {
        const auto* const info = testing::UnitTest::GetInstance()->current_test_info();
        folder = std::filesystem::temp_directory_path() /
                 (std::string("kit_segmentation_") + info->name() + std::to_string(std::random_device()()));
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        for (int z = 0; z < SLICES; ++z) {
            Write(z, Image(z));
        }
        const std::filesystem::path paths[] = {folder};
        opened = Image_Folder_Open(paths);
        ASSERT_EQ(opened.volumes.size(), 1U);
        ASSERT_EQ(opened.volumes.front().volume.nz, SLICES);
        std::mt19937 random(5);
        constexpr std::uint8_t tags[] = {0, 0, 0, 2, 17, 255};
        labels.resize(static_cast<std::size_t>(WIDTH * HEIGHT * SLICES));
        for (std::uint8_t& label : labels) {
            label = tags[random() % std::size(tags)];
        }
        std::fill_n(labels.begin() + 2 * WIDTH * HEIGHT, WIDTH * HEIGHT, std::uint8_t{0});  // a slice without any
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    static Dicom_Bytes Image(int z) {
        Dicom_Bytes bytes;
        bytes.Pixels_16(std::vector<std::uint16_t>(static_cast<std::size_t>(WIDTH * HEIGHT), 100), WIDTH, HEIGHT);
        bytes.Text(TAG_KIND, "UI", "1.2.840.10008.5.1.4.1.1.2").Text(TAG_INSTANCE, "UI", "1.2.7." + std::to_string(z));
        bytes.Text(TAG_STUDY, "UI", "1.2.3").Text(0x00200052, "UI", "1.2.9").Text(TAG_MODALITY, "CS", "CT");
        bytes.Text(0x00080005, "CS", "ISO_IR 100")
            .Text(0x00100010, "PN", "M\xFCller^Anna")
            .Text(0x00100020, "LO", "P-1");
        bytes.Text(0x00080020, "DA", "20260102").Text(TAG_PIXEL_SPACING, "DS", "1.25\\0.75");
        bytes.Text(TAG_SLICE_THICKNESS, "DS", "2.5");
        bytes.Place(-10.5, 20.25, -1234.5678901 + 2.5 * z);
        return bytes;
    }
    void Write(int z, const Dicom_Bytes& bytes) const {
        const Bytes file = bytes.File();
        std::ofstream stream(folder / ("image" + std::to_string(z) + ".dcm"), std::ios::binary);
        stream.write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    }

    const Volume& Opened() const { return opened.volumes.front().volume; }
    Segmentation_Content Content() const {
        Segmentation_Content content;
        content.tags = labels;
        content.segments = {{.tag = 2, .label = "Liver", .color = 0xF0CE60, .category = {}, .type = {}},
                            {.tag = 17, .label = "M\xC3\xBCll\\er", .color = 0x010203, .category = {}, .type = {}}};
        for (Segment& one : content.segments) {
            Anatomy_Code_Set(one);
        }
        content.program_version = "1";
        return content;
    }
    std::string Save(const Segmentation_Content& content, const Load_Progress& progress = {}) const {
        return Dicom_Segmentation_Write(target(), Opened(), {opened.files, opened.volumes.front().file_of_slice},
                                        content, progress);
    }
    std::filesystem::path target() const { return folder / "labels.dcm"; }
    Segmentation_Result Read() const { return Dicom_Segmentation_Read(File_Get(target()), Opened(), {}); }

    std::filesystem::path folder;
    Image_Folder opened;
    std::vector<std::uint8_t> labels;
};

TEST_F(Segmentation_Of_Series, what_was_written_is_read_voxel_by_voxel) {
    for (const bool is_deflated : {false, true}) {
        Segmentation_Content content = Content();
        content.is_deflated = is_deflated;
        ASSERT_EQ(Save(content), "");
        const Segmentation_Result read = Read();
        ASSERT_EQ(read.error, "");
        EXPECT_THAT(read.warnings, IsEmpty());
        EXPECT_TRUE(read.is_on_image);
        EXPECT_TRUE(std::ranges::equal(read.labels->levels, labels));
        EXPECT_EQ(read.labels->affine, Opened().affine);
        EXPECT_EQ(read.labels->level_max, 255);
        ASSERT_EQ(read.segments.size(), 3U);
        EXPECT_EQ(read.segments[0].tag, 2);
        EXPECT_EQ(read.segments[0].label, "Liver");
        EXPECT_EQ(read.segments[0].color, 0xF0CE60U);
        EXPECT_EQ(read.segments[0].type, (Coded_Concept{"10200004", "SCT", "Liver"}));
        EXPECT_EQ(read.segments[0].category, (Coded_Concept{"123037004", "SCT", "Anatomical Structure"}));
        EXPECT_EQ(read.segments[1].tag, 17);
        EXPECT_EQ(read.segments[1].label, "M\xC3\xBCll/er");
        EXPECT_EQ(read.segments[1].type, (Coded_Concept{"85756007", "SCT", "Tissue"}));
        EXPECT_EQ(read.segments[2].tag, 255);
        EXPECT_EQ(read.segments[2].label, "TAG 255");
        EXPECT_EQ(read.segments[2].color, std::nullopt);
    }
}

TEST_F(Segmentation_Of_Series, long_names_end_with_a_whole_letter) {
    Segmentation_Content content = Content();
    for (int letter = 0; letter < 70; ++letter) {
        content.segments[1].label += "\xE2\x82\xAC";
    }
    ASSERT_EQ(Save(content), "");
    const std::string label = Read().segments[1].label;
    EXPECT_EQ(
        std::ranges::count_if(label, [](char unit) { return (static_cast<unsigned char>(unit) & 0xC0U) != 0x80U; }),
        64);
    EXPECT_EQ(label.substr(label.size() - 3), "\xE2\x82\xAC");
}

TEST_F(Segmentation_Of_Series, a_file_is_replaced_only_by_a_whole_one) {
    std::ofstream(target()) << "former";
    Segmentation_Content content = Content();
    std::fill(labels.begin(), labels.end(), std::uint8_t{0});
    content.tags = labels;
    EXPECT_EQ(Save(content), "There are no labels: no voxel has a TAG but the background.");
    EXPECT_EQ(std::filesystem::file_size(target()), 6U);
    labels[3] = 1;
    EXPECT_EQ(Save(content, [](double) { return false; }), "Writing was given up.");
    EXPECT_EQ(std::filesystem::file_size(target()), 6U);
    EXPECT_EQ(Save(content), "");
    EXPECT_TRUE(Read().labels);
}

TEST_F(Segmentation_Of_Series, images_that_are_gone_or_others_are_told) {
    std::filesystem::remove(folder / "image3.dcm");
    EXPECT_EQ(Save(Content()), "The image image3.dcm does not exist.");
    Write(3, Image(3).Place(-10.5, 20.25, 900));
    EXPECT_EQ(Save(Content()),
              "The image image3.dcm does not lie where the volume has its slice; a segmentation object could not refer "
              "to it.");
    Write(3, Image(3).Text(TAG_STUDY, "UI", "1.2.4"));
    EXPECT_THAT(Save(Content()), StartsWith("The image image3.dcm is of another study"));
    Write(3, Image(3).Text(TAG_DIRECTION, "DS", "0\\1\\0\\-1\\0\\0"));
    EXPECT_EQ(Save(Content()),
              "The image image3.dcm does not lie where the volume has its slice; a segmentation object could not refer "
              "to it.");
    Write(3, Image(3).Remove(TAG_INSTANCE));
    EXPECT_THAT(Save(Content()), StartsWith("The image image3.dcm does not name itself"));
    Write(3, Image(3).Remove(TAG_DIRECTION));
    EXPECT_THAT(Save(Content()), HasSubstr("does not say where it lies in the patient"));
    std::ofstream(folder / "image3.dcm", std::ios::trunc) << "no image at all";
    EXPECT_EQ(Save(Content()), "image3.dcm is no DICOM image; segmentation objects belong to DICOM images.");
    EXPECT_FALSE(std::filesystem::exists(target()));
    Write(3, Image(3));
    EXPECT_EQ(Save(Content()), "");
}

TEST_F(Segmentation_Of_Series, cut_short_objects_are_refused_and_changed_ones_are_read_or_refused) {
    ASSERT_EQ(Save(Content()), "");
    const Bytes whole = File_Get(target());
    for (std::size_t length = 0; length < whole.size(); length += 13) {
        const Segmentation_Result read = Dicom_Segmentation_Read(std::span(whole).first(length), Opened(), {});
        EXPECT_NE(read.error, "") << length;
        EXPECT_FALSE(read.labels) << length;
    }
    std::mt19937 random(3);
    for (int attempt = 0; attempt < 300; ++attempt) {
        Bytes damaged = whole;
        for (int change = 0; change < 3; ++change) {
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
        }
        const Segmentation_Result read = Dicom_Segmentation_Read(damaged, Opened(), 0.5);
        EXPECT_EQ(read.labels.has_value(), read.error.empty());
    }
}

TEST_F(Segmentation_Of_Series, reading_can_be_given_up_and_has_a_limit) {
    ASSERT_EQ(Save(Content()), "");
    const Bytes whole = File_Get(target());
    const Segmentation_Result given_up = Dicom_Segmentation_Read(whole, Opened(), {}, {}, [](double) { return false; });
    EXPECT_TRUE(given_up.is_cancelled);
    EXPECT_FALSE(given_up.labels);
    Load_Limits limits;
    limits.decoded_bytes = static_cast<std::uint64_t>(WIDTH * HEIGHT * SLICES) * 2 - 1;
    EXPECT_THAT(Dicom_Segmentation_Read(whole, Opened(), {}, limits).error, StartsWith("needs more memory"));
}

TEST_F(Segmentation_Of_Series, an_image_without_a_place_takes_no_objects) {
    ASSERT_EQ(Save(Content()), "");
    Volume placeless = Opened();
    placeless.affine_source = Affine_Source::Spacing;
    EXPECT_EQ(Dicom_Segmentation_Read(File_Get(target()), placeless, {}).error,
              "cannot be laid on the image, whose file does not say where it lies in the patient");
}

TEST_F(Segmentation_Of_Series, losses_of_the_images_are_passed_on) {
    Write(0,
          Image(0).Text(0x00282110, "CS", "01").Text(0x00282112, "DS", "12.5").Text(0x00282114, "CS", "ISO_10918_1"));
    ASSERT_EQ(Save(Content()), "");
    const Bytes bytes = File_Get(target());
    const std::string text(bytes.begin(), bytes.end());
    EXPECT_NE(text.find("ISO_10918_1"), std::string::npos);
    EXPECT_NE(text.find("12.5"), std::string::npos);
}

TEST_F(Segmentation_Of_Series, an_image_is_no_segmentation) {
    EXPECT_EQ(Dicom_Segmentation_Read(File_Get(folder / "image0.dcm"), Opened(), {}).error,
              "is no segmentation object");
    EXPECT_EQ(Dicom_Segmentation_Read({}, Opened(), {}).error, "is no DICOM file");
}

#if defined(KIT_PYTHON)
TEST_F(Segmentation_Of_Series, an_independent_reader_finds_labels_places_and_references) {
    const std::filesystem::path raw = folder / "labels.raw";
    std::ofstream(raw, std::ios::binary)
        .write(reinterpret_cast<const char*>(labels.data()), static_cast<std::streamsize>(labels.size()));
    for (const bool is_deflated : {false, true}) {
        Segmentation_Content content = Content();
        content.is_deflated = is_deflated;
        content.segments.push_back({.tag = 255, .label = "Rest", .color = 0xFFFFFF, .category = {}, .type = {}});
        ASSERT_EQ(Save(content), "");
        std::ostringstream command;
        command << KIT_PYTHON << " " << KIT_SEGMENTATION_CHECK << " " << target() << " " << raw << " " << WIDTH << " "
                << HEIGHT << " " << SLICES;
        for (int z = 0; z < SLICES; ++z) {
            command << " " << folder / ("image" + std::to_string(z) + ".dcm");
        }
        EXPECT_EQ(std::system(command.str().c_str()), 0);
    }
}
#endif

#if defined(KIT_SEGMENTATION_FOLDER)
Volume Geometry_Read(const std::filesystem::path& path) {
    std::ifstream stream(path);
    Volume volume;
    volume.nt = 1;
    volume.affine_source = Affine_Source::Qform;
    stream >> volume.nx >> volume.ny >> volume.nz;
    for (auto& row : volume.affine) {
        for (double& number : row) {
            stream >> number;
        }
    }
    EXPECT_TRUE(stream) << path;
    return volume;
}

TEST(Dicom_Segmentation, objects_of_every_form_have_the_labels_that_they_mean) {
    const std::filesystem::path folder = KIT_SEGMENTATION_FOLDER;
    const Volume image = Geometry_Read(folder / "image.txt");
    std::ifstream manifest(folder / "manifest.txt");
    std::string line;
    int case_nb = 0;
    while (std::getline(manifest, line)) {
        ++case_nb;
        std::istringstream parts(line);
        std::string name;
        std::string threshold;
        std::string is_on_image;
        std::string says;
        std::getline(parts, name, '\t');
        std::getline(parts, threshold, '\t');
        std::getline(parts, is_on_image, '\t');
        std::getline(parts, says);
        SCOPED_TRACE(name);
        const auto share = threshold == "-" ? std::nullopt : std::optional(std::stod(threshold));
        const Bytes bytes = File_Get(folder / (name + ".dcm"));
        const Segmentation_Result read = name.starts_with("regions") ? Dicom_Structure_Set_Read(bytes, image)
                                                                     : Dicom_Segmentation_Read(bytes, image, share);
        if (!std::filesystem::exists(folder / (name + ".raw"))) {
            EXPECT_EQ(read.error, says);
            EXPECT_FALSE(read.labels);
            EXPECT_EQ(read.needs_threshold, name == "shares_unasked");
            continue;
        }
        EXPECT_EQ(read.error, "");
        ASSERT_TRUE(read.labels);
        std::vector<std::string> wanted;
        std::istringstream sentences(says == "-" ? "" : says);
        for (std::string one; std::getline(sentences, one, '|');) {
            wanted.push_back(one);
        }
        ASSERT_EQ(read.warnings.size(), wanted.size());
        for (std::size_t at = 0; at < wanted.size(); ++at) {
            EXPECT_THAT(read.warnings[at], HasSubstr(wanted[at]));
        }
        EXPECT_EQ(read.is_on_image, is_on_image == "1");
        EXPECT_TRUE(std::ranges::equal(read.labels->levels, File_Get(folder / (name + ".raw"))));
        if (!read.is_on_image) {
            const Volume own = Geometry_Read(folder / (name + ".grid"));
            EXPECT_EQ(read.labels->nz, own.nz);
            for (std::size_t row = 0; row < 3; ++row) {
                for (std::size_t column = 0; column < 4; ++column) {
                    EXPECT_NEAR(read.labels->affine[row][column], own.affine[row][column], 1e-6);
                }
            }
        }
    }
    EXPECT_EQ(case_nb, 39);
}
#endif

TEST(Polygon_Toggle, centres_on_edges_belong_to_one_side) {
    std::vector<std::uint8_t> pixels(5 * 4);
    const Picture_Point left[] = {{0, 0}, {2, 0}, {2, 3}, {0, 3}};
    Polygon_Toggle(left, 5, 4, pixels);
    EXPECT_THAT(pixels, ElementsAreArray({1, 1, 0, 0, 0, 1, 1, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0}));
    const Picture_Point right[] = {{2, 3}, {2, 0}, {9, 0}, {9, 3}};
    Polygon_Toggle(right, 5, 4, pixels);
    EXPECT_THAT(pixels, ElementsAreArray({1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0}));
    const Picture_Point hole[] = {{0.5, 0.5}, {2.5, 0.5}, {2.5, 1.5}, {0.5, 1.5}};
    Polygon_Toggle(hole, 5, 4, pixels);
    EXPECT_THAT(pixels, ElementsAreArray({1, 1, 1, 1, 1, 1, 0, 0, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0}));
}

TEST(Polygon_Toggle, what_is_no_polygon_encloses_nothing) {
    std::vector<std::uint8_t> pixels(6);
    const Picture_Point line[] = {{0, 0}, {2, 1}};
    Polygon_Toggle(line, 3, 2, pixels);
    const Picture_Point none[] = {{0, 0}, {std::nan(""), 1}, {INFINITY, 2}};
    Polygon_Toggle(none, 3, 2, pixels);
    Polygon_Toggle({}, 3, 2, pixels);
    EXPECT_THAT(pixels, Each(0));
}

TEST(Lab_Color, known_colours_have_their_numbers) {
    // Of the reference white: L 100, a and b 0. Pure red: L 54.29, a 80.81, b 69.89 (D50).
    EXPECT_NEAR(Lab_Of_Color(0xFFFFFF)[0], 65535, 2);
    EXPECT_NEAR(Lab_Of_Color(0xFFFFFF)[1], 128.0 / 255 * 65535, 20);
    EXPECT_NEAR(Lab_Of_Color(0xFF0000)[0], 54.29 / 100 * 65535, 20);
    EXPECT_NEAR(Lab_Of_Color(0xFF0000)[1], (80.81 + 128) / 255 * 65535, 20);
    EXPECT_NEAR(Lab_Of_Color(0xFF0000)[2], (69.89 + 128) / 255 * 65535, 20);
    EXPECT_EQ(Lab_Of_Color(0x000000)[0], 0);
}

TEST(Lab_Color, every_colour_comes_back) {
    for (std::uint32_t color = 0; color < 0x1000000; color += 7 * 256 + 3) {
        const Stored_Lab lab = Lab_Of_Color(color);
        ASSERT_EQ(Color_Of_Lab({double(lab[0]), double(lab[1]), double(lab[2])}), color) << color;
    }
    EXPECT_EQ(Color_Of_Lab({1e9, -1e9, 1e9}) & 0xFF000000U, 0U);
}

TEST(Unique_Identifier, is_a_decimal_number_below_its_root) {
    EXPECT_EQ(Decimal_Text({0, 0, 0, 0}), "0");
    EXPECT_EQ(Decimal_Text({0, 0, 1, 0}), "4294967296");
    EXPECT_EQ(Decimal_Text({0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}),
              "340282366920938463463374607431768211455");
    const std::string one = Unique_Identifier_New();
    EXPECT_THAT(one, StartsWith("2.25."));
    EXPECT_LE(one.size(), 44U);
    EXPECT_NE(one, Unique_Identifier_New());
}

TEST(Anatomy_Codes, are_unique_and_found_by_their_meaning_in_any_case) {
    std::vector<std::string> meanings;
    for (const Anatomy_Code& code : Anatomy_Codes()) {
        Segment segment;
        segment.label = code.meaning;
        std::ranges::transform(segment.label, segment.label.begin(), [](char c) { return c == 'a' ? 'A' : c; });
        Anatomy_Code_Set(segment);
        EXPECT_EQ(segment.type.value, code.type);
        EXPECT_EQ(segment.category.value, code.category);
        meanings.emplace_back(code.meaning);
    }
    std::ranges::sort(meanings);
    EXPECT_EQ(std::ranges::adjacent_find(meanings), meanings.end());
}

}  // namespace
