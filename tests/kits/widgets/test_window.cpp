#include "tests/kits/widgets/test_window.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO_GUARD
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wconversion"
#endif
#include <stb/stb_image_write.h>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

void Test_Window::Point_At_Logical(int x, int y) const {
    Point_At(x, Window_Axis_Get(window) == Window_Axis::Up ? height - 1 - y : y);
}

bool Write_Png(const char* path, const Window_Picture& picture) {
    std::vector<unsigned char> bytes;
    for (const std::uint32_t pixel : picture.pixels) {
        for (const unsigned int shift : {16U, 8U, 0U}) {
            bytes.push_back(static_cast<unsigned char>((pixel >> shift) & 0xFFU));
        }
    }
    return stbi_write_png(path, picture.width, picture.height, 3, bytes.data(), picture.width * 3) != 0;
}
