// Opening of images of 512 x 512 x 60 voxels of 16 bits, to the voxels, their range and the first window, beside merely
// reading the files, unpacking them and widening their voxels to 32 bits.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/benchmarks/ratio.h"
#include "tests/workbench/volumes/dicom_bytes.h"
#include "workbench/volumes/image_folder.h"
#include "workbench/volumes/volume_statistics.h"

namespace {

constexpr int SIDE = 512;
constexpr int SLICES = 60;
constexpr int ROUNDS = 5;
constexpr std::size_t PLANE = static_cast<std::size_t>(SIDE) * SIDE;

/** Rings of several tissues with noise, and air around them: what scanners give packs to about half. */
std::vector<std::uint16_t> Slice(int slice) {
    std::vector<std::uint16_t> values(PLANE);
    std::uint32_t noise = static_cast<std::uint32_t>(slice) + 1;
    for (int y = 0; y < SIDE; ++y) {
        for (int x = 0; x < SIDE; ++x) {
            const int dx = x - SIDE / 2;
            const int dy = y - SIDE / 2;
            const int square = dx * dx + dy * dy;
            noise = noise * 1664525U + 1013904223U;
            const int tissue = square < SIDE * SIDE / 5 ? 900 + 200 * (square / 9000 % 4) + slice : 20;
            values[static_cast<std::size_t>(y * SIDE + x)] =
                static_cast<std::uint16_t>(tissue + static_cast<int>(noise >> 27U));
        }
    }
    return values;
}

Bytes Bytes_Of(const std::vector<std::uint16_t>& values) {
    Bytes bytes(values.size() * sizeof(std::uint16_t));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

Bytes Nifti_File() {
    Nifti_Bytes file;
    file.dim = {3, SIDE, SIDE, SLICES, 1, 1, 1, 1};
    file.datatype = 512;  // uint16
    file.bitpix = 16;
    for (int slice = 0; slice < SLICES; ++slice) {
        const Bytes bytes = Bytes_Of(Slice(slice));
        file.voxels.insert(file.voxels.end(), bytes.begin(), bytes.end());
    }
    return file.File();
}

void File_Write(const std::filesystem::path& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

Bytes File_Read(const std::filesystem::path& path) {
    Bytes bytes(static_cast<std::size_t>(std::filesystem::file_size(path)));
    std::ifstream(path, std::ios::binary)
        .read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

constexpr int GZIP_BITS = 15 + 16;

Bytes Packed(Bytes plain) {
    z_stream stream = {};
    Bytes packed(plain.size() + plain.size() / 100 + 1000);
    if (deflateInit2(&stream, 6, Z_DEFLATED, GZIP_BITS, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::runtime_error("the sample image cannot be packed");
    }
    stream.next_in = plain.data();
    stream.avail_in = static_cast<uInt>(plain.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

Bytes Unpacked(Bytes packed, std::size_t size) {
    z_stream stream = {};
    Bytes plain(size);
    if (inflateInit2(&stream, GZIP_BITS) != Z_OK) {
        throw std::runtime_error("the sample image cannot be unpacked");
    }
    stream.next_in = packed.data();
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = plain.data();
    stream.avail_out = static_cast<uInt>(plain.size());
    inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    return plain;
}

/** The images on disk, as long as a benchmark runs. */
class Sample {
  public:
    enum Kind { Nifti, Nifti_Packed, Dicom };
    explicit Sample(Kind sample_kind) : kind(sample_kind) {
        std::filesystem::create_directories(folder);
        if (kind == Dicom) {
            for (int slice = 0; slice < SLICES; ++slice) {
                Dicom_Bytes bytes;
                bytes.Pixels_16(Slice(slice), SIDE, SIDE).Place(0, 0, slice).Remove(TAG_INSTANCE);
                bytes.Text(TAG_INSTANCE_NUMBER, "IS", std::to_string(slice + 1));
                File_Write(folder / (std::to_string(1000 + slice) + ".dcm"), bytes.File());
            }
            return;
        }
        const Bytes file = Nifti_File();
        size = file.size();
        File_Write(folder / (kind == Nifti ? "image.nii" : "image.nii.gz"), kind == Nifti ? file : Packed(file));
    }
    ~Sample() {
        std::error_code unknown;
        std::filesystem::remove_all(folder, unknown);
    }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

    /** All bytes, unpacked, as numbers of 32 bits. */
    std::vector<std::int32_t> Plain() const {
        std::vector<std::int32_t> levels;
        levels.reserve(PLANE * SLICES + PLANE);
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const Bytes bytes =
                kind == Nifti_Packed ? Unpacked(File_Read(entry.path()), size) : File_Read(entry.path());
            for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
                levels.push_back(bytes[at] | bytes[at + 1] << 8);
            }
        }
        return levels;
    }
    volumes::Image_Folder Opened() const { return volumes::Image_Folder_Open(std::span(&folder, 1)); }

  private:
    std::filesystem::path folder = std::filesystem::temp_directory_path() / "kit_opening_bench";
    Kind kind;
    std::size_t size = 0;
};

void Bench_Open(benchmark::State& state, Sample::Kind kind) {
    const Sample sample(kind);
    for (auto _ : state) {
        bool is_right = true;
        const Paired_Times times = Pair_Time(
            ROUNDS, [&] { benchmark::DoNotOptimize(sample.Plain().data()); },
            [&] {
                const volumes::Image_Folder opened = sample.Opened();
                is_right = is_right && opened.volumes.size() == 1 && opened.volumes[0].volume.nz == SLICES &&
                           volumes::Volume_Statistics_Compute(opened.volumes[0].volume).count == PLANE * SLICES;
            });
        if (!is_right) {
            state.SkipWithError("the image was not opened");
        }
        state.counters["plain_ms"] = times.plain * 1e3;
        state.counters["ours_ms"] = times.ours * 1e3;
        state.counters["times_plain"] = times.ours / times.plain;
    }
}
BENCHMARK_CAPTURE(Bench_Open, nifti, Sample::Nifti)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Open, nifti_packed, Sample::Nifti_Packed)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Open, dicom, Sample::Dicom)->Iterations(1);

}  // namespace
