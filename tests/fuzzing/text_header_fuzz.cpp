// libFuzzer: any bytes as a NRRD file or a MetaImage, with its voxels and as a header of other voxels. Whatever loads
// must be sound.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "workbench/volumes/text_header_reader.h"

using namespace volumes;

namespace {

constexpr std::uint64_t DECODED_MOST = 4U << 20U;  // bytes
constexpr std::size_t HEADER_MOST = 1024;          // bytes

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
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Require(std::isfinite(volume.spacing[axis]) && volume.spacing[axis] > 0.0);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span bytes(data, size);
    const Load_Limits limits{DECODED_MOST};
    Memory_Source single(bytes, "fuzz.nrrd");
    Check(Text_Header_Load(single, nullptr, {}, limits));
    const std::size_t cut = std::min(size, HEADER_MOST);
    Memory_Source header(bytes.first(cut), "fuzz.mhd");
    Memory_Source voxels(bytes.subspan(cut), "fuzz.raw");
    Check(Text_Header_Load(header, &voxels, {}, limits));
    return 0;
}
