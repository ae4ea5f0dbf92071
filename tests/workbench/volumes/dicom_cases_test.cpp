// Random DICOM files, written and read back by another program: every voxel, every affine, every problem told.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>

#include "tests/workbench/volumes/loading.h"
#include "workbench/volumes/dicom_folder.h"

using namespace volumes;

namespace {

struct Expected_Volume {
    std::int32_t nx = 0;
    std::int32_t ny = 0;
    std::int32_t nz = 0;
    bool is_known = false;
    bool color = false;
    double error = 0;
    std::vector<double> greys;
    Affine affine{};
};

struct Expected_Problem {
    std::string name;
    std::string words;
};

struct Expected {
    std::vector<Expected_Volume> volumes;
    std::vector<Expected_Problem> problems;
};

Expected Expected_Read(const std::filesystem::path& text) {
    Expected expected;
    std::ifstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        std::istringstream words(line);
        std::string kind;
        std::string name;
        words >> kind;
        if (kind == "problem") {
            Expected_Problem problem;
            words >> problem.name >> std::ws;
            std::getline(words, problem.words);
            expected.problems.push_back(problem);
            continue;
        }
        Expected_Volume volume;
        words >> volume.nx >> volume.ny >> volume.nz >> volume.is_known >> volume.color >> volume.error >> name;
        for (auto& row : volume.affine) {
            for (double& element : row) {
                words >> element;
            }
        }
        EXPECT_FALSE(words.fail()) << line;
        std::ifstream greys(text.parent_path() / name, std::ios::binary);
        volume.greys.resize(static_cast<std::size_t>(volume.nx * volume.ny * volume.nz));
        const auto size = static_cast<std::streamsize>(volume.greys.size() * sizeof(double));
        EXPECT_TRUE(greys.read(reinterpret_cast<char*>(volume.greys.data()), size)) << name;
        expected.volumes.push_back(std::move(volume));
    }
    return expected;
}

/** @return what is wrong with a volume; empty: nothing */
std::string Difference(const Expected_Volume& expected, const Volume& read) {
    std::ostringstream text;
    if (read.nx != expected.nx || read.ny != expected.ny || read.nz != expected.nz || read.color != expected.color) {
        text << "size " << read.nx << ' ' << read.ny << ' ' << read.nz << ' ' << read.color;
        return text.str();
    }
    if ((read.affine_source != Affine_Source::SPACING) != expected.is_known) {
        return "sides known or not";
    }
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            constexpr double near = 1e-4;  // mm: positions are decimals of 16 letters, directions may tremble
            if (!(std::abs(read.affine[row][column] - expected.affine[row][column]) < near)) {
                text << "affine " << row << ' ' << column << ": " << read.affine[row][column] << ", expected "
                     << expected.affine[row][column];
                return text.str();
            }
        }
    }
    if (!read.color && !(read.max_error <= expected.error * 1.001 + 1e-12)) {
        text << "error " << read.max_error << ", allowed " << expected.error;
        return text.str();
    }
    for (std::size_t at = 0; at < expected.greys.size(); ++at) {
        const std::int32_t level = read.levels[at];
        const double wanted = expected.greys[at];
        double off = 0;
        if (read.color) {
            for (const int bits : {0, 8, 16}) {
                off = std::max(
                    off, std::abs((level >> bits & 0xFF) - (static_cast<std::int32_t>(wanted) >> bits & 0xFF)) * 1.0);
            }
        } else {
            off = std::abs(level * read.slope + read.intercept - wanted);
        }
        const double allowed = (read.color ? expected.error : read.max_error) * 1.001 + std::abs(wanted) * 1e-9 + 1e-12;
        if (!(off <= allowed)) {
            text << "voxel " << at << ": level " << level << " off by " << off << ", expected " << wanted;
            return text.str();
        }
    }
    return {};
}

void Compare(const std::filesystem::path& folder, const Expected& expected) {
    Image_Folder opened = Image_Folder_Open(std::span(&folder, 1));
    for (const Expected_Volume& wanted : expected.volumes) {
        std::string differences;
        const auto same = std::ranges::find_if(opened.volumes, [&](const Folder_Volume& one) {
            const std::string difference = Difference(wanted, one.volume);
            differences += one.title + ": " + difference + '\n';
            return difference.empty();
        });
        if (same == opened.volumes.end()) {
            ADD_FAILURE() << "no such volume of " << wanted.nx << ' ' << wanted.ny << ' ' << wanted.nz << '\n'
                          << differences << Image_Folder_Problems_Text(opened, folder);
            return;
        }
        Expect_Sound(same->volume);
        opened.volumes.erase(same);
    }
    EXPECT_TRUE(opened.volumes.empty()) << "a volume too many: " << opened.volumes.front().title;
    for (const Expected_Problem& wanted : expected.problems) {
        const auto same = std::ranges::find_if(opened.problems, [&](const Folder_Problem& problem) {
            return (wanted.name == "*" || problem.path.filename() == wanted.name) &&
                   problem.reason.find(wanted.words) != std::string::npos;
        });
        if (same == opened.problems.end()) {
            ADD_FAILURE() << "not told: " << wanted.words << '\n' << Image_Folder_Problems_Text(opened, folder);
            return;
        }
        opened.problems.erase(same);
    }
    // A common scale that is too coarse for the finest slices is told where there is one; the voxels say how coarse.
    std::erase_if(opened.problems,
                  [](const Folder_Problem& problem) { return problem.reason.find(" scales ") != std::string::npos; });
    EXPECT_EQ(Image_Folder_Problems_Text(opened, folder), "");
}

TEST(Dicom_Cases, at_random_are_read_as_another_program_reads_them_if_installed) {
    if (std::string_view(KIT_DICOM_CASES).empty()) {
        GTEST_SKIP() << "pydicom was not there when the build was configured";
    }
    std::vector<std::filesystem::path> cases;
    for (const auto& entry : std::filesystem::directory_iterator(KIT_DICOM_CASES)) {
        if (entry.path().extension() == ".txt") {
            cases.push_back(entry.path());
        }
    }
    std::ranges::sort(cases);
    constexpr std::size_t least = 250;
    EXPECT_GE(cases.size(), least);
    for (const std::filesystem::path& text : cases) {
        SCOPED_TRACE(text.filename().string());
        std::filesystem::path folder = text;
        Compare(folder.replace_extension(), Expected_Read(text));
    }
}

}  // namespace
