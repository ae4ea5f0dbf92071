// libFuzzer: any bytes as a single file and as the header of a pair. Whatever loads must be sound, and its statistics
// must be too.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "workbench/volumes/nifti_reader.h"
#include "workbench/volumes/volume_statistics.h"

using namespace volumes;

namespace {

constexpr std::uint64_t DECODED_MOST = 4U
                                       << 20U;  // bytes: enough for every path, little enough for many runs per second
constexpr std::size_t HEADER_MOST = 540;        // bytes of the longest header

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void Check(const Load_Result& result) {
    Require(result.volume.has_value() == result.error.empty());
    if (!result.volume) {
        return;
    }
    const Volume& volume = *result.volume;
    Require(volume.nx > 0 && volume.ny > 0 && volume.nz > 0 && volume.nt > 0);
    Require(volume.levels.size() == volume.Voxel_Nb_3D() * static_cast<std::size_t>(volume.nt));
    Require(std::isfinite(volume.slope) && volume.slope != 0 && std::isfinite(volume.intercept));
    Require(std::isfinite(volume.grey(volume.level_min)) && std::isfinite(volume.grey(volume.level_max)));
    const Volume_Statistics statistics = Volume_Statistics_Compute(volume);
    Require(statistics.window_low < statistics.window_high);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span bytes(data, size);
    const Load_Limits limits{DECODED_MOST};
    Memory_Source single(bytes, "fuzz.nii");
    Check(Volume_Load(single, nullptr, {}, limits));
    const std::size_t cut = std::min(size, HEADER_MOST);
    Memory_Source header(bytes, "fuzz.hdr");
    Memory_Source image(bytes.subspan(cut), "fuzz.img");
    Check(Volume_Load(header, &image, {}, limits));
    return 0;
}
