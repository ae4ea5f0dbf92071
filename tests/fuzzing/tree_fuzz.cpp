// libFuzzer: trees of any shape, also with links that no view makes: derivation, numbering, walking, flipping a range.
#include "database/tree_rows.h"
#include "tests/fuzzing/input_bytes.h"

namespace {

constexpr int RECORDS_MOST = 300;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input_Bytes input(data, size);
    int nb = 0;
    DB_List* list_pt = nullptr;
    const int wanted = input.Below(RECORDS_MOST);
    for (int at = 0; at < wanted; ++at) {
        DB_List* const record = DB_List_Append(&nb, &list_pt, {"fuzz", 0});
        Require(record != nullptr);
        record->flag = static_cast<std::uint16_t>(input.Take<std::uint8_t>());
        record->state = static_cast<std::uint16_t>(input.Take<std::uint8_t>());
        record->level = static_cast<std::uint16_t>(input.Take<std::uint8_t>());
        record->desc_nb = static_cast<std::uint16_t>(input.Below(RECORDS_MOST));
        record->child_nb = record->desc_nb;
        Require(DB_List_Text_Copy(&record->title, input.Text(20).c_str(), "title", {"fuzz", 0}));
    }
    for (int step = 0; step < 10; ++step) {
        DB_List_Set_State(nb, list_pt);
        const int shown = Tree_Rows_Number(nb, list_pt);
        Require(shown >= 0 && shown <= nb);
        int rows = 0;
        for (Tree_Walk walk(nb, list_pt); !walk.At_End(); walk.Next()) {
            Require(list_pt[walk.Record()].row == walk.Row());
            Require(Tree_Row_Find(nb, list_pt, walk.Row()) == walk.Record());
            ++rows;
        }
        Require(rows == shown);
        Tree_Range_Flip(nb, list_pt, input.Take<std::int16_t>(), input.Take<std::int16_t>());
        if (nb > 0) {
            list_pt[input.Below(nb)].flag ^= DB_FLAG_EXPANDED;
        }
    }
    DB_List_Array_Free(&nb, &list_pt);
    Require(nb == 0 && list_pt == nullptr);
    return 0;
}
