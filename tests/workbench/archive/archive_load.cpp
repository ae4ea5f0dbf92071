// Puts load on a real archive, which it starts itself:
//   archive_load associations COUNT       how descriptors and memory do over so many; status 1 when they grew
//   archive_load fetch IMAGES SIDE RUNS   a series of images of SIDE x SIDE, by this program and by getscu in turn
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tests/workbench/archive/archive_server.h"
#include "workbench/archive/archive_client.h"

using namespace workbench::archive;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int WRONG_USE = 2;
constexpr long GROWTH_MOST_KIB = 1024;

long Descriptor_Nb() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

/** Memory that is in the machine for this process, KiB. */
long Memory_Kib() {
    std::ifstream stream("/proc/self/status");
    std::string word;
    long amount = 0;
    while (stream >> word) {
        if (word == "VmRSS:") {
            stream >> amount;
        }
    }
    return amount;
}

Series Stored(const Archive_Server& server, const fs::path& folder, int count, int side) {
    Image_Facts facts;
    facts.side = side;
    const std::vector<fs::path> files = Series_Write(folder, facts, count);
    Series series;
    series.study = facts.study;
    series.identifier = facts.series;
    series.image_count = count;
    if (Files_Send(server.Settings(), files, {}).accepted != count) {
        std::puts("the archive did not take the images");
        std::exit(EXIT_FAILURE);
    }
    return series;
}

/** A quarter of them before the first look: what is made once is made then. */
int Associations(const Archive_Server& server, int count) {
    const Temporary_Folder source;
    const Temporary_Folder cache;
    const Series series = Stored(server, source.path / "series", 2, 64);
    long descriptors = 0;
    long memory = 0;
    for (int at = 1; at <= count; ++at) {
        bool is_done = false;
        switch (at % 4) {
            case 0:
                is_done = Archive_Test(server.Settings(), {}).Is_Done();
                break;
            case 1:
                is_done = Studies_Search(server.Settings(), {}, {}).outcome.Is_Done();
                break;
            case 2:
                is_done = Series_Search(server.Settings(), series.study, {}).outcome.Is_Done();
                break;
            default:
                const Retrieve_Result result = Series_Retrieve(server.Settings(), series, cache.path, {});
                is_done = result.outcome.Is_Done();
                fs::remove_all(result.folder);
                break;
        }
        if (!is_done) {
            std::printf("association %d failed\n", at);
            return EXIT_FAILURE;
        }
        if (at == std::max(1, count / 4)) {
            descriptors = Descriptor_Nb();
            memory = Memory_Kib();
        }
        if (at % std::max(1, count / 8) == 0) {
            std::printf("%6d associations: %ld descriptors, %ld KiB\n", at, Descriptor_Nb(), Memory_Kib());
        }
    }
    const bool is_flat = Descriptor_Nb() == descriptors && Memory_Kib() <= memory + GROWTH_MOST_KIB;
    std::puts(is_flat ? "flat" : "GREW");
    return is_flat ? EXIT_SUCCESS : EXIT_FAILURE;
}

double Median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

int Fetch(const Archive_Server& server, int count, int side, int runs) {
    const Temporary_Folder source;
    const Series series = Stored(server, source.path / "series", count, side);
    const Archive_Settings settings = server.Settings();
    std::vector<double> own;
    std::vector<double> other;
    for (int run = 0; run < runs; ++run) {
        const Temporary_Folder folder;
        Clock::time_point begin = Clock::now();
        const Retrieve_Result result = Series_Retrieve(settings, series, folder.path / "own", {});
        own.push_back(std::chrono::duration<double>(Clock::now() - begin).count());
        const fs::path others = folder.path / "other";
        fs::create_directories(others);
        // Without this it waits for each answer to be collected with others, 40 ms an image.
        const std::string command = "TCP_NODELAY=1 getscu -aet " + settings.own_title + " -aec " +
                                    settings.called_title +
                                    " -S -k QueryRetrieveLevel=SERIES -k StudyInstanceUID=" + series.study +
                                    " -k SeriesInstanceUID=" + series.identifier + " -od " + others.string() +
                                    " 127.0.0.1 " + std::to_string(settings.port);
        begin = Clock::now();
        const int status = std::system(command.c_str());
        other.push_back(std::chrono::duration<double>(Clock::now() - begin).count());
        const auto came = std::distance(fs::directory_iterator(others), fs::directory_iterator());
        if (!result.outcome.Is_Done() || result.image_count != count || status != 0 || came != count) {
            std::printf("a run failed: %d images and \"%s\", %ld by getscu (%d)\n", result.image_count,
                        result.outcome.error.c_str(), static_cast<long>(came), status);
            return EXIT_FAILURE;
        }
        std::printf("%d images of %d x %d: %.3f s here, %.3f s by getscu\n", count, side, side, own.back(),
                    other.back());
    }
    std::printf("median: %.3f s here, %.3f s by getscu, ratio %.2f\n", Median(own), Median(other),
                Median(own) / Median(other));
    return EXIT_SUCCESS;
}

}  // namespace

int main(int count, char** words) {
    const std::vector<std::string_view> arguments(words + 1, words + count);
    const bool is_soak = arguments.size() == 2 && arguments[0] == "associations";
    const bool is_fetch = arguments.size() == 4 && arguments[0] == "fetch";
    if (!is_soak && !is_fetch) {
        std::fputs("archive_load associations COUNT | fetch IMAGES SIDE RUNS\n", stderr);
        return WRONG_USE;
    }
    if (!Archive_Server::Is_Installed()) {
        std::puts("not run: orthanc is missing");
        return WRONG_USE;
    }
    const Archive_Server server;
    if (!server.Is_Ready()) {
        std::puts("the archive does not start");
        return EXIT_FAILURE;
    }
    return is_soak ? Associations(server, std::atoi(words[2]))
                   : Fetch(server, std::atoi(words[2]), std::atoi(words[3]), std::atoi(words[4]));
}
