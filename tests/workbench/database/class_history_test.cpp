#include "workbench/database/class_history.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

using namespace workbench;

namespace {

/** All trees of an application: Curves(One, Two), Images(head(1, 2, 3)), Body(Head(Brain, Skull), Vessel). */
struct Trees {
    std::vector<std::unique_ptr<Quorel_1D>> curves;
    std::vector<std::unique_ptr<Quorel_2D>> images;
    std::vector<std::unique_ptr<Quorel_3D>> structures;

    Trees() {
        Quorel_1D* const curve_root = Class(curves, nullptr, "Curves");
        Class(curves, curve_root, "One");
        Class(curves, curve_root, "Two");
        Images();
        Quorel_3D* const body = Class(structures, nullptr, "Body");
        Quorel_3D* const head = Class(structures, body, "Head");
        Class(structures, head, "Brain");
        Class(structures, head, "Skull");
        Class(structures, body, "Vessel");
    }
    void Images() {
        images.clear();
        Quorel_2D* const root = Class(images, nullptr, "Images");
        Quorel_2D* const volume = Class(images, root, "head");
        for (const char* name : {"1", "2", "3"}) {
            Class(images, volume, name);
        }
    }
    template <class Object>
    static Object* Class(std::vector<std::unique_ptr<Object>>& objects, std::type_identity_t<Object>* parent,
                         const char* name) {
        objects.push_back(std::make_unique<Object>());
        objects.back()->Name_Set(name);
        if (parent != nullptr) {
            parent->Child_Add(objects.back().get());
        }
        return objects.back().get();
    }
    template <class Object>
    static Object* Find(const std::vector<std::unique_ptr<Object>>& objects, const std::string& name) {
        for (const auto& object : objects) {
            if (name == object->Name_Get()) {
                return object.get();
            }
        }
        ADD_FAILURE() << "there is no " << name;
        return objects.front().get();
    }
    Quorel_1D* Curve(const std::string& name) const { return Find(curves, name); }
    Quorel_2D* Image(const std::string& name) const { return Find(images, name); }
    Quorel_3D* Structure(const std::string& name) const { return Find(structures, name); }

    template <class Object>
    static std::string Text_Of(const Object& object) {
        std::string text = object.Name_Get();
        for (int i = 0; i < object.Child_Get_Nb(); ++i) {
            text += (i == 0 ? "(" : ", ") + Text_Of(*object.Child_Get_Pt(i));
        }
        return object.Child_Get_Nb() > 0 ? text + ")" : text;
    }
    std::string Text() const { return Text_Of(*curves[0]) + " " + Text_Of(*images[0]) + " " + Text_Of(*structures[0]); }
};

constexpr const char* BUILT = "Curves(One, Two) Images(head(1, 2, 3)) Body(Head(Brain, Skull), Vessel)";

class Class_History_Test : public testing::Test {
  protected:
    Class_History_Test()
        : folder(std::filesystem::temp_directory_path() / ("class_history_" + std::to_string(std::random_device{}()))) {
        std::filesystem::create_directories(folder);
        data = folder / "head.nii";
        history.Begin(trees.curves[0].get(), trees.structures[0].get());
    }
    ~Class_History_Test() override {
        std::error_code code;
        std::filesystem::remove_all(folder, code);
    }
    /** A change of each tree, and a step for each. */
    void Edit() {
        trees.Curve("Two")->Name_Set("Second");
        EXPECT_TRUE(history.Note());
        trees.Image("head")->Child_Insert(0, trees.Image("3"));
        EXPECT_TRUE(history.Note());
        trees.Structure("Vessel")->Child_Add(trees.Structure("Brain"));
        EXPECT_TRUE(history.Note());
    }
    static constexpr const char* EDITED = "Curves(One, Second) Images(head(3, 1, 2)) Body(Head(Skull), Vessel(Brain))";
    std::string Get(const std::filesystem::path& from) const {
        std::ifstream in(from, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    void Put(const std::string& text) const { std::ofstream(Class_Journal_Path(data), std::ios::binary) << text; }

    std::filesystem::path folder;
    std::filesystem::path data;
    Trees trees;
    Class_History history;
};

// ---------------- undo

TEST_F(Class_History_Test, changes_of_all_trees_are_taken_back_and_done_again_in_order) {
    EXPECT_EQ(history.Open(trees.images[0].get(), data), "");
    EXPECT_FALSE(history.Note()) << "nothing was changed";
    EXPECT_FALSE(history.Undo());
    Edit();
    ASSERT_EQ(trees.Text(), EDITED);
    EXPECT_EQ(history.Undo()->title, "Move Brain");
    EXPECT_EQ(trees.Text(), "Curves(One, Second) Images(head(3, 1, 2)) Body(Head(Brain, Skull), Vessel)");
    EXPECT_EQ(history.Undo()->kind, Class_Kind::Classes_2D);
    EXPECT_EQ(history.Undo()->kind, Class_Kind::Classes_1D);
    EXPECT_EQ(trees.Text(), BUILT);
    EXPECT_FALSE(history.Undo());
    EXPECT_EQ(history.Redo()->title, "Rename Two");
    EXPECT_TRUE(history.Redo());
    EXPECT_TRUE(history.Redo());
    EXPECT_EQ(trees.Text(), EDITED);
    EXPECT_FALSE(history.Redo());
    EXPECT_FALSE(history.Note()) << "what undo and redo did are no steps";
}

TEST_F(Class_History_Test, what_was_changed_unseen_is_taken_back_first) {
    trees.Curve("Two")->Name_Set("Second");
    EXPECT_TRUE(history.Note());
    trees.Structure("Skull")->Name_Set("Bone");
    EXPECT_EQ(history.Undo()->title, "Rename Skull");
    EXPECT_EQ(history.Journal().Done_Nb(), 1U);
}

TEST_F(Class_History_Test, a_deleted_class_comes_back_with_its_children) {
    Quorel_3D* const head = trees.Structure("Head");
    for (const char* name : {"Skull", "Brain"}) {
        trees.structures[0]->Child_Insert(1, trees.Structure(name));
    }
    trees.structures[0]->Child_Remove(head);
    EXPECT_TRUE(history.Note());
    EXPECT_EQ(Trees::Text_Of(*trees.structures[0]), "Body(Brain, Skull, Vessel)");
    EXPECT_EQ(history.Undo()->title, "Delete Head");
    EXPECT_EQ(trees.Text(), BUILT);
    EXPECT_TRUE(history.Redo());
    EXPECT_EQ(Trees::Text_Of(*trees.structures[0]), "Body(Brain, Skull, Vessel)");
    EXPECT_EQ(head->Parent_Get_Pt(), nullptr);
}

// ---------------- ids

TEST_F(Class_History_Test, classes_are_known_by_the_names_on_the_way_to_them) {
    Trees::Class(trees.structures, trees.Structure("Head"), "Skull");
    Trees::Class(trees.structures, trees.Structure("Head"), "");
    trees.structures.back()->Title_Set("Tissue");
    Class_History other;
    other.Begin(trees.curves[0].get(), trees.structures[0].get());
    const Class_Tree& tree = other.Journal().Tree(Class_Kind::Classes_3D);
    EXPECT_EQ(tree.Children("Body/Head"), (std::vector<std::string>{"Body/Head/Brain", "Body/Head/Skull",
                                                                    "Body/Head/Skull (2)", "Body/Head/Tissue"}));
    EXPECT_EQ(tree.Name("Body/Head/Skull (2)"), "Skull");
}

TEST_F(Class_History_Test, names_are_written_in_utf_8_whatever_the_objects_have) {
    // Stands for a system whose code page has an u with two dots at 0xFC.
    Class_History other({[](const char* text) {
                             std::string utf8;
                             for (; *text != 0; ++text) {
                                 utf8 += *text == '\xFC' ? std::string("\xC3\xBC") : std::string(1, *text);
                             }
                             return utf8;
                         },
                         [](const std::string& utf8) {
                             std::string text = utf8;
                             const std::size_t at = text.find("\xC3\xBC");
                             return at == std::string::npos ? text : text.replace(at, 2, "\xFC");
                         }});
    other.Begin(trees.curves[0].get(), trees.structures[0].get());
    other.Open(nullptr, data);
    trees.Curve("One")->Name_Set(
        "Gem\xFC"
        "t");
    EXPECT_TRUE(other.Note());
    EXPECT_EQ(other.Save(), "");
    EXPECT_NE(Get(other.File()).find("to \"Gem\xC3\xBCt\""), std::string::npos);
    EXPECT_TRUE(other.Undo());
    EXPECT_TRUE(other.Redo());
    EXPECT_STREQ(trees.curves[1]->Name_Get(),
                 "Gem\xFC"
                 "t");
}

// ---------------- files

TEST_F(Class_History_Test, the_next_start_does_the_changes_again_and_can_take_them_back) {
    history.Open(trees.images[0].get(), data);
    Edit();
    trees.Structure("Body")->Name_Set("Whole body");
    EXPECT_TRUE(history.Note());
    EXPECT_TRUE(history.Undo());
    EXPECT_TRUE(history.Is_Unsaved());
    EXPECT_EQ(history.Save(), "");
    EXPECT_FALSE(history.Is_Unsaved());
    EXPECT_EQ(history.File(), folder / "head.nii.classes.txt");

    Trees later;
    Class_History next;
    next.Begin(later.curves[0].get(), later.structures[0].get());
    EXPECT_EQ(next.Open(later.images[0].get(), data), "");
    EXPECT_EQ(later.Text(), EDITED);
    EXPECT_FALSE(next.Note());
    EXPECT_FALSE(next.Is_Unsaved());
    EXPECT_EQ(next.Redo()->title, "Rename Body");
    EXPECT_STREQ(later.structures[0]->Name_Get(), "Whole body");
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(next.Undo());
    }
    EXPECT_EQ(later.Text(), BUILT);
}

TEST_F(Class_History_Test, nothing_is_written_when_nothing_happened) {
    history.Open(trees.images[0].get(), data);
    EXPECT_EQ(history.Save(), "");
    EXPECT_FALSE(std::filesystem::exists(history.File()));
}

TEST_F(Class_History_Test, other_data_have_their_own_changes) {
    history.Open(trees.images[0].get(), data);
    Edit();
    EXPECT_EQ(history.Save(), "");
    history.Images_Leave();
    trees.Images();
    EXPECT_EQ(history.Open(trees.images[0].get(), folder / "other.nii"), "");
    EXPECT_EQ(trees.Text(), BUILT);
    EXPECT_FALSE(history.Note());
    EXPECT_FALSE(history.Undo());
    trees.Curve("One")->Name_Set("First");
    EXPECT_TRUE(history.Note());
    EXPECT_EQ(history.Save(), "");
    history.Images_Leave();
    trees.Images();
    EXPECT_EQ(history.Open(trees.images[0].get(), data), "");
    EXPECT_EQ(trees.Text(), EDITED);
}

TEST_F(Class_History_Test, without_data_changes_are_kept_for_data_that_have_none) {
    trees.Curve("Two")->Name_Set("Second");
    EXPECT_TRUE(history.Note());
    EXPECT_EQ(history.Save(), "") << "there is no place yet";
    EXPECT_TRUE(history.Is_Unsaved());
    EXPECT_EQ(history.Open(trees.images[0].get(), data), "");
    EXPECT_FALSE(history.Is_Unsaved());
    EXPECT_NE(Get(history.File()).find("Rename Two"), std::string::npos);
    EXPECT_STREQ(trees.curves[2]->Name_Get(), "Second");
}

TEST_F(Class_History_Test, changes_made_without_data_give_way_to_those_of_the_data) {
    history.Open(trees.images[0].get(), data);
    Edit();
    EXPECT_EQ(history.Save(), "");
    Trees later;
    Class_History next;
    next.Begin(later.curves[0].get(), later.structures[0].get());
    later.Curve("One")->Name_Set("First");
    EXPECT_TRUE(next.Note());
    EXPECT_EQ(next.Open(later.images[0].get(), data),
              "The changes of the class trees that were made before head.nii was opened are taken back: "
              "head.nii.classes.txt has others.");
    EXPECT_EQ(later.Text(), EDITED);
    EXPECT_FALSE(next.Note());
}

TEST_F(Class_History_Test, a_damaged_journal_is_told_and_kept_aside) {
    Put("class journal 1\ndone 1\nstep 3D \"Rename");
    EXPECT_EQ(history.Open(trees.images[0].get(), data),
              "The class trees are as they were built, without earlier changes: head.nii.classes.txt is damaged, "
              "line 3: a text is not closed.");
    EXPECT_EQ(trees.Text(), BUILT);
    EXPECT_FALSE(history.Note());
    Edit();
    EXPECT_EQ(history.Save(), "");
    EXPECT_EQ(Get(folder / "head.nii.classes.txt.damaged"), "class journal 1\ndone 1\nstep 3D \"Rename");
    EXPECT_NE(Get(history.File()).find("Move Brain"), std::string::npos);
}

TEST_F(Class_History_Test, a_journal_that_fits_other_classes_is_told) {
    Put("class journal 1\ndone 1\nstep 2D \"Rename 9\"\nname \"Images/head/9\" from \"9\" to \"nine\"\nend 1\n");
    EXPECT_EQ(history.Open(trees.images[0].get(), data),
              "The class trees are as they were built, without earlier changes: head.nii.classes.txt does not fit the "
              "class trees: step 1, class \"Images/head/9\" is not known.");
    EXPECT_EQ(trees.Text(), BUILT);
}

TEST_F(Class_History_Test, a_folder_that_takes_no_file_is_told_and_loses_nothing) {
    history.Open(trees.images[0].get(), folder / "gone" / "head.nii");
    Edit();
    EXPECT_EQ(history.Save().substr(0, 70), "The changes of the class trees are not saved: head.nii.classes.txt can");
    EXPECT_TRUE(history.Is_Unsaved());
    EXPECT_EQ(trees.Text(), EDITED);
    std::filesystem::create_directories(folder / "gone");
    EXPECT_EQ(history.Save(), "");
    EXPECT_FALSE(history.Is_Unsaved());
}

// ---------------- journals that cannot be done

TEST_F(Class_History_Test, a_change_that_the_objects_refuse_is_told_and_the_journal_tells_what_is_there) {
    Put("class journal 1\ndone 2\n"
        "step 1D \"Rename One\"\nname \"Curves/One\" from \"One\" to \"First\"\n"
        "step 3D \"Move Head\"\nmove \"Body/Head\" from \"Body\" 0 to \"Body/Vessel\" 0\nend 2\n");
    // Moved without anybody's notice: now Head cannot go below Vessel, which hangs below it.
    trees.Structure("Skull")->Child_Add(trees.Structure("Vessel"));
    EXPECT_EQ(history.Open(trees.images[0].get(), data), "Not every change of the class trees could be done again.");
    EXPECT_EQ(trees.Text(), "Curves(First, Two) Images(head(1, 2, 3)) Body(Head(Brain, Skull(Vessel)))");
    EXPECT_FALSE(history.Note()) << "what is there is known";
    EXPECT_EQ(history.Journal().Steps().size(), 3U);
    EXPECT_EQ(history.Journal().Done_Nb(), 3U);
    EXPECT_TRUE(history.Is_Unsaved());
    EXPECT_EQ(history.Save(), "");

    // The file now leads from the trees as they are built to what was there.
    Trees later;
    Class_History next;
    next.Begin(later.curves[0].get(), later.structures[0].get());
    EXPECT_EQ(next.Open(later.images[0].get(), data), "");
    EXPECT_EQ(later.Text(), trees.Text());
    EXPECT_FALSE(next.Note());
}

TEST_F(Class_History_Test, steps_before_and_behind_a_refused_one_are_done) {
    Put("class journal 1\ndone 3\n"
        "step 3D \"\"\nname \"Body\" from \"Body\" to \"Whole\"\n"
        "step 3D \"\"\nmove \"Body/Head\" from \"Body\" 0 to \"Body/Vessel\" 0\n"
        "step 2D \"\"\nname \"Images/head/2\" from \"2\" to \"two\"\nend 3\n");
    trees.Structure("Skull")->Child_Add(trees.Structure("Vessel"));
    EXPECT_NE(history.Open(trees.images[0].get(), data), "");
    EXPECT_STREQ(trees.structures[0]->Name_Get(), "Whole");
    EXPECT_EQ(trees.Image("two"), trees.images[3].get());
}

TEST_F(Class_History_Test, changes_without_data_are_taken_back_also_when_the_datas_cannot_all_be_done) {
    Put("class journal 1\ndone 1\nstep 3D \"\"\nmove \"Body/Head\" from \"Body\" 0 to \"Body/Vessel\" 0\nend 1\n");
    trees.Curve("Two")->Name_Set("Second");
    EXPECT_TRUE(history.Note());
    trees.Structure("Skull")->Child_Add(trees.Structure("Vessel"));
    EXPECT_EQ(history.Open(trees.images[0].get(), data), "Not every change of the class trees could be done again.");
    EXPECT_STREQ(trees.curves[2]->Name_Get(), "Two");
    EXPECT_FALSE(history.Note());
}

TEST_F(Class_History_Test, any_damaged_file_leaves_trees_and_journal_in_agreement) {
    history.Open(trees.images[0].get(), data);
    Edit();
    ASSERT_EQ(history.Save(), "");
    const std::string whole = Get(history.File());
    std::mt19937 random(5);
    int refused = 0;
    int taken = 0;
    for (std::size_t round = 0; round < whole.size() + 600; ++round) {
        std::string text = whole.substr(0, std::min(round, whole.size()));
        if (round >= whole.size()) {  // a byte or two are others
            for (unsigned int times = 1 + random() % 2; times > 0; --times) {
                text[random() % text.size()] = static_cast<char>(random());
            }
        }
        Put(text);
        Trees later;
        Class_History next;
        next.Begin(later.curves[0].get(), later.structures[0].get());
        const std::string problem = next.Open(later.images[0].get(), data);
        ASSERT_FALSE(next.Note()) << text;
        if (!problem.empty()) {
            ++refused;
            ASSERT_EQ(later.Text(), BUILT) << text;
            ASSERT_FALSE(next.Undo()) << text;
            continue;
        }
        ++taken;
        while (next.Undo()) {
        }
        ASSERT_EQ(later.Text(), BUILT) << text;
    }
    EXPECT_GT(refused, static_cast<int>(whole.size()) - 5);
    EXPECT_GT(taken, 10) << "a changed name is no damage";
}

TEST_F(Class_History_Test, a_refused_file_stays_until_something_is_saved) {
    Put("no journal\n");
    EXPECT_NE(history.Open(trees.images[0].get(), data), "");
    EXPECT_EQ(history.Save(), "") << "nothing happened";
    EXPECT_EQ(Get(history.File()), "no journal\n");
    EXPECT_FALSE(std::filesystem::exists(folder / "head.nii.classes.txt.damaged"));
}

TEST_F(Class_History_Test, changes_made_without_data_give_way_to_a_damaged_journal_with_its_own_words) {
    Put("class journal 1\ndone 1\nstep 3D \"Rename");
    trees.Curve("Two")->Name_Set("Second");
    EXPECT_TRUE(history.Note());
    EXPECT_EQ(history.Open(trees.images[0].get(), data),
              "The class trees are as they were built, without earlier changes: head.nii.classes.txt is damaged, "
              "line 3: a text is not closed.");
    EXPECT_EQ(trees.Text(), BUILT);
}

TEST_F(Class_History_Test, images_that_leave_take_their_steps_along) {
    history.Open(trees.images[0].get(), data);
    Edit();
    history.Images_Leave();
    trees.images.clear();
    EXPECT_FALSE(history.Note());
    EXPECT_EQ(history.Undo()->kind, Class_Kind::Classes_3D);
    EXPECT_EQ(history.Undo()->kind, Class_Kind::Classes_1D);
    EXPECT_FALSE(history.Undo());
}

}  // namespace
