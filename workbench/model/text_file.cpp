#include "workbench/model/text_file.h"

#include <cstdint>
#include <system_error>

#include "workbench/volumes/file_operations.h"
#include "workbench/volumes/output_file.h"
#include "workbench/volumes/unfinished_file.h"

namespace workbench {

namespace {

constexpr int KEPT_MOST = 99;  // files kept aside under one name

}  // namespace

std::string Text_File_Read(const std::filesystem::path& file, std::size_t size_most, std::string& text) {
    const std::error_code code = volumes::File_Operations_In_Use().read(file, size_most, text);
    if (code == std::errc::file_too_large) {
        return "is too large";
    }
    return code ? "cannot be read" : std::string();
}

std::string Text_File_Write(const std::filesystem::path& file, std::string_view text) {
    volumes::Output_File out(file);
    out.Write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    if (out.Commit()) {
        volumes::Unfinished_Remove(file);  // of programs that were ended while they saved
    }
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
        code = volumes::File_Operations_In_Use().rename(file, aside);
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

}  // namespace workbench
