#include "workbench/database/patient_view.h"

#include <algorithm>
#include <array>
#include <string>
#include <tuple>
#include <vector>

namespace workbench {

namespace {

constexpr const char* PATIENT_VIEW_SOURCE = "workbench/database/patient_view.cpp";
constexpr std::uint32_t PATIENT_COLOR = 0xFFFFFF;
constexpr int NONE = -1;

using volumes::File_Origin;

/** A frame, and whose it is. */
struct Leaf {
    int source_row = 0;
    int file_row = NONE;
    const File_Origin* origin = nullptr;  // null: the file does not say
};

bool Is_Told(const File_Origin& origin) {
    return !origin.patient_name.empty() || !origin.patient_id.empty() || !origin.study.empty() ||
           !origin.series.empty();
}

auto Patient_Key(const File_Origin& of) {
    return std::tie(of.patient_name, of.patient_id);
}
auto Study_Key(const File_Origin& of) {
    return std::tie(of.study_date, of.study, of.study_text);
}
auto Series_Key(const File_Origin& of) {
    return std::tie(of.series_number, of.series, of.series_text, of.modality);
}

bool Is_Before(const Leaf& left, const Leaf& right) {
    if (left.origin == nullptr || right.origin == nullptr) {
        return left.origin != nullptr && right.origin == nullptr;
    }
    const auto key = [](const File_Origin& of) {
        return std::tuple_cat(Patient_Key(of), Study_Key(of), Series_Key(of), std::tie(of.instance_number));
    };
    return key(*left.origin) < key(*right.origin);
}

std::string Joined(const std::string& first, const char* between, const std::string& second) {
    return first.empty() || second.empty() ? first + second : first + between + second;
}

std::string Told_Or(const std::string& text, const char* otherwise) {
    return text.empty() ? otherwise : text;
}

std::string Text_Of(const char* text) {
    return text != nullptr ? text : "";
}

}  // namespace

/** Appends rows in the order of the tree; branches are counted as what is below them comes. */
class Patient_View::Lister {
  public:
    Lister(Patient_View& listed, int* row_nb, DB_List** rows) : view(listed), nb(row_nb), list_pt(rows) {}

    bool Add(const Leaf& leaf) {
        return (leaf.origin != nullptr ? Series_Begin(leaf) : File_Begin(leaf)) && Image_Add(leaf);
    }

  private:
    static constexpr std::size_t LEVEL_NB = 3;  // of branches: patient, study, series; or file

    /** Branches from a level on are over. */
    void End(std::size_t level) { std::fill(open.begin() + static_cast<std::ptrdiff_t>(level), open.end(), NONE); }

    bool Series_Begin(const Leaf& leaf) {
        const File_Origin& of = *leaf.origin;
        if (before == nullptr || Patient_Key(*before) != Patient_Key(of)) {
            End(0);
        } else if (Study_Key(*before) != Study_Key(of)) {
            End(1);
        } else if (Series_Key(*before) != Series_Key(of)) {
            End(2);
        }
        before = &of;
        const std::string number = of.series_number != 0 ? std::to_string(of.series_number) : "";
        return Branch(0, Told_Or(of.patient_name, "Patient without a name"), of.patient_id, NONE) &&
               Branch(1, "Study", Told_Or(Joined(of.study_date, ", ", of.study_text), "without date"), NONE) &&
               Branch(2, "Series", Told_Or(Joined(number, ": ", of.series_text), "without number"), leaf.file_row);
    }

    bool File_Begin(const Leaf& leaf) {
        before = nullptr;
        if (leaf.file_row != file_before) {
            End(0);
        }
        file_before = leaf.file_row;
        return Branch(0, "File", leaf.file_row != NONE ? Text_Of(view.Source()[leaf.file_row].name) : "",
                      leaf.file_row);
    }

    /** @param file_row whose icon and modality the row has; NONE: a folder's */
    bool Branch(std::size_t level, const std::string& title, const std::string& name, int file_row) {
        if (open[level] != NONE) {
            return true;
        }
        const int at = *nb;
        DB_List* const row = view.Branch_Append(nb, list_pt);
        if (row == nullptr) {
            return false;
        }
        open[level] = at;
        row->flag = level + 1 < LEVEL_NB ? DB_FLAG_EXPANDED : 0;  // series and what is below them are opened by hand
        row->level = static_cast<std::uint16_t>(level);
        row->parent = static_cast<std::uint16_t>(level > 0 ? open[level - 1] : 0);
        row->color = level == 0 ? PATIENT_COLOR : 0;
        row->icon = file_row != NONE ? view.Source()[file_row].icon : DB_ICON_DEFAULT;
        row->modality = file_row != NONE ? view.Source()[file_row].modality : std::uint16_t{0};
        Count_Below(level);
        return Texts_Set(at, title, name);
    }

    bool Image_Add(const Leaf& leaf) {
        const DB_List& frame = view.Source()[leaf.source_row];
        // A file of one image is the image; of several, each goes by its number.
        const bool is_alone = leaf.file_row != NONE && view.Source()[leaf.file_row].child_nb == 1;
        const std::string name = Text_Of(is_alone ? view.Source()[leaf.file_row].name : frame.name);
        const int at = *nb;
        DB_List* const row = view.Leaf_Append(leaf.source_row, nb, list_pt);
        if (row == nullptr) {
            return false;
        }
        const std::size_t level = leaf.origin != nullptr ? LEVEL_NB : 1;
        row->level = static_cast<std::uint16_t>(level);
        row->parent = static_cast<std::uint16_t>(open[level - 1]);
        Count_Below(level);
        return Texts_Set(at, "Image", name);
    }

    /** Counts a new row of a level in its parent and in all branches above it. */
    void Count_Below(std::size_t level) {
        for (std::size_t above = 0; above < level; ++above) {
            DB_List& branch = (*list_pt)[open[above]];
            ++branch.desc_nb;
            branch.child_nb = static_cast<std::uint16_t>(branch.child_nb + (above + 1 == level ? 1 : 0));
        }
    }

    bool Texts_Set(int at, const std::string& title, const std::string& name) {
        DB_List& row = (*list_pt)[at];
        return DB_List_Text_Copy(&row.title, title.c_str(), "title", {PATIENT_VIEW_SOURCE, __LINE__}) &&
               (name.empty() || DB_List_Text_Copy(&row.name, name.c_str(), "name", {PATIENT_VIEW_SOURCE, __LINE__}));
    }

    Patient_View& view;
    int* nb;
    DB_List** list_pt;
    std::array<int, LEVEL_NB> open{NONE, NONE, NONE};  // the branch that rows are appended to
    const File_Origin* before = nullptr;
    int file_before = NONE;
};

bool Patient_View::List_Rows(int* nb, DB_List** list_pt) {
    std::vector<Leaf> leaves;
    int file_row = NONE;
    for (int row = 0; row < Source_Nb(); ++row) {
        const DB_List& record = Source()[row];
        if ((record.flag & DB_FLAG_LEAF) == 0) {
            file_row = record.object != nullptr ? row : NONE;  // folders stand for no file
            continue;
        }
        const File_Origin* const origin = origin_of(record.object);
        leaves.push_back({row, file_row, origin != nullptr && Is_Told(*origin) ? origin : nullptr});
    }
    std::ranges::stable_sort(leaves, Is_Before);
    Lister lister(*this, nb, list_pt);
    return std::ranges::all_of(leaves, [&](const Leaf& leaf) { return lister.Add(leaf); });
}

}  // namespace workbench
