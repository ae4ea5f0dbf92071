// libFuzzer: any bytes as an icon file.
#include "kits/widgets/tga.h"
#include "tests/fuzzing/input_bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Tga_Picture picture;
    const bool is_read = Tga_Read({data, size}, &picture);
    Require(is_read == !picture.pixels.empty());
    if (is_read) {
        Require(picture.width > 0 && picture.width <= TGA_SIDE_MAX);
        Require(picture.height > 0 && picture.height <= TGA_SIDE_MAX);
        Require(picture.pixels.size() ==
                static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
    }
    return 0;
}
