/** A plain model of a class tree and of what the editor does to it, for random edits. */
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/** The tree as lists of children. */
struct Plain_Tree {
    std::vector<std::vector<int>> children;
    std::vector<int> parent;
    std::vector<std::string> name;

    explicit Plain_Tree(int nb) : children(At(nb)), parent(At(nb), -1), name(At(nb)) {}
    static std::size_t At(int i) { return static_cast<std::size_t>(i); }
    int Position(int node) const {
        const auto& siblings = children[At(parent[At(node)])];
        return static_cast<int>(std::find(siblings.begin(), siblings.end(), node) - siblings.begin());
    }
    void Take(int node) {
        auto& siblings = children[At(parent[At(node)])];
        siblings.erase(siblings.begin() + Position(node));
        parent[At(node)] = -1;
    }
    void Put(int node, int below, int position) {
        auto& siblings = children[At(below)];
        siblings.insert(siblings.begin() + position, node);
        parent[At(node)] = below;
    }
    void Append(int node, int below) { Put(node, below, static_cast<int>(children[At(below)].size())); }
    bool Is_Below(int node, int above) const {
        for (; node >= 0; node = parent[At(node)]) {
            if (node == above) {
                return true;
            }
        }
        return false;
    }
    /** As the editor drops: false when the node is refused and stays. */
    void Drop(int node, int below) {
        if (children[At(below)].size() == 1 && children[At(below)][0] == node) {
            return;
        }
        if (!Is_Below(below, node)) {
            Take(node);
            Append(node, below);
        }
    }
    void Take_Out(int node) {
        const int above = parent[At(node)];
        int position = Position(node);
        Take(node);
        for (const int child : std::exchange(children[At(node)], {})) {
            Put(child, above, position++);
        }
    }
    std::string Text(int node) const {
        std::string text = std::to_string(node);
        for (std::size_t i = 0; i < children[At(node)].size(); ++i) {
            text += (i == 0 ? "(" : ",") + Text(children[At(node)][i]);
        }
        return children[At(node)].empty() ? text : text + ")";
    }
};
