// What is asked before a picture is saved, and what stands in the file.
#include "workbench/parts/picture_control.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <new>
#include <random>

using namespace workbench;

namespace {

namespace fs = std::filesystem;

constexpr int SIDE = 4;
constexpr int SLICES = 50;
constexpr std::uint32_t GREEN = 0x00FF00;

class Picture_Watch : public ::testing::Test {
  protected:
    Picture_Watch() : folder(fs::temp_directory_path() / ("pictures_" + std::to_string(std::random_device{}()))) {
        fs::create_directory(folder);
        tags[5] = 2;
    }
    ~Picture_Watch() override {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    Image_Content Content() const {
        Image_Content content;
        content.source = {SIDE, SIDE, levels, false, 1.0F, 0.0F, tags, false};
        content.window = {0.0F, 100.0F};
        content.overlay.color[2] = GREEN;
        content.overlay.shown[2] = is_colored ? 1 : 0;
        content.overlay.opacity = 100;
        return content;
    }
    Picture_Host Host() {
        Picture_Host host;
        host.views = [this] {
            std::vector<Pictured_View> views;
            for (const char* name : {"Slice 5", "Coronal 7"}) {
                views.push_back({name, [this] { return Content(); },
                                 [this, name](bool is_plain) {
                                     said += std::string(name) + (is_plain ? " plain;" : " whole;");
                                     return volumes::Picture{1, 1, {0x123456}};
                                 }});
            }
            return has_image ? views : std::vector<Pictured_View>();
        };
        host.slice_nb = [] { return SLICES; };
        host.slice = [this](int of) {
            taken.push_back(of);
            return Content();
        };
        host.tag_nb = [] { return 4; };
        host.tag_name = [](int tag) { return "TAG " + std::to_string(tag); };
        host.letters = [this](const std::string& text) {
            written += text + ";";
            return volumes::Picture{1, 1, {0}};
        };
        host.line = [this](const std::string&, const std::string&, const std::vector<std::string>& lines) {
            offered = lines;
            return line;
        };
        host.text = [this](const std::string&, const std::string&, const std::string& start) {
            proposed = start;
            return answer;
        };
        host.file = [this](const std::string&, const std::string& name) -> std::optional<fs::path> {
            file = folder / name;
            return is_file_chosen ? std::optional(file) : std::nullopt;
        };
        host.run = [this](const std::string&, const std::function<void(const volumes::Load_Progress&)>& action) {
            if (is_memory_short) {
                throw std::bad_alloc();
            }
            action([this](double) { return !is_given_up; });
        };
        host.tell = [this](const std::string& text) { said += "tell " + text + ";"; };
        host.warn = [this](const std::string& text) { said += "warn " + text + ";"; };
        return host;
    }
    std::vector<std::uint8_t> Bytes() const {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::vector<std::int32_t> levels = std::vector<std::int32_t>(std::size_t{SIDE} * SIDE, 100);
    std::vector<std::uint8_t> tags = std::vector<std::uint8_t>(std::size_t{SIDE} * SIDE);
    fs::path folder;
    fs::path file;
    std::string said;
    std::string written;
    std::string proposed;
    std::vector<std::string> offered;
    std::vector<int> taken;
    int line = 0;
    std::optional<std::string> answer = "10";
    bool has_image = true;
    bool is_colored = true;
    bool is_file_chosen = true;
    bool is_given_up = false;
    bool is_memory_short = false;
    Picture_Control pictures{Host()};
};

TEST_F(Picture_Watch, each_view_is_offered_in_four_ways) {
    const std::vector<std::uint32_t> plain(std::size_t{SIDE} * SIDE, 0xFFFFFF);
    std::vector<std::uint32_t> colored = plain;
    colored[5] = GREEN;
    const volumes::Picture screen{1, 1, {0x123456}};
    const volumes::Picture expected[] = {screen, screen, {SIDE, SIDE, colored}, {SIDE, SIDE, plain}};
    for (line = 0; line < 8; ++line) {
        said.clear();
        pictures.Picture_Save();
        ASSERT_EQ(offered.size(), 8U);
        EXPECT_EQ(file.filename(), line < 4 ? "slice_5.png" : "coronal_7.png");
        EXPECT_EQ(Bytes(), volumes::Png_Encode(expected[line % 4])) << line;
        const std::string name = line < 4 ? "Slice 5" : "Coronal 7";
        const char* const drawn[] = {" whole;", " plain;"};
        EXPECT_EQ(said, (line % 4 < 2 ? name + drawn[line % 4] : "") + "tell The picture was saved to " +
                            file.filename().string() + ";");
    }
    EXPECT_EQ(offered[1], "Slice 5, as on the screen, the image alone");
}

TEST_F(Picture_Watch, giving_up_writes_nothing) {
    line = -1;
    pictures.Picture_Save();
    line = 2;
    is_file_chosen = false;
    pictures.Picture_Save();
    answer.reset();
    pictures.Sheet_Save();
    EXPECT_EQ(said, "");
    has_image = false;
    pictures.Picture_Save();
    pictures.Sheet_Save();
    EXPECT_EQ(said, "tell There is no image to save a picture of;tell There is no image to save a picture of;");
    has_image = true;
    is_file_chosen = is_given_up = true;
    answer = "10";
    said.clear();
    pictures.Sheet_Save();
    EXPECT_EQ(said, "tell Saving was given up;");
    EXPECT_TRUE(fs::is_empty(folder));
}

TEST_F(Picture_Watch, what_cannot_be_written_is_told) {
    fs::create_directory(folder / "slice_5.png");  // a folder of that name
    pictures.Picture_Save();
    EXPECT_NE(said.find("warn The picture was not saved: slice_5.png "), std::string::npos) << said;
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1) << "nothing is left behind";
    is_memory_short = true;
    said.clear();
    pictures.Sheet_Save();
    EXPECT_EQ(said, "warn The picture was not saved: slices.png cannot be written for want of memory.;");
}

TEST_F(Picture_Watch, a_sheet_has_every_nth_slice_and_the_tags_that_are_seen) {
    pictures.Sheet_Save();
    EXPECT_EQ(proposed, "3") << "some two dozen slices";
    EXPECT_EQ(taken, (std::vector{0, 10, 20, 30, 40}));
    EXPECT_EQ(written, "1;11;21;31;41;TAG 2;") << "TAGs whose colours are hidden have no name";
    EXPECT_EQ(said, "tell The picture was saved to slices.png;");
    EXPECT_GT(fs::file_size(file), 100U);
    written.clear();
    is_colored = false;
    pictures.Sheet_Save();
    EXPECT_EQ(written, "1;11;21;31;41;");
}

TEST_F(Picture_Watch, what_is_no_number_of_slices_is_refused) {
    for (const char* wrong : {"", "0", "51", "-1", "3 4", "x"}) {
        said.clear();
        answer = wrong;
        pictures.Sheet_Save();
        EXPECT_EQ(said, std::string("warn \"") + wrong + "\" is no number from 1 to 50.;");
    }
    EXPECT_TRUE(taken.empty());
}

}  // namespace
