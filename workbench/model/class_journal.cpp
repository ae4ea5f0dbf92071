#include "workbench/model/class_journal.h"

#include <algorithm>
#include <span>
#include <system_error>
#include <utility>

#include "workbench/model/text_file.h"
#include "workbench/volumes/message_text.h"

namespace workbench {

namespace {

constexpr std::size_t FILE_SIZE_MOST = 64U << 20U;  // bytes

/** What a step does, in words, from the difference alone. */
std::string Title_Of(const Class_Tree& before, const std::vector<Class_Action>& actions) {
    const Class_Rename* rename = nullptr;
    const Class_Move* taken_out = nullptr;
    const Class_Move* first = nullptr;
    int move_nb = 0;
    for (const Class_Action& action : actions) {
        if (const auto* const move = std::get_if<Class_Move>(&action)) {
            first = first != nullptr ? first : move;
            taken_out = move->to.parent.empty() ? move : taken_out;
            ++move_nb;
        } else {
            rename = std::get_if<Class_Rename>(&action);
        }
    }
    if (taken_out != nullptr) {
        return "Delete " + before.Name(taken_out->id);
    }
    if (first != nullptr) {
        return move_nb == 1 ? "Move " + before.Name(first->id) : "Move " + std::to_string(move_nb) + " classes";
    }
    return rename != nullptr ? "Rename " + rename->before : std::string();
}

}  // namespace

void Class_Journal::Adopt(Class_Kind kind, Class_Tree tree) {
    trees[At(kind)] = std::move(tree);
    std::size_t kept_done = 0;
    std::vector<Class_Step> kept;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (steps[i].kind != kind) {
            kept_done += i < done_nb ? 1 : 0;
            kept.push_back(std::move(steps[i]));
        }
    }
    steps = std::move(kept);
    done_nb = kept_done;
}

bool Class_Journal::Note(Class_Kind kind, const Class_Tree& now) {
    Class_Tree& known = trees[At(kind)];
    if (known.Is_Empty() || known.Root() != now.Root()) {
        return false;
    }
    Class_Tree changed = known;
    Class_Step step;
    step.kind = kind;
    step.actions = Class_Tree_Difference(changed, now);
    if (step.actions.empty()) {
        return false;
    }
    step.title = Title_Of(known, step.actions);
    steps.resize(done_nb);
    steps.push_back(std::move(step));
    known = std::move(changed);
    done_nb = steps.size();
    is_unsaved = true;
    return true;
}

const Class_Step* Class_Journal::Undo() {
    if (done_nb == 0) {
        return nullptr;
    }
    const Class_Step& step = steps[--done_nb];
    for (const Class_Action& action : Class_Step_Actions(step, false)) {
        trees[At(step.kind)].Apply(action);
    }
    is_unsaved = true;
    return &step;
}

const Class_Step* Class_Journal::Redo() {
    if (done_nb == steps.size()) {
        return nullptr;
    }
    const Class_Step& step = steps[done_nb++];
    for (const Class_Action& action : step.actions) {
        trees[At(step.kind)].Apply(action);
    }
    is_unsaved = true;
    return &step;
}

std::string Class_Journal::Undo_Title() const {
    return done_nb > 0 ? steps[done_nb - 1].title : std::string();
}

std::string Class_Journal::Redo_Title() const {
    return done_nb < steps.size() ? steps[done_nb].title : std::string();
}

// ---------------- files

/** Moves a file that could not be read to a name of its own. */
std::string Class_Journal::Damaged_Keep(const std::filesystem::path& file) {
    std::error_code code;
    if (is_damaged_kept || !std::filesystem::exists(file, code)) {
        return {};
    }
    return Text_File_Keep_Aside(file, ".damaged");
}

std::string Class_Journal::Save(const std::filesystem::path& file) {
    std::string error = Damaged_Keep(file);
    if (error.empty()) {
        is_damaged_kept = true;
        error = Text_File_Write(file, Class_Journal_Text(steps, done_nb));
    }
    if (!error.empty()) {
        return "The changes of the class trees are not saved: " + volumes::File_Name_Text(file) + " " + error + ".";
    }
    is_unsaved = false;
    return {};
}

std::string Class_Journal::Load(const std::filesystem::path& file) {
    std::error_code code;
    if (!std::filesystem::exists(file, code) && !code) {
        is_damaged_kept = true;
        return Take({}, 0);
    }
    is_damaged_kept = false;
    std::string text;
    std::string error = Text_File_Read(file, FILE_SIZE_MOST, text);
    if (error.empty()) {
        std::vector<Class_Step> read;
        std::size_t read_done_nb = 0;
        error = Class_Journal_Parse(text, &read, &read_done_nb);
        error = error.empty() ? Take(std::move(read), read_done_nb) : "is damaged, " + error;
    }
    if (!error.empty()) {
        return "The class trees are as they were built, without earlier changes: " + volumes::File_Name_Text(file) +
               " " + error + ".";
    }
    is_damaged_kept = true;
    return {};
}

/** Does the steps to copies of the trees, and takes them over when all fit. */
std::string Class_Journal::Take(std::vector<Class_Step>&& read, std::size_t read_done_nb) {
    std::array<Class_Tree, CLASS_KIND_NB> changed = trees;
    const auto fits = [&](const Class_Step& step, std::array<Class_Tree, CLASS_KIND_NB>& on, std::string* error) {
        for (const Class_Action& action : step.actions) {
            *error = on[At(step.kind)].Apply(action);
            if (!error->empty()) {
                return false;
            }
        }
        return true;
    };
    std::array<Class_Tree, CLASS_KIND_NB> undone;
    for (std::size_t i = 0; i < read.size(); ++i) {
        if (i == read_done_nb) {
            undone = changed;  // the undone steps are tried too, so that they can be done again
        }
        std::string error;
        if (!fits(read[i], i < read_done_nb ? changed : undone, &error)) {
            return "does not fit the class trees: step " + std::to_string(i + 1) + ", " + error;
        }
    }
    trees = std::move(changed);
    steps = std::move(read);
    done_nb = read_done_nb;
    is_unsaved = false;
    return {};
}

std::vector<Class_Action> Class_Step_Actions(const Class_Step& step, bool redo) {
    std::vector<Class_Action> actions = step.actions;
    if (!redo) {
        std::reverse(actions.begin(), actions.end());
        std::transform(actions.begin(), actions.end(), actions.begin(), Class_Action_Inverse);
    }
    return actions;
}

std::filesystem::path Class_Journal_Path(const std::filesystem::path& data) {
    std::filesystem::path file = data.has_filename() ? data : data.parent_path();  // a folder may end in "/"
    file += ".classes.txt";
    return file;
}

}  // namespace workbench
