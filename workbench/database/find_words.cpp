#include "workbench/database/find_words.h"

#include <algorithm>

namespace workbench {

namespace {

std::string Small_Letters(std::string_view text) {
    std::string small(text);
    for (char& letter : small) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<char>(letter - 'A' + 'a');
        }
    }
    return small;
}

}  // namespace

Find_Words::Find_Words(std::string_view typed) {
    const std::string small = Small_Letters(typed);
    std::size_t begin = 0;
    while ((begin = small.find_first_not_of(" \t", begin)) != std::string::npos) {
        const std::size_t end = std::min(small.find_first_of(" \t", begin), small.size());
        words.push_back(small.substr(begin, end - begin));
        begin = end;
    }
}

bool Find_Words::Match(std::string_view text) const {
    const std::string small = Small_Letters(text);
    return !words.empty() && std::all_of(words.begin(), words.end(), [&small](const std::string& word) {
        return small.find(word) != std::string::npos;
    });
}

}  // namespace workbench
