#include "panels/version_export.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "panels/module_file.h"

#if defined(__SANITIZE_ADDRESS__)
#define KIT_LEAK_CHECK 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KIT_LEAK_CHECK 1
#endif
#endif
#if defined(KIT_LEAK_CHECK)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

/** The block that every call leaves behind is meant: the leak check passes over it. */
std::string Version(const char* version) {
#if defined(KIT_LEAK_CHECK)
    const __lsan::ScopedDisabler meant;
#endif
    std::string copy(version != nullptr ? version : "");
    const char* description = Get_Version_Quorel_Tools(version != nullptr ? copy.data() : nullptr);
    return description != nullptr ? description : "(null)";
}

/** Name of this program's file, without folder and extension. */
std::string Program_Name() {
    char path[4096] = {};
    Module_File_Name(path, sizeof path);
    std::string name(path);
    name.erase(0, name.find_last_of("/\\") + 1);
    return name.substr(0, name.rfind(".exe"));
}

}  // namespace

TEST(Version, describes_the_file_that_the_module_is_in) {
    EXPECT_EQ(Version(nullptr), Program_Name() + ".dll 5.0 (rev-16b)");
    EXPECT_EQ(Program_Name(), "label_panels_test");
}

TEST(Version, only_the_modules_own_version_is_accepted) {
    EXPECT_EQ(Version("5.016b"), Version(nullptr));
    for (const char* other :
         {"", "5", "5.016", "5.016b ", " 5.016b", "5.016c", "5.016B", "5.016bb", "4.016b", "5.0", "16b"}) {
        EXPECT_EQ(Version(other), "(null)") << '"' << other << '"';
    }
}

TEST(Version, nothing_is_read_beyond_the_end_of_a_short_version) {
    const std::unique_ptr<char[]> exact(new char[4]{'5', '.', '0', 0});  // the sanitizer watches its end
    EXPECT_EQ(Get_Version_Quorel_Tools(exact.get()), nullptr);
}

TEST(Version, the_description_stays_where_it_is) {
#if defined(KIT_LEAK_CHECK)
    const __lsan::ScopedDisabler meant;
#endif
    EXPECT_EQ(Get_Version_Quorel_Tools(nullptr), Get_Version_Quorel_Tools(nullptr));
}

TEST(Module_File, is_a_full_path_cut_at_the_buffer) {
    char whole[4096] = {};
    Module_File_Name(whole, sizeof whole);
    EXPECT_NE(std::strpbrk(whole, "/\\"), nullptr);
    char part[8];
    std::memset(part, 'x', sizeof part);
    Module_File_Name(part, sizeof part);
    EXPECT_EQ(std::string(part), std::string(whole).substr(0, 7));
    Module_File_Name(part, 0);
}
