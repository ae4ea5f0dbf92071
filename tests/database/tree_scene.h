/** Trees of records for tests and measurements of the database panel, and a plain recursive model of them. */
#pragma once

#include <algorithm>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "database/db_list.h"

/** Records with their texts. Add in depth-first order, then Finish. */
class Tree_Scene {
  public:
    std::vector<DB_List> rows;

    Tree_Scene() = default;
    Tree_Scene(const Tree_Scene&) = delete;
    Tree_Scene& operator=(const Tree_Scene&) = delete;

    int Nb() const { return static_cast<int>(rows.size()); }
    DB_List* Pt() { return rows.data(); }
    DB_List& operator[](int record) { return rows[static_cast<std::size_t>(record)]; }

    int Add(int level, const char* title = nullptr, const char* name = nullptr) {
        DB_List record = {};
        record.level = static_cast<std::uint16_t>(level);
        record.title = Keep(title);
        record.name = Keep(name);
        record.icon = DB_ICON_DEFAULT;
        rows.push_back(record);
        return Nb() - 1;
    }
    /** Counts, parents and flags from the levels: branches expanded, others leaves. Counts wrap beyond 65535. */
    void Finish() {
        std::vector<int> open;  // the branch at each level
        for (int i = 0; i < Nb(); ++i) {
            DB_List& record = (*this)[i];
            open.resize(std::min<std::size_t>(open.size(), record.level));
            if (!open.empty()) {
                record.parent = static_cast<std::uint16_t>(open.back());
                (*this)[open.back()].child_nb++;
            }
            for (const int above : open) {
                (*this)[above].desc_nb++;
            }
            open.resize(record.level, i);
            open.push_back(i);
        }
        for (int i = 0; i < Nb(); ++i) {
            (*this)[i].flag |= i + 1 < Nb() && rows[static_cast<std::size_t>(i) + 1].level > (*this)[i].level
                                   ? DB_FLAG_EXPANDED
                                   : DB_FLAG_LEAF;
        }
        DB_List_Set_State(Nb(), Pt());
    }
    /** A random tree: levels grow by one at most. About one branch in `collapsed_of` is collapsed. */
    void Make_Random(unsigned int seed, int nb, int level_max, unsigned int collapsed_of) {
        std::mt19937 random(seed);
        int level = 0;
        for (int i = 0; i < nb; ++i) {
            Add(level);
            rows.back().state = random() % 2 != 0 ? DB_STATE_CHECKED : DB_STATE_NONE;
            const int deeper = random() % 3 != 0 ? level + 1 : static_cast<int>(random() % unsigned(level + 1));
            level = std::min(deeper, level_max);
        }
        Finish();
        for (DB_List& record : rows) {
            if (record.desc_nb != 0 && random() % collapsed_of == 0) {
                record.flag = static_cast<std::uint16_t>(record.flag & ~DB_FLAG_EXPANDED);
            }
        }
    }
    char* Keep(const char* text) {
        if (text == nullptr) {
            return nullptr;
        }
        texts.emplace_back(text);
        return texts.back().data();
    }

  private:
    std::deque<std::string> texts;
};

/** The tree as nodes: what the flat array stands for. */
struct Tree_Node {
    int record = -1;
    std::vector<Tree_Node> children;

    /** Takes the records from `next` on that are deeper than `level`. */
    void Take(const std::vector<DB_List>& rows, int& next, int level) {
        while (next < static_cast<int>(rows.size()) && rows[static_cast<std::size_t>(next)].level > level) {
            Tree_Node child;
            child.record = next;
            const int child_level = rows[static_cast<std::size_t>(next)].level;
            ++next;
            child.Take(rows, next, child_level);
            children.push_back(std::move(child));
        }
    }
    /** Records in the order of their rows. */
    void Displayed(const std::vector<DB_List>& rows, std::vector<int>& order) const {
        if (record >= 0) {
            order.push_back(record);
            if ((rows[static_cast<std::size_t>(record)].flag & DB_FLAG_EXPANDED) == 0) {
                return;
            }
        }
        for (const Tree_Node& child : children) {
            child.Displayed(rows, order);
        }
    }
};

inline std::vector<int> Displayed_Records(const std::vector<DB_List>& rows) {
    Tree_Node root;
    int next = 0;
    root.Take(rows, next, -1);
    std::vector<int> order;
    root.Displayed(rows, order);
    return order;
}
