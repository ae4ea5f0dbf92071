#include "workbench/model/text_fold.h"

#include <algorithm>
#include <cstddef>

namespace workbench {

namespace {

/** Letters from the start that have the room. */
std::size_t Fitting(std::wstring_view text, int width, const std::function<int(std::wstring_view)>& measure) {
    std::size_t low = 0;
    std::size_t high = text.size();
    while (low < high) {
        const std::size_t middle = (low + high + 1) / 2;
        if (measure(text.substr(0, middle)) <= width) {
            low = middle;
        } else {
            high = middle - 1;
        }
    }
    return low;
}

/** Between `fitting` letters and the rest, a letter of two units stays whole. At least one letter. */
std::size_t Anywhere(std::wstring_view text, std::size_t fitting) {
    const auto is_second_unit = [&](std::size_t at) {
        return at < text.size() && text[at] >= 0xDC00 && text[at] <= 0xDFFF;
    };
    std::size_t cut = std::max<std::size_t>(fitting, 1);
    if (is_second_unit(cut)) {
        cut = cut > 1 ? cut - 1 : cut + 1;
    }
    return cut;
}

}  // namespace

std::vector<std::wstring> Text_Fold(std::wstring_view text, int first_width, int width,
                                    const std::function<int(std::wstring_view)>& measure) {
    std::vector<std::wstring> rows;
    int room = first_width;
    while (measure(text) > room) {
        const std::size_t fitting = Fitting(text, room, measure);
        // A blank that has no room any more is a break, too.
        const std::size_t blank = text.substr(0, fitting + 1).rfind(L' ');
        std::size_t cut = blank != std::wstring_view::npos && blank > 0 ? blank : 0;
        if (cut == 0 && (!rows.empty() || first_width >= width)) {
            const std::size_t slash = text.substr(0, fitting).find_last_of(L"/\\");
            cut = slash != std::wstring_view::npos ? slash + 1 : Anywhere(text, fitting);
        }
        rows.emplace_back(text.substr(0, cut));
        text.remove_prefix(cut);
        text.remove_prefix(std::min(text.find_first_not_of(L' '), text.size()));
        room = width;
    }
    if (!text.empty() || rows.empty()) {
        rows.emplace_back(text);
    }
    return rows;
}

std::wstring Text_Folded(std::wstring_view text, int letters) {
    std::wstring folded;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(L'\n', at), text.size());
        for (const std::wstring& row :
             Text_Fold(text.substr(at, end - at), letters, letters,
                       [](std::wstring_view part) { return static_cast<int>(part.size()); })) {
            folded += row + L'\n';
        }
        at = end + 1;
    }
    folded.pop_back();
    return folded;
}

}  // namespace workbench
