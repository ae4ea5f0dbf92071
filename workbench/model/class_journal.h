/** Every change of the class trees, step by step: to be taken back, done again, saved as a readable file and done once
 *  more at the next start.
 *
 *  The file, lines of texts between quotation marks (\" and \\ as usual, \xHH for control characters):
 *
 *      class journal 1
 *      done 1
 *      step 3D "Move Brain stem"
 *      move "Anatomy/Head/Brain/Brain stem" from "Anatomy/Head/Brain" 5 to "Anatomy/Head" 1
 *      step 3D "Rename CSF"
 *      name "Anatomy/Head/Brain/CSF" from "CSF" to "Fluid"
 *      end 2
 *
 *  Ids stand for classes, numbers for places among the parent's children; "nowhere" is out of the tree. Steps beyond
 *  the done ones were taken back. Lines that begin with # mean nothing.
 */
#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "workbench/model/class_tree.h"

namespace workbench {

/** The trees, by the dimension of their objects. */
enum class Class_Kind { Classes_1D, Classes_2D, Classes_3D };
inline constexpr int CLASS_KIND_NB = 3;

struct Class_Step {
    Class_Kind kind = Class_Kind::Classes_2D;
    std::string title;  ///< for the menu: "Rename CSF"
    std::vector<Class_Action> actions;
    friend bool operator==(const Class_Step&, const Class_Step&) = default;
};

class Class_Journal {
  public:
    /** Takes a tree as it is, without a step; steps of this kind are forgotten. An empty tree: there is none. */
    void Adopt(Class_Kind kind, Class_Tree tree);
    /** The tree as it is now, classes out of it included. */
    const Class_Tree& Tree(Class_Kind kind) const { return trees[At(kind)]; }

    /** Compares a tree that the editor may have changed with the one known, and makes one step of the difference; what
     *  was undone before is forgotten. @return false: there is no difference, or another root */
    bool Note(Class_Kind kind, const Class_Tree& now);

    /** Takes the last step back, or does it again, in Tree. @return the step, null when there is none. What its actions
     *  did is to be done to the objects too, in the order of Class_Step_Actions */
    const Class_Step* Undo();
    const Class_Step* Redo();
    /** Titles of the steps that Undo and Redo would take; empty: none. */
    std::string Undo_Title() const;
    std::string Redo_Title() const;

    const std::vector<Class_Step>& Steps() const { return steps; }
    std::size_t Done_Nb() const { return done_nb; }  ///< steps that are not undone
    /** Something happened since the last successful Save or Load. */
    bool Is_Unsaved() const { return is_unsaved; }

    /** Writes the file; a former one is replaced only when the new one is complete, and one that Load could not take is
     *  kept beside it as NAME.damaged. @return empty, or one sentence for the user: then nothing is lost */
    std::string Save(const std::filesystem::path& file);
    /** Reads a file and does its done steps to the trees, which must be as they were when it was begun. A file that
     *  does not exist is an empty journal. @return empty, or one sentence for the user: then nothing was done */
    std::string Load(const std::filesystem::path& file);

  private:
    static constexpr std::size_t At(Class_Kind kind) { return static_cast<std::size_t>(kind); }
    std::string Take(std::vector<Class_Step>&& read, std::size_t read_done_nb);
    std::string Damaged_Keep(const std::filesystem::path& file);

    std::array<Class_Tree, CLASS_KIND_NB> trees;
    std::vector<Class_Step> steps;
    std::size_t done_nb = 0;
    bool is_unsaved = false;
    bool is_damaged_kept = true;  // false: the file that is there must not be replaced
};

/** The actions that do a step, or that take it back, in the order in which they are to be done. */
std::vector<Class_Action> Class_Step_Actions(const Class_Step& step, bool redo);

/** "DATA.classes.txt": the journal's file beside a data file. */
std::filesystem::path Class_Journal_Path(const std::filesystem::path& data);

/** A journal as its file's text, and back. */
std::string Class_Journal_Text(const std::vector<Class_Step>& steps, std::size_t done_nb);
/** @return empty, or what is wrong: "line 4: a text is not closed" */
std::string Class_Journal_Parse(const std::string& text, std::vector<Class_Step>* steps, std::size_t* done_nb);

}  // namespace workbench
