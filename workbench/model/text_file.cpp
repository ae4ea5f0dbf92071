#include "workbench/model/text_file.h"

#include <cstdint>
#include <fstream>
#include <iterator>
#include <system_error>

#include "workbench/volumes/output_file.h"

namespace {

constexpr int KEPT_MOST = 99;  // files kept aside under one name

}  // namespace

std::string Text_File_Read(const std::filesystem::path& file, std::size_t size_most, std::string& text) {
    text.clear();
    std::error_code code;
    const std::uintmax_t size = std::filesystem::file_size(file, code);
    std::ifstream in(file, std::ios::binary);
    if (code || !in) {
        return "cannot be read";
    }
    if (size > size_most) {
        return "is too large";
    }
    text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (in.bad()) {
        text.clear();
        return "cannot be read";
    }
    return {};
}

std::string Text_File_Write(const std::filesystem::path& file, std::string_view text) {
    Output_File out(file);
    out.Write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    out.Commit();
    return out.Error();
}

std::string Text_File_Keep_Aside(const std::filesystem::path& file, std::string_view ending,
                                 std::filesystem::path* kept) {
    std::error_code code;
    for (int n = 1; n <= KEPT_MOST; ++n) {
        std::filesystem::path aside = file;
        aside += std::string(ending) + (n == 1 ? "" : std::to_string(n));
        if (std::filesystem::exists(aside, code)) {
            continue;
        }
        std::filesystem::rename(file, aside, code);
        if (code) {
            return "cannot be kept aside: " + code.message();
        }
        if (kept != nullptr) {
            *kept = aside;
        }
        return {};
    }
    return "cannot be kept aside: there are too many of them";
}
