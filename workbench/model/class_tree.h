/** A tree of classes as plain data, and the difference of two trees as a list of moves and renamings. */
#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

namespace workbench {

/** Where a class hangs. */
struct Class_Place {
    std::string parent;  ///< id; empty: out of the tree
    int position = 0;    ///< among the parent's children
    friend bool operator==(const Class_Place&, const Class_Place&) = default;
};
struct Class_Move {
    std::string id;
    Class_Place from;
    Class_Place to;
    friend bool operator==(const Class_Move&, const Class_Move&) = default;
};
struct Class_Rename {
    std::string id;
    std::string before;
    std::string after;
    friend bool operator==(const Class_Rename&, const Class_Rename&) = default;
};
using Class_Action = std::variant<Class_Move, Class_Rename>;

/** The same taken back. */
Class_Action Class_Action_Inverse(const Class_Action& action);

/** Classes by their ids. An id is any text that is not empty; it stays the same when its class is renamed or moved.
 *  Classes that are out of the tree are kept with their names. There are no cycles: no operation makes one. */
class Class_Tree {
  public:
    Class_Tree() = default;
    Class_Tree(const std::string& root_id, const std::string& name);

    bool Is_Empty() const { return root.empty(); }
    const std::string& Root() const { return root; }
    bool Has(const std::string& id) const { return nodes.contains(id); }
    int Size() const { return static_cast<int>(nodes.size()); }  ///< those out of the tree included
    /** Adds a class behind a parent's children; out of the tree with an empty parent. @return false: the id is empty or
     *  known already, or the parent is not known */
    bool Add(const std::string& id, const std::string& name, const std::string& parent);

    /** Empty for an unknown id. */
    const std::string& Name(const std::string& id) const;
    const std::vector<std::string>& Children(const std::string& id) const;
    /** Parent empty: out of the tree, the root, or unknown. */
    Class_Place Place(const std::string& id) const;
    /** In the tree: the root or below it. */
    bool Is_In(const std::string& id) const;

    /** Does one action. @return empty, or why it does not fit this tree, which is then as before: "class "x" is not
     *  known" */
    std::string Apply(const Class_Action& action);

    friend bool operator==(const Class_Tree&, const Class_Tree&) = default;

  private:
    struct Node {
        std::string name;
        std::string parent;
        std::vector<std::string> children;
        friend bool operator==(const Node&, const Node&) = default;
    };
    const Node* Find(const std::string& id) const;
    std::string Apply_Move(const Class_Move& move);
    bool Is_Below(const std::string& id, const std::string& above) const;

    std::string root;
    std::map<std::string, Node> nodes;
};

/** What makes `after` of `before`, renamings first: few moves, and each of them leads from a tree to a tree without a
 *  cycle, forwards and, inverted from the last to the first, backwards. Classes that `after` does not have are moved
 *  out of the tree, those that only `after` has are added to `before` first, out of the tree. Both need the same root.
 *  @param before becomes equal to `after`, but for classes out of the tree */
std::vector<Class_Action> Class_Tree_Difference(Class_Tree& before, const Class_Tree& after);

}  // namespace workbench
