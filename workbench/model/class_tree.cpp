#include "workbench/model/class_tree.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace workbench {

namespace {

std::string Quoted(const std::string& id) {
    return "class \"" + id + "\"";
}

int Position_Of(const std::vector<std::string>& ids, const std::string& id) {
    return static_cast<int>(std::find(ids.begin(), ids.end(), id) - ids.begin());
}

/** Which of some different numbers can stay where they are so that as few as possible must be moved to put them in
 *  ascending order: the longest ascending ones. */
std::vector<bool> Longest_Ascending(const std::vector<int>& numbers) {
    constexpr std::size_t none = static_cast<std::size_t>(-1);
    std::vector<std::size_t> tail;  // index of the smallest last number of an ascent, by its length
    std::vector<std::size_t> before(numbers.size(), none);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto place = std::lower_bound(tail.begin(), tail.end(), numbers[i],
                                            [&](std::size_t at, int number) { return numbers[at] < number; });
        if (place != tail.begin()) {
            before[i] = *std::prev(place);
        }
        if (place == tail.end()) {
            tail.push_back(i);
        } else {
            *place = i;
        }
    }
    std::vector<bool> stays(numbers.size(), false);
    for (std::size_t at = tail.empty() ? none : tail.back(); at != none; at = before[at]) {
        stays[at] = true;
    }
    return stays;
}

/** Turns one tree into another by moves. */
class Tree_Difference {
  public:
    Tree_Difference(Class_Tree& from, const Class_Tree& to) : now(from), wanted(to) {}

    std::vector<Class_Action> Make() {
        Names(wanted.Root());
        Children(wanted.Root());
        Leave();
        return std::move(actions);
    }

  private:
    void Do(Class_Action action) {
        if (now.Apply(action).empty()) {
            actions.push_back(std::move(action));
        }
    }
    /** Makes the names equal and new classes known. */
    void Names(const std::string& id) {
        if (!now.Has(id)) {
            now.Add(id, wanted.Name(id), "");
        }
        if (now.Name(id) != wanted.Name(id)) {
            Do(Class_Rename{id, now.Name(id), wanted.Name(id)});
        }
        for (const std::string& child : wanted.Children(id)) {
            Names(child);
        }
    }
    /** Puts a class's children into place, then theirs: from the root downwards, so that nothing is ever moved below
     *  itself. */
    void Children(const std::string& id) {
        const std::vector<std::string>& children = wanted.Children(id);
        std::map<std::string, int> order;
        for (std::size_t i = 0; i < children.size(); ++i) {
            order[children[i]] = static_cast<int>(i);
        }
        std::vector<int> present;  // of the children that are here already, in their order now
        std::vector<std::string> present_id;
        for (const std::string& child : now.Children(id)) {
            if (const auto found = order.find(child); found != order.end()) {
                present.push_back(found->second);
                present_id.push_back(child);
            }
        }
        const std::vector<bool> stays = Longest_Ascending(present);
        std::map<std::string, bool> is_placed;
        for (std::size_t i = 0; i < stays.size(); ++i) {
            is_placed[present_id[i]] = stays[i];
        }
        for (std::size_t i = 0; i < children.size(); ++i) {
            if (!is_placed[children[i]]) {
                Put(children[i], id, i > 0 ? children[i - 1] : std::string());
            }
        }
        for (const std::string& child : children) {
            Children(child);
        }
    }
    /** Moves a class behind a sibling, or to the front. */
    void Put(const std::string& id, const std::string& parent, const std::string& behind) {
        const Class_Place from = now.Place(id);
        const int behind_at = behind.empty() ? -1 : Position_Of(now.Children(parent), behind);
        // Within one parent the places behind the class move up when it leaves.
        const int shift = from.parent == parent && from.position < behind_at ? 0 : 1;
        Do(Class_Move{id, from, {parent, behind_at + shift}});
    }
    /** Takes out what the other tree does not have; such a class has no children any more but others of its kind. */
    void Leave() {
        std::vector<std::string> leaving;
        const auto collect = [&](const auto& self, const std::string& id) -> void {
            for (const std::string& child : now.Children(id)) {
                if (!wanted.Is_In(child)) {
                    leaving.push_back(child);
                }
                self(self, child);
            }
        };
        collect(collect, now.Root());
        std::reverse(leaving.begin(), leaving.end());
        for (const std::string& id : leaving) {
            Do(Class_Move{id, now.Place(id), {}});
        }
    }

    Class_Tree& now;
    const Class_Tree& wanted;
    std::vector<Class_Action> actions;
};

}  // namespace

Class_Action Class_Action_Inverse(const Class_Action& action) {
    if (const auto* const move = std::get_if<Class_Move>(&action)) {
        return Class_Move{move->id, move->to, move->from};
    }
    const auto& rename = std::get<Class_Rename>(action);
    return Class_Rename{rename.id, rename.after, rename.before};
}

Class_Tree::Class_Tree(const std::string& root_id, const std::string& name) : root(root_id) {
    nodes[root].name = name;
}

const Class_Tree::Node* Class_Tree::Find(const std::string& id) const {
    const auto found = nodes.find(id);
    return found != nodes.end() ? &found->second : nullptr;
}

bool Class_Tree::Add(const std::string& id, const std::string& name, const std::string& parent) {
    if (id.empty() || Has(id) || (!parent.empty() && !Has(parent))) {
        return false;
    }
    nodes[id] = {name, parent, {}};
    if (!parent.empty()) {
        nodes[parent].children.push_back(id);
    }
    return true;
}

const std::string& Class_Tree::Name(const std::string& id) const {
    static const std::string none;
    const Node* const node = Find(id);
    return node != nullptr ? node->name : none;
}

const std::vector<std::string>& Class_Tree::Children(const std::string& id) const {
    static const std::vector<std::string> none;
    const Node* const node = Find(id);
    return node != nullptr ? node->children : none;
}

Class_Place Class_Tree::Place(const std::string& id) const {
    const Node* const node = Find(id);
    if (node == nullptr || node->parent.empty()) {
        return {};
    }
    return {node->parent, Position_Of(Children(node->parent), id)};
}

bool Class_Tree::Is_Below(const std::string& id, const std::string& above) const {
    for (const Node* node = Find(id); node != nullptr; node = Find(node->parent)) {
        if (node == Find(above)) {
            return true;
        }
    }
    return false;
}

bool Class_Tree::Is_In(const std::string& id) const {
    return Has(root) && Is_Below(id, root);
}

std::string Class_Tree::Apply(const Class_Action& action) {
    if (const auto* const move = std::get_if<Class_Move>(&action)) {
        return Apply_Move(*move);
    }
    const auto& rename = std::get<Class_Rename>(action);
    const auto found = nodes.find(rename.id);
    if (found == nodes.end()) {
        return Quoted(rename.id) + " is not known";
    }
    if (found->second.name != rename.before) {
        return Quoted(rename.id) + " is called \"" + found->second.name + "\", not \"" + rename.before + "\"";
    }
    found->second.name = rename.after;
    return {};
}

std::string Class_Tree::Apply_Move(const Class_Move& move) {
    if (!Has(move.id)) {
        return Quoted(move.id) + " is not known";
    }
    if (move.id == root) {
        return Quoted(move.id) + " is the root and stays";
    }
    if (Place(move.id) != move.from) {
        return Quoted(move.id) + " is in another place";
    }
    if (!move.to.parent.empty()) {
        if (!Has(move.to.parent)) {
            return Quoted(move.to.parent) + " is not known";
        }
        if (Is_Below(move.to.parent, move.id)) {
            return Quoted(move.id) + " cannot hang below itself";
        }
        const int room =
            static_cast<int>(Children(move.to.parent).size()) - (move.from.parent == move.to.parent ? 1 : 0);
        if (move.to.position < 0 || move.to.position > room) {
            return Quoted(move.to.parent) + " has no place " + std::to_string(move.to.position);
        }
    }
    if (!move.from.parent.empty()) {
        std::vector<std::string>& siblings = nodes[move.from.parent].children;
        siblings.erase(siblings.begin() + move.from.position);
    }
    nodes[move.id].parent = move.to.parent;
    if (!move.to.parent.empty()) {
        std::vector<std::string>& siblings = nodes[move.to.parent].children;
        siblings.insert(siblings.begin() + move.to.position, move.id);
    }
    return {};
}

std::vector<Class_Action> Class_Tree_Difference(Class_Tree& before, const Class_Tree& after) {
    return Tree_Difference(before, after).Make();
}

}  // namespace workbench
