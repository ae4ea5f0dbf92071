#include "database/tool_db_file.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/database/file_scene.h"
#include "tests/database/host_calls.h"
#include "tests/support/panel_fixture.h"

namespace {

constexpr int SELECTED = 0x10;
constexpr int GROUP = 4;
constexpr int MASK = 512;
constexpr const char* OPEN_READ = "open(Tool_DB_File::List_Select_From_DB, -)";
constexpr const char* OPEN_WRITE = "open(Tool_DB_File::List_Select_To_DB, -)";

class Tool_DB_File_Test : public testing::Test {
  protected:
    Tool_DB_File_Test() : view(2) { host.Name(&scene.window, "window"); }
    ~Tool_DB_File_Test() override { Free(); }

    int Create() {
        Free();
        return view.List_Create_From_DB(&nb, &list_pt, 5, 6, &scene);  // the last three are not used
    }
    void Free() { DB_List_Array_Free(&nb, &list_pt); }
    Quorel_2D& Add_Object(Quorel_2D_Frame* frame, const std::vector<Quorel_2D_Frame*>& more = {}) {
        Quorel_2D& object = scene.Add_Object(frame, more);
        host.Name(&object, "o" + std::to_string(scene.objects.size() - 1));
        return object;
    }
    void Read() { view.List_Select_From_DB(nb, list_pt); }
    Calls Write() {
        host.Take();
        view.List_Select_To_DB(nb, list_pt);
        return host.Take();
    }
    static std::string Next(const std::string& object) { return "next(12287, all, 0) = " + object; }
    static bool Is_Selected(const Quorel_2D& object) { return object.Flag_Get_Bit(SELECTED, GROUP, MASK) != 0; }
    static void Select(Quorel_2D& object) { object.Flag_Set_On(SELECTED, GROUP, MASK); }
    std::string Row(int i) const {
        const DB_List& record = list_pt[i];
        return std::string(record.title != nullptr ? record.title : "-") + "|" +
               (record.name != nullptr ? record.name : "-");
    }

    File_Scene scene;
    Tool_DB_File view;
    int nb = 0;
    DB_List* list_pt = nullptr;
    Host_Calls host;
    Message_Recorder messages;
};

// ---------------- creation

TEST_F(Tool_DB_File_Test, empty_table_gives_no_array_and_one) {
    EXPECT_EQ(Create(), 1);
    EXPECT_EQ(nb, 0);
    EXPECT_EQ(list_pt, nullptr);
    scene.Publish();
    EXPECT_EQ(Create(), 1);
    EXPECT_EQ(list_pt, nullptr);
    Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, -3);
    EXPECT_EQ(Create(), 1);
    Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, 3);
    Variable_Undefine("$DB_2D_FILE_PT");
    EXPECT_EQ(Create(), 1);
    EXPECT_EQ(list_pt, nullptr);
}

TEST_F(Tool_DB_File_Test, folders_files_and_frames_are_listed_depth_first) {
    auto& first = scene.Add_File("C:\\data\\one.dcm", 2);
    first.flags[1] = 0x40;
    auto& second = scene.Add_File("C:\\data\\two.nii.gz", 1);
    second.flags[0] = 0xFFBF;
    scene.Add_File("C:\\Data\\three.dcm", 1);
    EXPECT_EQ(Create(), 1);
    ASSERT_EQ(nb, 9);
    const char* const text[] = {"C:\\data|-",      "File|one.dcm",    "Frame|1 (64x32)",
                                "Frame|2 (64x32)", "File|two.nii.gz", "Frame|1 (64x32)",
                                "C:\\Data|-",      "File|three.dcm",  "Frame|1 (64x32)"};
    const int level[] = {0, 1, 2, 2, 1, 2, 0, 1, 2};
    const int flag[] = {1, 0, 2, 2, 0, 2, 1, 0, 2};
    const int parent[] = {0, 0, 1, 1, 0, 4, 0, 6, 7};
    const int child_nb[] = {2, 2, 0, 0, 1, 0, 1, 1, 0};
    const int desc_nb[] = {5, 2, 0, 0, 1, 0, 2, 1, 0};
    const int index[] = {0, 0, 0, 1, 0, 0, 0, 0, 0};
    const int state[] = {0, 0, 0, 0x10, 0, 0, 0, 0, 0};
    const void* const object[] = {nullptr,       &first.record,          &first.record,
                                  &first.record, &second.record,         &second.record,
                                  nullptr,       &scene.files[2].record, &scene.files[2].record};
    for (int i = 0; i < nb; ++i) {
        const DB_List& record = list_pt[i];
        EXPECT_EQ(Row(i), text[i]);
        EXPECT_EQ(record.level, level[i]) << i;
        EXPECT_EQ(record.flag, flag[i]) << i;
        EXPECT_EQ(record.parent, parent[i]) << i;
        EXPECT_EQ(record.child_nb, child_nb[i]) << i;
        EXPECT_EQ(record.desc_nb, desc_nb[i]) << i;
        EXPECT_EQ(record.index, index[i]) << i;
        EXPECT_EQ(record.state, state[i]) << i;
        EXPECT_EQ(record.object, object[i]) << i;
        EXPECT_EQ(record.color, level[i] == 0 ? 0xFFFFFFU : 0U) << i;
        EXPECT_EQ(record.modality, level[i] == 1 ? 0x4354 : 0) << i;
        const char* const icon[] = {"icon folder.tga", "modality ct.tga", "icon image.tga"};
        EXPECT_STREQ(record.icon, icon[record.level]) << i;
        EXPECT_EQ(record.column_nb | record.row, 0) << i;
    }
}

TEST_F(Tool_DB_File_Test, directory_that_comes_back_gets_a_second_folder) {
    for (const char* path : {"a\\1.x", "b\\2.x", "a\\3.x", "a\\4.x"}) {
        scene.Add_File(path, 0);
    }
    Create();
    ASSERT_EQ(nb, 7);
    EXPECT_EQ(Row(0), "a|-");
    EXPECT_EQ(Row(2), "b|-");
    EXPECT_EQ(Row(4), "a|-");
    EXPECT_EQ(list_pt[4].child_nb, 2);
}

TEST_F(Tool_DB_File_Test, null_entry_does_not_end_the_folder) {
    scene.Add_Null_File();
    scene.Add_File("a\\1.x", 0);
    scene.Add_Null_File();
    scene.Add_File("a\\2.x", 0);
    Create();
    ASSERT_EQ(nb, 3);
    EXPECT_EQ(list_pt[0].child_nb, 2);
    EXPECT_EQ(list_pt[0].desc_nb, 2);
}

TEST_F(Tool_DB_File_Test, file_without_frames_has_no_children_and_the_other_icon) {
    scene.Add_File("a\\1.x", 0);
    Create();
    ASSERT_EQ(nb, 2);
    EXPECT_EQ(list_pt[1].child_nb, 0);
    EXPECT_EQ(list_pt[1].desc_nb, 0);
    EXPECT_EQ(list_pt[1].modality, 0);
    EXPECT_STREQ(list_pt[1].icon, "modality ot.tga");
}

TEST_F(Tool_DB_File_Test, path_without_directory_gets_a_folder_without_title) {
    scene.Add_File("first", 0);
    scene.Add_File("second.x", 0);
    scene.Add_File("a\\third.x", 0);
    scene.Add_File("fourth", 0);
    Create();
    ASSERT_EQ(nb, 7);
    EXPECT_EQ(Row(0), "-|-");
    EXPECT_EQ(list_pt[0].child_nb, 2);
    EXPECT_EQ(Row(1), "File|first");
    EXPECT_EQ(Row(2), "File|second.x");
    EXPECT_EQ(Row(3), "a|-");
    EXPECT_EQ(Row(5), "-|-");
}

TEST_F(Tool_DB_File_Test, file_without_a_path_gets_a_row_without_name) {
    scene.Add_File("", 1).record.path = nullptr;
    Create();
    ASSERT_EQ(nb, 3);
    EXPECT_EQ(Row(0), "-|-");
    EXPECT_EQ(Row(1), "File|-");
}

TEST_F(Tool_DB_File_Test, long_paths_are_listed_whole) {
    const std::string directory = "C:\\" + std::string(20000, 'd');
    const std::string name = std::string(10000, 'n') + ".extension";
    scene.Add_File(directory + "\\" + name, 0);
    Create();
    EXPECT_EQ(list_pt[0].title, directory);
    EXPECT_EQ(list_pt[1].name, name);
}

TEST_F(Tool_DB_File_Test, a_path_that_is_longer_than_any_is_cut) {
    const std::string start = "C:\\";
    scene.Add_File(start + std::string(100000, 'n') + ".extension", 0);
    scene.Add_File("D:\\next.nii", 0);
    Create();
    EXPECT_EQ(list_pt[1].name, std::string(PATH_SIZE - 1 - start.size(), 'n'));
    EXPECT_STREQ(list_pt[3].name, "next.nii");
}

TEST_F(Tool_DB_File_Test, every_modality_has_its_icon) {
    const std::pair<const char*, const char*> icons[] = {
        {"CR", "rx"}, {"CT", "ct"}, {"MR", "mr"}, {"NM", "nm"}, {"PH", "ph"}, {"PT", "nm"}, {"PX", "rx"}, {"RG", "rx"},
        {"SC", "ph"}, {"ST", "nm"}, {"US", "us"}, {"XA", "xa"}, {"OT", "ot"}, {"ct", "ot"}, {"TC", "ot"}};
    for (const auto& [letters, icon] : icons) {
        auto& frame = scene.Add_Frame(1, 1, 1, 1, letters[0] * 256 + letters[1]);
        auto& later = scene.Add_Frame();  // only the first frame counts
        scene.Add_File("x", {&frame, &later});
    }
    Create();
    for (int i = 0; i < static_cast<int>(std::size(icons)); ++i) {
        const DB_List& record = list_pt[1 + 3 * i];
        EXPECT_EQ(record.icon, std::string("modality ") + icons[i].second + ".tga") << icons[i].first;
        EXPECT_EQ(record.modality, icons[i].first[0] * 256 + icons[i].first[1]);
    }
}

TEST_F(Tool_DB_File_Test, icon_and_name_of_a_frame_follow_its_slices_and_times) {
    struct Case {
        int slices;
        int times;
        const char* icon;
        const char* name;
    };
    const Case cases[] = {
        {1, 1, "icon image.tga", "1 (64x32)"},
        {5, 1, "icon volume.tga", "2 to 6 (64x32)"},
        {5, 1, "icon volume.tga", "3 to 7 (64x32)"},
        {1, 4, "icon cine.tga", "4 to 7"},
        {3, 4, "icon cine.tga", "5 to 7 (64x32)"},
        {0, 1, "icon folder.tga", "6 (64x32)"},
        {1, 0, "icon folder.tga", "7 (64x32)"},
        {0, 0, "icon folder.tga", "8 (64x32)"},
        {0, 2, "icon cine.tga", "9 to 10"},
        {2, 0, "icon volume.tga", "10 to 11 (64x32)"},
        {65535, 65535, "icon cine.tga", "11 to 65545 (64x32)"},
    };
    std::vector<Quorel_2D_Frame*> frames;
    for (const Case& one : cases) {
        frames.push_back(&scene.Add_Frame(one.slices, one.times));
    }
    auto& scout = scene.Add_Frame(5, 5);
    scout.flags = 0x10;
    frames.push_back(&scout);
    auto& no_scout = scene.Add_Frame(1, 1);
    no_scout.flags = 0xFFEF;
    frames.push_back(&no_scout);
    scene.Add_File("x", frames);
    Create();
    int row = 2;
    for (const Case& one : cases) {
        EXPECT_STREQ(list_pt[row].icon, one.icon) << row;
        EXPECT_STREQ(list_pt[row].name, one.name) << row;
        ++row;
    }
    EXPECT_STREQ(list_pt[row].icon, "icon scout.tga");
    EXPECT_STREQ(list_pt[row + 1].icon, "icon image.tga");
}

TEST_F(Tool_DB_File_Test, null_frames_and_missing_tables_get_plain_rows) {
    auto& file = scene.Add_File("x", {nullptr, &scene.Add_Frame()});
    file.record.frame_flags = nullptr;
    auto& bare = scene.Add_File("y", 1);
    bare.record.frame = nullptr;
    auto& broken = scene.Add_File("z", 0);
    broken.record.frame_nb = -1;
    auto& object = Add_Object(file.frames[1]);
    object.frame_more_nb = 3;  // and no table of them
    Select(object);
    Create();
    ASSERT_EQ(nb, 7);
    EXPECT_EQ(list_pt[1].modality, 0);
    EXPECT_EQ(Row(2), "Frame|1 (0x0)");
    EXPECT_STREQ(list_pt[2].icon, "icon folder.tga");
    EXPECT_EQ(Row(3), "Frame|2 (64x32)");
    EXPECT_EQ(Row(5), "Frame|1 (0x0)");
    EXPECT_EQ(list_pt[6].child_nb, 0);
    Read();
    EXPECT_EQ(list_pt[2].state, 0);
    EXPECT_EQ(list_pt[3].state, 2);
    EXPECT_EQ(Write(), (Calls{OPEN_WRITE, Next("o0"), "get(o0, 0x10, 4, 512) = 0x10", Next("-"), "close"}));
}

TEST_F(Tool_DB_File_Test, more_rows_than_can_be_numbered_are_all_made) {
    auto& frame = scene.Add_Frame();
    scene.Add_File("x", std::vector<Quorel_2D_Frame*>(40000, &frame));
    scene.Add_File("y", std::vector<Quorel_2D_Frame*>(40000, &frame));
    EXPECT_EQ(Create(), 1);
    ASSERT_EQ(nb, 80003);
    EXPECT_EQ(list_pt[0].desc_nb, 80002 - 65536);
    EXPECT_EQ(list_pt[80002].parent, 40002);
    EXPECT_EQ(list_pt[80002].index, 39999);
}

TEST_F(Tool_DB_File_Test, editor_of_a_file_view_has_no_dimension) {
    EXPECT_EQ(Tool_DB_File(2).mode, 2);
    EXPECT_EQ(Tool_DB_File(2 | DB_MODE_ADD).mode, 2 | DB_MODE_ADD);
    EXPECT_EQ(Tool_DB_File(2 | DB_MODE_EDIT | DB_MODE_ADD).mode, DB_MODE_EDIT | DB_MODE_ADD);
}

// ---------------- reading

TEST_F(Tool_DB_File_Test, reading_checks_the_frames_of_selected_objects) {
    auto& file = scene.Add_File("x", 4);
    file.flags[2] = 0x40;
    Create();
    Select(Add_Object(file.frames[2]));
    Add_Object(file.frames[1]);
    Select(Add_Object(&scene.Add_Frame(), {nullptr, file.frames[0], file.frames[0]}));
    for (int i = 0; i < nb; ++i) {
        list_pt[i].state |= 0x8003;
    }
    host.Take();
    Read();
    EXPECT_EQ(host.Take(),
              (Calls{OPEN_READ, Next("o0"), "get(o0, 0x10, 4, 512) = 0x10", Next("o1"), "get(o1, 0x10, 4, 512) = 0x0",
                     Next("o2"), "get(o2, 0x10, 4, 512) = 0x10", Next("-"), "close"}));
    const int state[] = {0x8001, 0x8001, 0x8003, 0x8001, 0x8013, 0x8001};
    for (int i = 0; i < nb; ++i) {
        EXPECT_EQ(list_pt[i].state, state[i]) << i;
    }
}

TEST_F(Tool_DB_File_Test, without_an_iterator_reading_only_clears) {
    auto& file = scene.Add_File("x", 1);
    Select(Add_Object(file.frames[0]));
    Create();
    Read();
    EXPECT_EQ(list_pt[2].state, 2);
    std::vector<unsigned short> open;
    host.Listen(false);
    while (const unsigned short handle = Iterator_Init("test", nullptr)) {
        open.push_back(handle);
    }
    host.Listen(true);
    Read();
    EXPECT_EQ(list_pt[2].state, 0);
    host.Take();
    list_pt[2].state = 0;
    EXPECT_EQ(Write(), (Calls{std::string(OPEN_WRITE) + " = 0"}));
    for (const unsigned short handle : open) {
        Iterator_End(handle);
    }
}

TEST_F(Tool_DB_File_Test, file_that_lost_frames_is_read_within_its_bounds) {
    auto& file = scene.Add_File("x", 3);
    auto& kept = Add_Object(file.frames[0]);
    auto& lost = Add_Object(file.frames[2]);
    Select(kept);
    Select(lost);
    Create();
    file.record.frame_nb = 1;
    Read();
    EXPECT_EQ(list_pt[2].state, 2);
    EXPECT_EQ(list_pt[4].state, 0);
    list_pt[2].state = 0;
    Write();
    EXPECT_FALSE(Is_Selected(kept));
    EXPECT_TRUE(Is_Selected(lost));
}

TEST_F(Tool_DB_File_Test, count_without_an_array_is_taken_for_no_rows) {
    scene.Add_File("x", 1);
    view.List_Select_From_DB(9, nullptr);
    view.List_Select_To_DB(9, nullptr);
    nb = 9;
    EXPECT_EQ(view.List_Create_From_DB(&nb, &list_pt, 0, 0, nullptr), 0);
    EXPECT_EQ(nb, 9);
    EXPECT_EQ(list_pt, nullptr);
    EXPECT_TRUE(messages.Take_Reports().empty());
    EXPECT_EQ(Iterator_Open_Nb(), 0);
}

// ---------------- writing

TEST_F(Tool_DB_File_Test, only_objects_that_disagree_are_switched) {
    auto& file = scene.Add_File("x", 4);
    file.flags[3] = 0x40;  // no access: written like any other
    Add_Object(file.frames[0]);
    Select(Add_Object(file.frames[1]));
    Add_Object(file.frames[2]);
    Select(Add_Object(file.frames[3]));
    Create();
    list_pt[2].state = 2;
    list_pt[3].state = 2;
    list_pt[4].state = 1;
    EXPECT_EQ(Write(), (Calls{OPEN_WRITE, Next("o0"), "get(o0, 0x10, 4, 512) = 0x0", "on(o0, 0x10, 4, 512)",
                              "update(0x102, all, o0, -)", "redraw(0x8, window, o0, -)", Next("o1"),
                              "get(o1, 0x10, 4, 512) = 0x10", Next("o2"), "get(o2, 0x10, 4, 512) = 0x0", Next("o3"),
                              "get(o3, 0x10, 4, 512) = 0x10", "off(o3, 0x10, 4, 512)", "update(0x102, all, -, -)",
                              "redraw(0x3ffc, all, -, -)", Next("-"), "close"}));
}

TEST_F(Tool_DB_File_Test, last_row_that_disagrees_with_the_flag_at_the_start_decides) {
    auto& file = scene.Add_File("x", 3);
    auto& object = Add_Object(file.frames[2], {file.frames[0], file.frames[1], file.frames[0]});
    Create();
    list_pt[2].state = 2;
    list_pt[4].state = 2;
    const Calls on{"on(o0, 0x10, 4, 512)", "update(0x102, all, o0, -)", "redraw(0x8, window, o0, -)"};
    Calls expected{OPEN_WRITE, Next("o0"), "get(o0, 0x10, 4, 512) = 0x0"};
    for (int times = 0; times < 3; ++times) {
        expected.insert(expected.end(), on.begin(), on.end());
    }
    expected.push_back(Next("-"));
    expected.emplace_back("close");
    EXPECT_EQ(Write(), expected);
    EXPECT_TRUE(Is_Selected(object));
    Write();  // now the unchecked row is the one that disagrees
    EXPECT_FALSE(Is_Selected(object));
}

TEST_F(Tool_DB_File_Test, without_a_current_window_nothing_is_written) {
    auto& file = scene.Add_File("x", 1);
    Add_Object(file.frames[0]);
    Create();
    list_pt[2].state = 2;
    Variable_Undefine("$WINDOW_CUR");
    EXPECT_EQ(Write(), Calls{});
}

TEST_F(Tool_DB_File_Test, without_rows_the_iterators_are_still_opened_and_ended) {
    Add_Object(&scene.Add_Frame());
    for (const int row_nb : {0, 7}) {  // 7: the count of a failed creation
        host.Take();
        view.List_Select_From_DB(row_nb, nullptr);
        Calls calls = host.Take();
        ASSERT_GE(calls.size(), 2U);
        EXPECT_EQ(calls.front(), OPEN_READ);
        EXPECT_EQ(calls.back(), "close");
        view.List_Select_To_DB(row_nb, nullptr);
        calls = host.Take();
        ASSERT_GE(calls.size(), 2U);
        EXPECT_EQ(calls.front(), OPEN_WRITE);
        EXPECT_EQ(calls.back(), "close");
    }
}

TEST_F(Tool_DB_File_Test, the_number_of_files_is_in_the_low_16_bits) {
    scene.Add_File("x", 1);
    Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, 0x70001);
    EXPECT_EQ(Create(), 1);
    EXPECT_EQ(nb, 3) << "folder, file, frame";
}

TEST_F(Tool_DB_File_Test, host_that_answers_at_once_and_one_that_queues_are_told_the_same) {
    std::mt19937 random(13);
    auto& file = scene.Add_File("x", 30);
    for (int i = 0; i < 30; ++i) {
        const auto any = [&] { return file.frames[random() % 30U]; };
        auto& object = Add_Object(any(), {any(), any()});
        if (i % 2 == 0) {
            Select(object);
        }
    }
    Create();
    std::vector<std::uint16_t> marks;
    for (int i = 0; i < nb; ++i) {
        marks.push_back(random() % 2U == 0 ? 2 : 0);
    }
    std::vector<Calls> calls;
    for (int how = 0; how < 3; ++how) {
        for (std::size_t i = 0; i < scene.objects.size(); ++i) {
            scene.objects[i].Flag_Set_Off(0xFFFF, GROUP, MASK);
            if (i % 2 == 0) {
                Select(scene.objects[i]);
            }
        }
        for (int i = 0; i < nb; ++i) {
            list_pt[i].state = marks[static_cast<std::size_t>(i)];
        }
        int updates = 0;
        host.on_update = [&](unsigned __int64 flags) {
            EXPECT_EQ(flags, 0x102U);
            ++updates;
            host.Listen(false);
            if (how == 1) {
                Read();
                DB_List_Set_State(nb, list_pt);
            } else if (how == 2) {
                Create();  // even the rows are others
            }
            host.Listen(true);
        };
        calls.push_back(Write());
        EXPECT_GT(updates, 5);
    }
    EXPECT_EQ(calls[1], calls[0]);
    EXPECT_EQ(calls[2], calls[0]);
    EXPECT_EQ(Iterator_Open_Nb(), 0);
}

// ---------------- against comparing every object with every row

const Quorel_2D_Frame* Frame_Of(const DB_List& record) {
    return static_cast<const File_Record*>(record.object)->frame[record.index];
}

void Read_Plainly(int nb, DB_List* list_pt) {
    for (int i = 0; i < nb; ++i) {
        list_pt[i].state &= static_cast<std::uint16_t>(~2);
    }
    const unsigned short handle = Iterator_Init("Tool_DB_File::List_Select_From_DB", nullptr);
    while (Quorel_2D* const object = Iterator_Class_2D(handle, 12287, All_Windows(), 0)) {
        for (int i = 0; i < nb; ++i) {
            if (list_pt[i].level != 2) {
                continue;
            }
            bool matches = object->frame == Frame_Of(list_pt[i]);
            for (int k = 0; k < object->frame_more_nb; ++k) {
                matches = matches || object->frame_more[k] == Frame_Of(list_pt[i]);
            }
            if (matches && Frame_Of(list_pt[i]) != nullptr && object->Flag_Get_Bit(SELECTED, GROUP, MASK) != 0) {
                list_pt[i].state |= 2;
            }
        }
    }
    Iterator_End(handle);
}

void Write_Plainly(int nb, DB_List* list_pt, Quorel_Window* window) {
    const unsigned short handle = Iterator_Init("Tool_DB_File::List_Select_To_DB", nullptr);
    while (Quorel_2D* const object = Iterator_Class_2D(handle, 12287, All_Windows(), 0)) {
        const bool selected = object->Flag_Get_Bit(SELECTED, GROUP, MASK) != 0;
        for (int i = 0; i < nb; ++i) {
            if (list_pt[i].level != 2 || Frame_Of(list_pt[i]) == nullptr) {
                continue;
            }
            for (int k = -1; k < object->frame_more_nb; ++k) {
                if ((k < 0 ? object->frame : object->frame_more[k]) != Frame_Of(list_pt[i])) {
                    continue;
                }
                const bool checked = (list_pt[i].state & 2) != 0;
                if (checked && !selected) {
                    object->Flag_Set_On(SELECTED, GROUP, MASK);
                    Fct_Update(0x102, All_Windows(), object, nullptr);
                    Fct_Redraw(8, window, object, nullptr);
                } else if (!checked && selected) {
                    object->Flag_Set_Off(SELECTED, GROUP, MASK);
                    Fct_Update(0x102, All_Windows(), nullptr, nullptr);
                    Fct_Redraw(0x3FFC, All_Windows(), nullptr, nullptr);
                }
            }
        }
    }
    Iterator_End(handle);
}

TEST_F(Tool_DB_File_Test, random_scenes_make_the_calls_of_comparing_every_object_with_every_row) {
    std::mt19937 random(17);
    const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    std::vector<Quorel_2D_Frame*> pool{nullptr, nullptr};
    for (int i = 0; i < 80; ++i) {
        pool.push_back(&scene.Add_Frame());
    }
    const auto any = [&] { return pool[below(pool.size())]; };
    for (int i = 0; i < 15; ++i) {
        std::vector<Quorel_2D_Frame*> frames(below(8));
        for (auto& frame : frames) {
            frame = any();
        }
        scene.Add_File(below(2) == 0 ? "a\\x" : "b\\x", frames);
    }
    for (int i = 0; i < 60; ++i) {
        std::vector<Quorel_2D_Frame*> more(below(2) == 0 ? 0 : below(6));
        for (auto& frame : more) {
            frame = any();
        }
        Add_Object(any(), more);
    }
    Create();
    host.Take();
    std::vector<bool> selected(scene.objects.size());
    std::vector<DB_List> rows(list_pt, list_pt + nb);
    const auto set_up = [&] {
        host.Listen(false);
        for (std::size_t i = 0; i < selected.size(); ++i) {
            scene.objects[i].Flag_Set_Off(0xFFFF, GROUP, MASK);
            if (selected[i]) {
                Select(scene.objects[i]);
            }
        }
        host.Listen(true);
        std::copy(rows.begin(), rows.end(), list_pt);
    };
    const auto states = [&] {
        std::vector<std::uint16_t> all;
        for (int i = 0; i < nb; ++i) {
            all.push_back(list_pt[i].state);
        }
        return all;
    };
    for (int round = 0; round < 60; ++round) {
        for (std::size_t i = 0; i < selected.size(); ++i) {
            selected[i] = below(2) == 0;
        }
        for (DB_List& row : rows) {
            row.state = static_cast<std::uint16_t>(below(0x20));
        }
        set_up();
        Read_Plainly(nb, list_pt);
        const Calls read = host.Take();
        const auto read_states = states();
        set_up();
        Read();
        ASSERT_EQ(host.Take(), read) << round;
        ASSERT_EQ(states(), read_states) << round;

        set_up();
        Write_Plainly(nb, list_pt, &scene.window);
        const Calls written = host.Take();
        set_up();
        ASSERT_EQ(Write(), written) << round;
    }
}

}  // namespace
