#include "workbench/process_limits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <map>
#include <random>
#include <string>

using namespace workbench;

namespace {

namespace fs = std::filesystem;

std::map<int, DWORD> asked;
bool is_taken = true;

BOOL WINAPI Limit_Note(PROCESS_MITIGATION_POLICY policy, void* content, SIZE_T size) {
    DWORD flags = 0;
    EXPECT_EQ(size, sizeof flags);
    std::memcpy(&flags, content, sizeof flags);
    asked[policy] = flags;
    return is_taken ? TRUE : FALSE;
}

}  // namespace

TEST(Process_Limits, are_libraries_from_afar_and_wrong_handles_and_let_input_methods_in) {
    asked.clear();
    is_taken = true;
    EXPECT_EQ(Process_Limits_Set(Limit_Note), 2);
    EXPECT_EQ(asked.size(), 2U);
    // Bits as the system documents them.
    EXPECT_EQ(asked[ProcessImageLoadPolicy], 7U);
    EXPECT_EQ(asked[ProcessStrictHandleCheckPolicy], 3U);
    is_taken = false;
    EXPECT_EQ(Process_Limits_Set(Limit_Note), 0) << "a system that takes none is no failure";
}

TEST(Process_Limits, libraries_by_name_do_not_come_from_the_current_folder) {
    const fs::path folder = fs::temp_directory_path() / ("kit_limits_" + std::to_string(std::random_device()()));
    fs::create_directories(folder);
    wchar_t system[MAX_PATH] = {};
    ASSERT_NE(::GetSystemDirectoryW(system, MAX_PATH), 0U);
    const wchar_t* const name = L"kit_stray_library.dll";
    std::error_code error;
    fs::copy_file(fs::path(system) / L"version.dll", folder / name, error);
    ASSERT_FALSE(error) << error.message();
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    const HMODULE as_before = ::LoadLibraryW(name);
    EXPECT_NE(as_before, nullptr) << "this test cannot fail";
    if (as_before != nullptr) {
        ::FreeLibrary(as_before);
    }
    Library_Search_Narrow();
    const HMODULE stray = ::LoadLibraryW(name);
    EXPECT_EQ(stray, nullptr);
    EXPECT_NE(::LoadLibraryW(L"version.dll"), nullptr) << "the system's own";
    if (stray != nullptr) {
        ::FreeLibrary(stray);
    }
    fs::current_path(before);
    fs::remove_all(folder, error);
}
