// The table of variables, the sources that read them and the guide's page say the same.
#include "kits/dataset/variable_rules.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

const fs::path ROOT = KIT_SOURCE_ROOT;

std::string Read(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string Code(const char* text) {
    return *text != 0 ? "`" + std::string(text) + "`" : std::string("empty");
}

std::string Length_Text(const Variable_Rule& rule) {
    if (rule.shape == Variable_Shape::Array) {
        return *rule.length == '$' ? "`" + std::string(rule.length) + "`" : std::string(rule.length);
    }
    return "";
}

std::string Form_Text(const Variable_Rule& rule) {
    switch (rule.shape) {
        case Variable_Shape::Scalar:
            return Variable_Type_Text(rule.type);
        case Variable_Shape::Array:
            return std::string("array of ") + Variable_Type_Text(rule.type);
        default:
            return Variable_Type_Text(rule.type);
    }
}

std::string Value_Text(const Variable_Rule& rule) {
    std::string text = Code(rule.recommended);
    if (rule.most != 0) {
        text += ", at most " + std::to_string(rule.most);
    }
    if (rule.multiple != 0) {
        text += ", a multiple of " + std::to_string(rule.multiple);
    }
    return text;
}

/** A '|' inside a cell would end it. */
std::string Cell(std::string text) {
    return std::regex_replace(text, std::regex("\\|"), "and");
}

std::string Page() {
    std::string page =
        "# Host variables\n\nWhat panels and kits read. `kits/dataset/variable_rules.h` offers this table to programs: "
        "the contract checker goes by it, and\n`Variable_Define_Recommended` defines whatever a host has not defined "
        "itself, with the values below (pixels at 96 dots per inch). All exist\nbefore the first `Resize`. An array is "
        "at least as long as its length says; \"written by\" names who changes a variable later, \"after a "
        "change\"\nwhat the host then sends to the panels that read it.\n\n"
        "| variable | form | length | recommended | unit, meaning | written by | read by | after a change |\n"
        "|---|---|---|---|---|---|---|---|\n";
    int nb = 0;
    const Variable_Rule* rules = Variable_Rules(&nb);
    for (const Variable_Rule* rule = rules; rule != rules + nb; ++rule) {
        page += "| `" + std::string(rule->name) + "`";
        for (const std::string& cell :
             {Form_Text(*rule), Length_Text(*rule), Value_Text(*rule), std::string(rule->unit),
              std::string(rule->writer), std::string(rule->reader), std::string(rule->change)}) {
            page += " | " + Cell(cell);
        }
        page += " |\n";
    }
    return page;
}

TEST(Variable_Rules, the_guides_page_is_made_of_them) {
    const fs::path path = ROOT / "docs" / "host_variables.md";
    if (std::getenv("KIT_UPDATE_DOCS") != nullptr) {
        std::ofstream(path, std::ios::binary) << Page();
    }
    EXPECT_EQ(Read(path), Page()) << "KIT_UPDATE_DOCS=1 kit_contract_test writes the page anew";
}

TEST(Variable_Rules, name_what_panels_and_kits_ask_for_and_nothing_else) {
    std::set<std::string> asked;
    for (const char* room : {"panels", "histogram", "database"}) {
        for (const auto& entry : fs::recursive_directory_iterator(ROOT / room)) {
            const std::string kind = entry.path().extension().string();
            if (kind != ".cpp" && kind != ".h") {
                continue;
            }
            const std::string text = std::regex_replace(Read(entry.path()), std::regex("//[^\n]*|/\\*[^]*?\\*/"), "");
            const std::regex name("\"(\\$[A-Z0-9_]+)\"");
            for (auto found = std::sregex_iterator(text.begin(), text.end(), name); found != std::sregex_iterator();
                 ++found) {
                asked.insert((*found)[1].str());
            }
        }
    }
    std::set<std::string> ruled;
    int nb = 0;
    const Variable_Rule* rules = Variable_Rules(&nb);
    for (const Variable_Rule* rule = rules; rule != rules + nb; ++rule) {
        EXPECT_TRUE(ruled.insert(rule->name).second) << rule->name;
        if (std::strcmp(rule->reader, "none") == 0 || std::strcmp(rule->name, "$DEFAULT_ICON_PATH") == 0) {
            asked.insert(rule->name);
        }
    }
    EXPECT_EQ(asked, ruled);
}

}  // namespace
