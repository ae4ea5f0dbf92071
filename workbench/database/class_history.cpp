#include "workbench/database/class_history.h"

#include <system_error>
#include <type_traits>

#include "workbench/database/class_tree_objects.h"
#include "workbench/volumes/message_text.h"

namespace workbench {

namespace {

template <class Object>
constexpr Class_Kind KIND_OF = std::is_same_v<Object, Quorel_1D>   ? Class_Kind::Classes_1D
                               : std::is_same_v<Object, Quorel_2D> ? Class_Kind::Classes_2D
                                                                   : Class_Kind::Classes_3D;

const char* Text_Or_Empty(const char* text) {
    return text != nullptr ? text : "";
}

}  // namespace

/** Gives an object and all below it their ids; of several with one name the later ones are numbered. */
template <class Object>
void Class_History::Identify(Object& object, const std::string& id) {
    auto& of = Of<Object>();
    std::string own = id;
    for (int n = 2; of.objects.contains(own); ++n) {
        own = id + " (" + std::to_string(n) + ")";
    }
    of.objects[own] = &object;
    of.ids[&object] = own;
    for (int i = 0; i < object.Child_Get_Nb(); ++i) {
        if (Object* const child = object.Child_Get_Pt(i)) {
            const std::string name = coding.to_utf8(Text_Or_Empty(child->Name_Get()));
            const std::string title = coding.to_utf8(Text_Or_Empty(child->Title_Get()));
            Identify(*child, own + "/" + (name.empty() ? title : name));
        }
    }
}

template <class Object>
void Class_History::Take(Object* root) {
    auto& of = Of<Object>();
    of = {};
    of.root = root;
    if (root != nullptr) {
        const std::string name = coding.to_utf8(Text_Or_Empty(root->Name_Get()));
        const std::string title = coding.to_utf8(Text_Or_Empty(root->Title_Get()));
        Identify(*root, !name.empty() ? name : !title.empty() ? title : "root");
        of.built = Read<Object>();
    }
    journal.Adopt(KIND_OF<Object>, of.built);
}

template <class Object>
Class_Tree Class_History::Read() const {
    const auto& of = Of<Object>();
    return Class_Tree_Read<Object>(
        *of.root,
        [&](const Object& object) {
            const auto found = of.ids.find(&object);
            return found != of.ids.end() ? found->second : std::string();
        },
        [&](const Object& object) { return coding.to_utf8(Text_Or_Empty(object.Name_Get())); });
}

template <class Object>
bool Class_History::Note_Kind() {
    return Of<Object>().root != nullptr && journal.Note(KIND_OF<Object>, Read<Object>());
}

template <class Object>
bool Class_History::Do(const std::vector<Class_Action>& actions) {
    bool is_done = true;
    for (const Class_Action& action : actions) {
        is_done &= Class_Action_Do<Object>(
            action,
            [&](const std::string& id) -> Object* {
                const auto found = Of<Object>().objects.find(id);
                return found != Of<Object>().objects.end() ? found->second : nullptr;
            },
            [&](Object& object, const std::string& name) { object.Name_Set(coding.from_utf8(name).c_str()); });
    }
    return is_done;
}

/** Makes the objects hang and be called as they were taken over. */
template <class Object>
void Class_History::Rebuild() {
    if (Of<Object>().root != nullptr) {
        Class_Tree now = journal.Tree(KIND_OF<Object>);
        Do<Object>(Class_Tree_Difference(now, Of<Object>().built));
    }
    journal.Adopt(KIND_OF<Object>, Of<Object>().built);
}

bool Class_History::Do_Step(const Class_Step& step, bool redo) {
    const std::vector<Class_Action> actions = Class_Step_Actions(step, redo);
    switch (step.kind) {
        case Class_Kind::Classes_1D:
            return Do<Quorel_1D>(actions);
        case Class_Kind::Classes_2D:
            return Do<Quorel_2D>(actions);
        default:
            return Do<Quorel_3D>(actions);
    }
}

void Class_History::Begin(Quorel_1D* curves, Quorel_3D* structures) {
    Take(curves);
    Take<Quorel_2D>(nullptr);
    Take(structures);
}

void Class_History::Images_Leave() {
    Take<Quorel_2D>(nullptr);
}

std::string Class_History::Open(Quorel_2D* images, const std::filesystem::path& data) {
    const bool is_without_data = file.empty() && !journal.Steps().empty();
    Take(images);
    file = Class_Journal_Path(data);
    std::error_code code;
    if (is_without_data && !std::filesystem::exists(file, code) && !code) {
        return Save();
    }
    Rebuild<Quorel_1D>();
    Rebuild<Quorel_3D>();
    std::string problem = journal.Load(file);
    bool is_done = true;
    for (std::size_t i = 0; i < journal.Done_Nb(); ++i) {
        is_done &= Do_Step(journal.Steps()[i], true);
    }
    if (!is_done) {
        Note();
        problem = "Not every change of the class trees could be done again.";
    }
    if (is_without_data && problem.empty()) {
        problem = "The changes of the class trees that were made before " + volumes::File_Name_Text(data) +
                  " was opened are taken back: " + volumes::File_Name_Text(file) + " has others.";
    }
    return problem;
}

bool Class_History::Note() {
    const bool is_1d = Note_Kind<Quorel_1D>();
    const bool is_2d = Note_Kind<Quorel_2D>();
    const bool is_3d = Note_Kind<Quorel_3D>();
    return is_1d || is_2d || is_3d;
}

std::optional<Class_Step> Class_History::Go(bool redo) {
    Note();  // what was changed unseen comes first
    const Class_Step* const step = redo ? journal.Redo() : journal.Undo();
    if (step == nullptr) {
        return std::nullopt;
    }
    const Class_Step done = *step;
    if (!Do_Step(done, redo)) {
        Note();  // the journal tells what is there
    }
    return done;
}

std::string Class_History::Save() {
    return file.empty() || !journal.Is_Unsaved() ? std::string() : journal.Save(file);
}

}  // namespace workbench
