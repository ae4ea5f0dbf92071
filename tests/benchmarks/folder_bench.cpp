// A large folder of DICOM files: listing its series by what stands before the pixels, beside merely reading these heads
// one after the other with the toolkit, as its own programs do.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/oflog/oflog.h"
#include "tests/benchmarks/ratio.h"
#include "tests/workbench/volumes/dicom_bytes.h"
#include "workbench/volumes/image_folder.h"

namespace {

constexpr int SIDE = 128;
constexpr int SERIES = 40;
constexpr int ROUNDS = 3;

/** Files in the folder; KIT_FOLDER_FILES asks for others than are made for every run. */
int File_Nb() {
    const char* const wanted = std::getenv("KIT_FOLDER_FILES");
    return wanted != nullptr ? std::atoi(wanted) : 1000;
}

/** A slice with some ninety elements before its pixels, as scanners write. */
Bytes Slice(int series, int slice) {
    Dicom_Bytes bytes;
    const std::string number = std::to_string(series + 1);
    bytes.Pixels_16(std::vector<std::uint16_t>(std::size_t{SIDE} * SIDE, static_cast<std::uint16_t>(slice)), SIDE,
                    SIDE);
    bytes.Place(-120.5, -110.25, slice * 2.5).Text(TAG_PIXEL_SPACING, "DS", "0.9375\\0.9375");
    bytes.Text(TAG_STUDY, "UI", "1.2.826.0.1.3680043.8.498.1000")
        .Text(TAG_SERIES, "UI", "1.2.826.0.1.3680043.8.498.1000." + number);
    bytes.Text(TAG_INSTANCE, "UI", "1.2.826.0.1.3680043.8.498.1000." + number + '.' + std::to_string(slice + 1));
    bytes.Text(TAG_SERIES_NUMBER, "IS", number).Text(TAG_INSTANCE_NUMBER, "IS", std::to_string(slice + 1));
    bytes.Text(0x00100010, "PN", "Sample^Patient")
        .Text(0x00100020, "LO", "12345")
        .Text(TAG_SERIES_TEXT, "LO", "axial " + number);
    for (std::uint32_t element = 0; element < 20; ++element) {
        bytes.Text(0x00080080 + element, "LO", "what a scanner says of itself");
        bytes.Text(0x00189000 + element, "DS", "12.5");
        bytes.Text(0x00191000 + element, "LO", "a private value");
    }
    return bytes.File();
}

/** The folder on disk, as long as a benchmark runs. */
class Large_Folder {
  public:
    Large_Folder() {
        for (int at = 0; at < File_Nb(); ++at) {
            const std::filesystem::path series = folder / ("series" + std::to_string(at % SERIES));
            std::filesystem::create_directories(series);
            const Bytes bytes = Slice(at % SERIES, at / SERIES);
            std::ofstream(series / (std::to_string(at) + ".dcm"), std::ios::binary)
                .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        }
    }
    ~Large_Folder() {
        std::error_code unknown;
        std::filesystem::remove_all(folder, unknown);
    }
    Large_Folder(const Large_Folder&) = delete;
    Large_Folder& operator=(const Large_Folder&) = delete;

    /** @return files whose heads were read */
    int Plain() const {
        int read = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (entry.is_directory()) {
                continue;
            }
            DcmFileFormat file;
            OFString series;
            OFString place;
            const OFCondition loaded =
                file.loadFileUntilTag(OFFilename(entry.path().string().c_str()), EXS_Unknown, EGL_noChange,
                                      DCM_MaxReadLength, ERM_autoDetect, DCM_PixelData);
            read += loaded.good() && file.getDataset()->findAndGetOFString(DCM_SeriesInstanceUID, series).good() &&
                            file.getDataset()->findAndGetOFStringArray(DCM_ImagePositionPatient, place).good()
                        ? 1
                        : 0;
        }
        return read;
    }
    /** @return slices of all series that were listed, their pixels still to be read */
    int Listed() const {
        const volumes::Image_Folder listed = volumes::Image_Folder_Open(std::span(&folder, 1), {}, {}, 0);
        std::size_t slice_nb = 0;
        for (const volumes::Folder_Volume& one : listed.volumes) {
            slice_nb += one.waiting.size();
        }
        return listed.volumes.size() == SERIES ? static_cast<int>(slice_nb) : 0;
    }

  private:
    std::filesystem::path folder = std::filesystem::temp_directory_path() / "kit_folder_bench";
};

void Folder_Listed(benchmark::State& state) {
    OFLog::configure(OFLogger::OFF_LOG_LEVEL);
    const Large_Folder folder;
    for (auto _ : state) {
        bool is_right = true;
        const Paired_Times times = Pair_Time(
            ROUNDS, [&] { is_right = folder.Plain() == File_Nb() && is_right; },
            [&] { is_right = folder.Listed() == File_Nb() && is_right; });
        if (!is_right) {
            state.SkipWithError("not all series were listed");
        }
        state.counters["plain_ms"] = times.plain * 1e3;
        state.counters["ours_ms"] = times.ours * 1e3;
        state.counters["times_plain"] = times.ours / times.plain;
    }
}
BENCHMARK(Folder_Listed)->Iterations(1);

}  // namespace
