// The class trees' journal when the kit has no memory for a class in its new place.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/support/import_hook.h"
#include "tests/support/panel_fixture.h"
#include "workbench/database/class_history.h"

using namespace workbench;

namespace {

/** Body(Head(A, B, C, D), Vessel): Head's list of children has no room left. */
class Class_History_Memory_Test : public testing::Test {
  protected:
    Class_History_Memory_Test()
        : folder(std::filesystem::temp_directory_path() / ("class_memory_" + std::to_string(std::random_device{}()))) {
        std::filesystem::create_directories(folder);
    }
    ~Class_History_Memory_Test() override {
        std::error_code code;
        std::filesystem::remove_all(folder, code);
    }
    Quorel_3D* Class(Quorel_3D* parent, const char* name) {
        objects.push_back(std::make_unique<Quorel_3D>());
        objects.back()->Name_Set(name);
        if (parent != nullptr) {
            parent->Child_Add(objects.back().get());
        }
        return objects.back().get();
    }
    /** New objects, and a journal in which Vessel moves below Head. @param is_done or was undone */
    void Begin(bool is_done) {
        objects.clear();
        Quorel_3D* const body = Class(nullptr, "Body");
        Quorel_3D* const head = Class(body, "Head");
        for (const char* name : {"A", "B", "C", "D"}) {
            Class(head, name);
        }
        Class(body, "Vessel");
        std::ofstream(Class_Journal_Path(folder / "data"), std::ios::binary)
            << "class journal 1\ndone " << (is_done ? 1 : 0)
            << "\nstep 3D \"Move Vessel\"\nmove \"Body/Vessel\" from \"Body\" 1 to \"Body/Head\" 4\nend 1\n";
        history = std::make_unique<Class_History>();
        history->Begin(nullptr, body);
    }
    static std::string Text_Of(const Quorel_3D& object) {
        std::string text = object.Name_Get();
        for (int i = 0; i < object.Child_Get_Nb(); ++i) {
            EXPECT_EQ(object.Child_Get_Pt(i)->Parent_Get_Pt(), &object);
            text += (i == 0 ? "(" : ", ") + Text_Of(*object.Child_Get_Pt(i));
        }
        return object.Child_Get_Nb() > 0 ? text + ")" : text;
    }
    std::string Text() const { return Text_Of(*objects[0]); }

    static constexpr const char* BUILT = "Body(Head(A, B, C, D), Vessel)";
    static constexpr const char* MOVED = "Body(Head(A, B, C, D, Vessel))";
    Message_Recorder messages;
    std::filesystem::path folder;
    std::vector<std::unique_ptr<Quorel_3D>> objects;
    std::unique_ptr<Class_History> history;
};

TEST_F(Class_History_Memory_Test, a_move_that_cannot_be_done_at_the_start_loses_no_class) {
    int refused = 0;
    bool failed = true;
    for (int n = 1; failed; ++n) {
        Begin(true);
        std::string problem;
        {
            const Allocation_Fault fault("Kit_Dataset.dll", n);
            problem = history->Open(nullptr, folder / "data");
            failed = Allocation_Fault::Happened();
        }
        if (problem.empty()) {
            EXPECT_EQ(Text(), MOVED);
            continue;
        }
        ++refused;
        EXPECT_EQ(problem, "Not every change of the class trees could be done again.");
        EXPECT_EQ(Text(), BUILT);
        EXPECT_FALSE(history->Note()) << "what is there is known";
        EXPECT_EQ(history->Journal().Done_Nb(), 2U) << "the move, and that it did not happen";
        EXPECT_TRUE(history->Is_Unsaved());
        EXPECT_TRUE(history->Undo());
        EXPECT_EQ(Text(), MOVED) << "once there is memory";
    }
    EXPECT_GE(refused, 1);
}

TEST_F(Class_History_Memory_Test, a_redo_that_cannot_be_done_loses_no_class) {
    int refused = 0;
    bool failed = true;
    for (int n = 1; failed; ++n) {
        Begin(false);
        ASSERT_EQ(history->Open(nullptr, folder / "data"), "");
        {
            const Allocation_Fault fault("Kit_Dataset.dll", n);
            EXPECT_EQ(history->Redo()->title, "Move Vessel");
            failed = Allocation_Fault::Happened();
        }
        EXPECT_EQ(history->Journal().Done_Nb(), Text() == MOVED ? 1U : 2U);
        EXPECT_FALSE(history->Note()) << "what is there is known";
        if (Text() == MOVED) {
            continue;
        }
        ++refused;
        EXPECT_EQ(Text(), BUILT);
        EXPECT_TRUE(history->Undo());
        EXPECT_EQ(Text(), MOVED) << "once there is memory";
        EXPECT_TRUE(history->Undo());
        EXPECT_EQ(Text(), BUILT);
    }
    EXPECT_GE(refused, 1);
}

}  // namespace
