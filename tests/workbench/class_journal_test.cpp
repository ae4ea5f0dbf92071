#include "workbench/model/class_journal.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

using namespace workbench;

namespace {

constexpr Class_Kind KIND = Class_Kind::Classes_3D;

/** root(a(b, c), g) */
Class_Tree Study() {
    Class_Tree tree("root", "Root");
    tree.Add("a", "A", "root");
    tree.Add("b", "B", "a");
    tree.Add("c", "C", "a");
    tree.Add("g", "G", "root");
    return tree;
}
Class_Tree With(Class_Tree tree, const std::vector<Class_Action>& actions) {
    for (const Class_Action& action : actions) {
        EXPECT_EQ(tree.Apply(action), "");
    }
    return tree;
}

const Class_Move MOVE_C = {"c", {"a", 1}, {"root", 2}};
const Class_Rename RENAME_G = {"g", "G", "New \"name\" \\ of G"};

class Class_Journal_Test : public testing::Test {
  protected:
    Class_Journal_Test()
        : folder(std::filesystem::temp_directory_path() / ("class_journal_" + std::to_string(std::random_device{}()))) {
        std::filesystem::create_directories(folder);
        file = folder / "head.nii.classes.txt";
        journal.Adopt(KIND, Study());
        journal.Adopt(Class_Kind::Classes_1D, Class_Tree("curves", "Curves"));
    }
    ~Class_Journal_Test() override {
        std::error_code code;
        std::filesystem::remove_all(folder, code);
    }
    std::string Get(const std::filesystem::path& from) const {
        std::ifstream in(from, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    void Put(const std::string& text) const { std::ofstream(file, std::ios::binary) << text; }
    std::size_t File_Nb() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
    }
    /** Moves c and renames g. */
    void Edit() {
        EXPECT_TRUE(journal.Note(KIND, With(journal.Tree(KIND), {MOVE_C})));
        EXPECT_TRUE(journal.Note(KIND, With(journal.Tree(KIND), {RENAME_G})));
    }

    std::filesystem::path folder;
    std::filesystem::path file;
    Class_Journal journal;
};

// ---------------- steps

TEST_F(Class_Journal_Test, a_difference_becomes_a_step_and_no_difference_none) {
    EXPECT_FALSE(journal.Note(KIND, Study()));
    EXPECT_FALSE(journal.Is_Unsaved());
    Edit();
    ASSERT_EQ(journal.Steps().size(), 2U);
    EXPECT_EQ(journal.Steps()[0], (Class_Step{KIND, "Move C", {MOVE_C}}));
    EXPECT_EQ(journal.Steps()[1], (Class_Step{KIND, "Rename G", {RENAME_G}}));
    EXPECT_TRUE(journal.Is_Unsaved());
    EXPECT_EQ(journal.Undo_Title(), "Rename G");
    EXPECT_EQ(journal.Redo_Title(), "");
}

TEST_F(Class_Journal_Test, a_tree_with_another_root_is_no_change_of_this_one) {
    EXPECT_FALSE(journal.Note(KIND, Class_Tree("other", "Other")));
    EXPECT_FALSE(journal.Note(Class_Kind::Classes_2D, Study())) << "there is no 2D tree";
    EXPECT_TRUE(journal.Steps().empty());
}

TEST_F(Class_Journal_Test, steps_are_named_by_what_was_done) {
    Class_Tree deleted("root", "Root");
    deleted.Add("b", "B", "root");
    deleted.Add("c", "C", "root");
    deleted.Add("g", "G", "root");
    EXPECT_TRUE(journal.Note(KIND, deleted));
    EXPECT_EQ(journal.Undo_Title(), "Delete A");
    EXPECT_TRUE(journal.Note(KIND, With(journal.Tree(KIND), {Class_Move{"b", {"root", 0}, {"g", 0}},
                                                             Class_Move{"c", {"root", 0}, {"g", 1}}})));
    EXPECT_EQ(journal.Undo_Title(), "Move 2 classes");
}

TEST_F(Class_Journal_Test, a_branch_that_leaves_as_a_whole_gives_the_step_the_name_of_its_top) {
    Class_Tree rest("root", "Root");
    rest.Add("g", "G", "root");
    EXPECT_TRUE(journal.Note(KIND, rest));
    EXPECT_EQ(journal.Undo_Title(), "Delete A");
    journal.Undo();
    EXPECT_EQ(journal.Tree(KIND), Study());
}

TEST_F(Class_Journal_Test, undo_and_redo_go_through_all_states) {
    const Class_Tree first = Study();
    Edit();
    const Class_Tree last = journal.Tree(KIND);
    EXPECT_EQ(journal.Undo()->title, "Rename G");
    EXPECT_EQ(journal.Tree(KIND), With(Study(), {MOVE_C}));
    EXPECT_EQ(journal.Redo_Title(), "Rename G");
    EXPECT_EQ(journal.Undo()->title, "Move C");
    EXPECT_EQ(journal.Tree(KIND), first);
    EXPECT_EQ(journal.Undo(), nullptr);
    EXPECT_EQ(journal.Redo()->title, "Move C");
    EXPECT_EQ(journal.Redo()->title, "Rename G");
    EXPECT_EQ(journal.Redo(), nullptr);
    EXPECT_EQ(journal.Tree(KIND), last);
}

TEST_F(Class_Journal_Test, a_new_step_forgets_what_was_undone) {
    Edit();
    journal.Undo();
    EXPECT_TRUE(journal.Note(KIND, With(journal.Tree(KIND), {Class_Rename{"b", "B", "B2"}})));
    EXPECT_EQ(journal.Steps().size(), 2U);
    EXPECT_EQ(journal.Redo(), nullptr);
    EXPECT_EQ(journal.Undo_Title(), "Rename B");
}

TEST_F(Class_Journal_Test, actions_to_take_a_step_back_come_in_opposite_order) {
    const Class_Step step = {KIND, "", {MOVE_C, RENAME_G}};
    EXPECT_EQ(Class_Step_Actions(step, true), step.actions);
    EXPECT_EQ(Class_Step_Actions(step, false), (std::vector<Class_Action>{Class_Rename{"g", RENAME_G.after, "G"},
                                                                          Class_Move{"c", {"root", 2}, {"a", 1}}}));
}

TEST_F(Class_Journal_Test, another_tree_of_a_kind_forgets_the_steps_of_that_kind) {
    Edit();
    Class_Tree curves = journal.Tree(Class_Kind::Classes_1D);
    curves.Apply(Class_Rename{"curves", "Curves", "Graphs"});
    EXPECT_TRUE(journal.Note(Class_Kind::Classes_1D, curves));
    journal.Adopt(KIND, Study());
    ASSERT_EQ(journal.Steps().size(), 1U);
    EXPECT_EQ(journal.Done_Nb(), 1U);
    EXPECT_EQ(journal.Undo_Title(), "Rename Curves");
}

TEST_F(Class_Journal_Test, random_edits_can_all_be_taken_back_and_done_again) {
    std::mt19937 random(11);
    Class_Tree big("0", "0");
    for (int i = 1; i < 40; ++i) {
        big.Add(std::to_string(i), std::to_string(i), std::to_string(random() % static_cast<unsigned>(i)));
    }
    journal.Adopt(KIND, big);
    std::vector<Class_Tree> states(1, big);
    for (int edit = 0; edit < 2000; ++edit) {
        Class_Tree now = journal.Tree(KIND);
        const std::string id = std::to_string(1 + random() % 39);
        const std::string to = std::to_string(random() % 40);
        const Class_Place place = {to, static_cast<int>(now.Children(to).size())};
        const bool is_done =
            random() % 3 == 0
                ? now.Apply(Class_Rename{id, now.Name(id), std::to_string(random())}).empty()
                : now.Apply(Class_Move{id, now.Place(id), random() % 60 == 0 ? Class_Place{} : place}).empty();
        if (is_done && journal.Note(KIND, now)) {
            states.push_back(journal.Tree(KIND));
        }
    }
    ASSERT_EQ(journal.Steps().size() + 1, states.size());
    ASSERT_GT(states.size(), 200U);
    EXPECT_EQ(journal.Save(file), "");
    for (std::size_t i = states.size(); --i > 0;) {
        ASSERT_EQ(journal.Tree(KIND), states[i]);
        journal.Undo();
    }
    ASSERT_EQ(journal.Tree(KIND), big);
    while (journal.Redo() != nullptr) {
    }
    EXPECT_EQ(journal.Tree(KIND), states.back());
    Class_Journal restored;
    restored.Adopt(KIND, big);
    EXPECT_EQ(restored.Load(file), "");
    EXPECT_EQ(restored.Tree(KIND), states.back());
    EXPECT_EQ(restored.Steps(), journal.Steps());
}

// ---------------- files

TEST_F(Class_Journal_Test, the_file_is_readable_and_restores_trees_steps_and_what_was_undone) {
    Edit();
    journal.Undo();
    EXPECT_EQ(journal.Save(file), "");
    EXPECT_FALSE(journal.Is_Unsaved());
    EXPECT_EQ(Get(file),
              "class journal 1\n"
              "done 1\n"
              "step 3D \"Move C\"\n"
              "move \"c\" from \"a\" 1 to \"root\" 2\n"
              "step 3D \"Rename G\"\n"
              "name \"g\" from \"G\" to \"New \\\"name\\\" \\\\ of G\"\n"
              "end 2\n");
    Class_Journal restored;
    restored.Adopt(KIND, Study());
    EXPECT_EQ(restored.Load(file), "");
    EXPECT_EQ(restored.Tree(KIND), journal.Tree(KIND));
    EXPECT_EQ(restored.Steps(), journal.Steps());
    EXPECT_EQ(restored.Redo_Title(), "Rename G");
    EXPECT_FALSE(restored.Is_Unsaved());
    EXPECT_EQ(File_Nb(), 1U);
}

TEST_F(Class_Journal_Test, a_file_edited_by_hand_may_have_comments_blank_lines_and_windows_line_ends) {
    Put("# mine\r\nclass journal 1\r\n\r\ndone 1\r\nstep 3D \"t\"\r\n  name \"b\"  from \"B\" to \"x\\x09y\"\r\nend "
        "1\r\n");
    EXPECT_EQ(journal.Load(file), "");
    EXPECT_EQ(journal.Tree(KIND).Name("b"), "x\ty");
}

TEST_F(Class_Journal_Test, no_file_is_an_empty_journal) {
    Edit();
    journal.Adopt(KIND, Study());
    EXPECT_EQ(journal.Load(folder / "none.txt"), "");
    EXPECT_TRUE(journal.Steps().empty());
    EXPECT_EQ(journal.Tree(KIND), Study());
}

TEST_F(Class_Journal_Test, names_of_any_bytes_survive_a_file) {
    std::string name;
    for (int code = 1; code < 256; ++code) {
        name += static_cast<char>(code);
    }
    EXPECT_TRUE(journal.Note(KIND, With(Study(), {Class_Rename{"b", "B", name}, Class_Rename{"c", "C", ""}})));
    EXPECT_EQ(journal.Save(file), "");
    Class_Journal restored;
    restored.Adopt(KIND, Study());
    EXPECT_EQ(restored.Load(file), "");
    EXPECT_EQ(restored.Tree(KIND).Name("b"), name);
    EXPECT_EQ(restored.Tree(KIND).Name("c"), "");
}

TEST_F(Class_Journal_Test, every_cut_file_is_refused) {
    Edit();
    const std::string whole = Class_Journal_Text(journal.Steps(), 2);
    std::vector<Class_Step> steps;
    std::size_t done_nb = 0;
    ASSERT_EQ(Class_Journal_Parse(whole, &steps, &done_nb), "");
    for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
        EXPECT_NE(Class_Journal_Parse(whole.substr(0, length), &steps, &done_nb), "") << length;
    }
}

TEST_F(Class_Journal_Test, what_is_wrong_is_said_with_its_line) {
    const auto error = [](const std::string& text) {
        std::vector<Class_Step> steps;
        std::size_t done_nb = 0;
        return Class_Journal_Parse(text, &steps, &done_nb);
    };
    const std::string head = "class journal 1\ndone 0\n";
    EXPECT_EQ(error("class journal 2\n"), "line 1: this is no journal of class trees, or one of a later version");
    EXPECT_EQ(error(""), "its end is missing");
    EXPECT_EQ(error("class journal 1\n"), "its end is missing");
    EXPECT_EQ(error("class journal 1\ndone x\n"), "line 2: a number is expected");
    EXPECT_EQ(error("class journal 1\ndone 99999999999999999999999\n"), "line 2: a number is expected");
    EXPECT_EQ(error(head + "step 4D \"x\"\nend 1\n"), "line 3: \"1D\", \"2D\" or \"3D\" is expected");
    EXPECT_EQ(error(head + "step 3D \"x\nend 1\n"), "line 3: a text is not closed");
    EXPECT_EQ(error(head + "step 3D \"x\\\n"), "line 3: a character after \\ means nothing");
    EXPECT_EQ(error(head + "step 3D \"\\xZZ\"\n"), "line 3: a character after \\ means nothing");
    EXPECT_EQ(error(head + "step 3D x\n"), "line 3: a text between quotation marks is expected");
    EXPECT_EQ(error(head + "step 3D \"x\" y\n"), "line 3: there is more than expected");
    EXPECT_EQ(error(head + "move \"a\" from nowhere to nowhere\n"),
              "line 3: \"step\", \"move\", \"name\" or \"end\" is expected");
    EXPECT_EQ(error(head + "step 3D \"x\"\nmove \"\" from nowhere to nowhere\n"), "line 4: an id is empty");
    EXPECT_EQ(error(head + "step 3D \"x\"\nmove \"a\" from \"b\" -1 to nowhere\n"), "line 4: a number is expected");
    EXPECT_EQ(error(head + "step 3D \"x\"\nmove \"a\" to nowhere\n"), "line 4: \"from\" is expected");
    EXPECT_EQ(error(head + "end 1\n"), "line 3: steps are missing");
    EXPECT_EQ(error("class journal 1\ndone 1\nend 0\n"), "line 3: more steps are done than there are");
    EXPECT_EQ(error(head + "end 0\nend 0\n"), "line 4: there is more after the end");
    EXPECT_EQ(error(head + "end 0\n"), "");
}

TEST_F(Class_Journal_Test, a_damaged_file_changes_nothing_and_is_kept_aside_by_the_next_save) {
    Put("class journal 1\ndone 1\nstep 3D \"half");
    EXPECT_EQ(
        journal.Load(file),
        "The class trees are as they were built, without earlier changes: head.nii.classes.txt is damaged, line 3: "
        "a text is not closed.");
    EXPECT_EQ(journal.Tree(KIND), Study());
    EXPECT_EQ(Get(file), "class journal 1\ndone 1\nstep 3D \"half");
    Edit();
    EXPECT_EQ(journal.Save(file), "");
    EXPECT_EQ(Get(folder / "head.nii.classes.txt.damaged"), "class journal 1\ndone 1\nstep 3D \"half");
    EXPECT_EQ(journal.Save(file), "");
    EXPECT_EQ(File_Nb(), 2U) << "only the damaged one is kept";
    Put("worse");
    EXPECT_NE(journal.Load(file), "");
    EXPECT_EQ(journal.Save(file), "");
    EXPECT_EQ(Get(folder / "head.nii.classes.txt.damaged2"), "worse");
}

TEST_F(Class_Journal_Test, a_file_of_other_trees_changes_nothing) {
    for (const char* step : {"move \"c\" from \"a\" 0 to \"root\" 0", "move \"x\" from nowhere to \"root\" 0",
                             "move \"a\" from \"root\" 0 to \"b\" 0", "name \"b\" from \"other\" to \"x\""}) {
        Put("class journal 1\ndone 2\nstep 3D \"\"\nname \"g\" from \"G\" to \"H\"\nstep 3D \"\"\n" +
            std::string(step) + "\nend 2\n");
        const std::string error = journal.Load(file);
        EXPECT_NE(error.find("head.nii.classes.txt does not fit the class trees: step 2, class"), std::string::npos)
            << error;
        EXPECT_EQ(journal.Tree(KIND), Study()) << "not even the first step was done";
        EXPECT_TRUE(journal.Steps().empty());
    }
    Put("class journal 1\ndone 0\nstep 3D \"\"\nname \"b\" from \"other\" to \"x\"\nend 1\n");
    EXPECT_NE(journal.Load(file), "") << "an undone step must fit too";
    Put("class journal 1\ndone 1\nstep 2D \"\"\nname \"b\" from \"B\" to \"x\"\nend 1\n");
    EXPECT_NE(journal.Load(file), "") << "there is no 2D tree";
}

TEST_F(Class_Journal_Test, a_folder_in_the_files_place_is_reported) {
    std::filesystem::create_directories(file);
    EXPECT_NE(journal.Load(file), "");
    Edit();
    std::filesystem::create_directories(folder / "elsewhere" / "head.txt");
    EXPECT_EQ(journal.Save(folder / "none" / "head.txt").substr(0, 58),
              "The changes of the class trees are not saved: head.txt can");
    EXPECT_TRUE(journal.Is_Unsaved());
}

#if !defined(_WIN32)
// A limit on the size of files stands in for a full disk.
TEST_F(Class_Journal_Test, a_full_disk_loses_nothing_where_file_sizes_can_be_limited) {
    Edit();
    EXPECT_EQ(journal.Save(file), "");
    const std::string former_text = Get(file);
    EXPECT_TRUE(journal.Note(KIND, With(journal.Tree(KIND), {Class_Rename{"b", "B", std::string(5000, 'x')}})));
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto former_handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{400, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string error = journal.Save(file);
    ::setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, former_handler);
    EXPECT_EQ(error,
              "The changes of the class trees are not saved: head.nii.classes.txt cannot be written: File too large.");
    EXPECT_EQ(Get(file), former_text);
    EXPECT_EQ(File_Nb(), 1U);
    EXPECT_TRUE(journal.Is_Unsaved());
    EXPECT_EQ(journal.Steps().size(), 3U);
    EXPECT_EQ(journal.Save(file), "") << "once there is room";
    EXPECT_FALSE(journal.Is_Unsaved());
}
#endif

TEST(Class_Journal_Path_Test, stands_beside_the_data) {
    EXPECT_EQ(Class_Journal_Path("scans/head.nii.gz").generic_string(), "scans/head.nii.gz.classes.txt");
    EXPECT_EQ(Class_Journal_Path("scans/series/").generic_string(), "scans/series.classes.txt");
}

}  // namespace
