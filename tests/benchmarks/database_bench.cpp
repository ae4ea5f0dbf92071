// The database views' promises of speed: the index of frames against comparing every object with every row, building
// that grows with the number of rows, and the pass over all check marks.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <string>
#include <vector>

#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "tests/benchmarks/ratio.h"
#include "tests/database/file_scene.h"

namespace {

constexpr int SELECTED = FLAG_SELECTED;
constexpr int GROUP = FLAG_GROUP_SELECTION;
constexpr int MASK = FLAG_MASK_SELECTION;
constexpr int FEW_ROWS = 6000;
constexpr int MANY_ROWS = 60000;
constexpr int FRAMES_PER_FILE = 100;
constexpr int BUILD_ROUNDS = 25;

struct Rows {
    int nb = 0;
    DB_List* list_pt = nullptr;
    Rows() = default;
    ~Rows() { DB_List_Array_Free(&nb, &list_pt); }
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;
};

/** One object for each frame; every third one selected, every third row checked: most disagree. */
class Selection_Bench {
  public:
    explicit Selection_Bench(int frame_nb) : view(2) {
        for (int i = 0; i < frame_nb; i += FRAMES_PER_FILE) {
            scene.Add_File("folder\\file", std::min(FRAMES_PER_FILE, frame_nb - i));
        }
        // Objects meet the frames in another order than the rows.
        for (int i = 0; i < frame_nb; ++i) {
            const auto frame = static_cast<std::size_t>(i) * 7919 % static_cast<std::size_t>(frame_nb);
            scene.Add_Object(&scene.frames[frame]);
        }
        view.List_Create_From_DB(&rows.nb, &rows.list_pt, 0, 0, nullptr);
        Reset();
    }
    void Reset() {
        for (std::size_t i = 0; i < scene.objects.size(); ++i) {
            scene.objects[i].Flag_Set_Off(SELECTED, GROUP, MASK);
            if (i % 3 == 0) {
                scene.objects[i].Flag_Set_On(SELECTED, GROUP, MASK);
            }
        }
        for (int i = 0; i < rows.nb; ++i) {
            rows.list_pt[i].state = i % 3 == 1 ? DB_STATE_CHECKED : DB_STATE_NONE;
        }
    }
    static const Quorel_2D_Frame* Frame_Of(const DB_List& record) {
        return static_cast<const File_Record*>(record.object)->frame[record.index];
    }
    /** Calls `operation(object, record)` for each object and each row of one of its frames. */
    template <class Before, class Operation>
    void Each_Match(Before before, Operation operation) {
        const unsigned short iterator = Iterator_Init("plain", nullptr);
        while (Quorel_2D* const object = Iterator_Class_2D(iterator, CLASS_MASK_2D, All_Windows(), 0)) {
            const bool selected = before(*object);
            for (int i = 0; i < rows.nb; ++i) {
                DB_List& record = rows.list_pt[i];
                if (record.level != 2) {
                    continue;
                }
                const Quorel_2D_Frame* const frame = Frame_Of(record);
                if (object->frame == frame) {
                    operation(*object, record, selected);
                }
                for (int k = 0; k < object->frame_more_nb; ++k) {
                    if (object->frame_more[k] == frame) {
                        operation(*object, record, selected);
                    }
                }
            }
        }
        Iterator_End(iterator);
    }
    void Read_Plainly() {
        for (int i = 0; i < rows.nb; ++i) {
            rows.list_pt[i].state = static_cast<std::uint16_t>(rows.list_pt[i].state & ~DB_STATE_CHECKED);
        }
        Each_Match([](Quorel_2D&) { return false; },
                   [](Quorel_2D& object, DB_List& record, bool) {
                       if (object.Flag_Get_Bit(SELECTED, GROUP, MASK) != 0) {
                           record.state |= DB_STATE_CHECKED;
                       }
                   });
    }
    void Write_Plainly() {
        Each_Match([](Quorel_2D& object) { return object.Flag_Get_Bit(SELECTED, GROUP, MASK) != 0; },
                   [this](Quorel_2D& object, DB_List& record, bool selected) {
                       const bool checked = (record.state & DB_STATE_CHECKED) != 0;
                       if (checked && !selected) {
                           object.Flag_Set_On(SELECTED, GROUP, MASK);
                           Fct_Update(UPDATE_SELECTION | UPDATE_LEVEL_2D, All_Windows(), &object, nullptr);
                           Fct_Redraw(8, &scene.window, &object, nullptr);
                       } else if (!checked && selected) {
                           object.Flag_Set_Off(SELECTED, GROUP, MASK);
                           Fct_Update(UPDATE_SELECTION | UPDATE_LEVEL_2D, All_Windows(), nullptr, nullptr);
                           Fct_Redraw(0x3FFC, All_Windows(), nullptr, nullptr);
                       }
                   });
    }
    void Read() { view.List_Select_From_DB(rows.nb, rows.list_pt); }
    void Write() { view.List_Select_To_DB(rows.nb, rows.list_pt); }

    File_Scene scene;
    Tool_DB_File view;
    Rows rows;
};

double Seconds(const std::chrono::steady_clock::time_point& start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

/** Times two ways in turn, each from the same start. */
template <class Reset, class Plain, class Ours>
Paired_Times Pair_From_Start(int rounds, Reset reset, Plain plain, Ours ours) {
    std::vector<double> plain_times;
    std::vector<double> our_times;
    for (int round = 0; round < rounds; ++round) {
        reset();
        auto start = std::chrono::steady_clock::now();
        plain();
        plain_times.push_back(Seconds(start));
        reset();
        start = std::chrono::steady_clock::now();
        ours();
        our_times.push_back(Seconds(start));
    }
    return {Median(plain_times), Median(our_times)};
}

void Bench_Selection(benchmark::State& state, int frame_nb, int rounds) {
    Selection_Bench bench(frame_nb);
    const auto reset = [&] { bench.Reset(); };
    Paired_Times read;
    Paired_Times write;
    for (auto _ : state) {
        read = Pair_From_Start(
            rounds, reset, [&] { bench.Read_Plainly(); }, [&] { bench.Read(); });
        write = Pair_From_Start(
            rounds, reset, [&] { bench.Write_Plainly(); }, [&] { bench.Write(); });
    }
    state.counters["read_plain_ms"] = read.plain * 1e3;
    state.counters["read_ms"] = read.ours * 1e3;
    state.counters["read_ratio"] = read.Ratio();
    state.counters["write_plain_ms"] = write.plain * 1e3;
    state.counters["write_ms"] = write.ours * 1e3;
    state.counters["write_ratio"] = write.Ratio();
}

constexpr int TIMES_AS_MANY = MANY_ROWS / FEW_ROWS;

/** Seconds that building one tree of MANY_ROWS takes, and TIMES_AS_MANY trees of FEW_ROWS: as long as each other when
 *  building is linear, so that interruptions fall upon both alike.
 *  @param publish shows the host's objects for so many rows to the view */
template <class Publish>
void Bench_Build(benchmark::State& state, Tool_DB_List& view, Publish publish) {
    const auto build = [&view](int trees) {
        std::vector<Rows> rows(static_cast<std::size_t>(trees));
        const auto start = std::chrono::steady_clock::now();
        for (Rows& tree : rows) {
            view.List_Create_From_DB(&tree.nb, &tree.list_pt, 0, 0, nullptr);
        }
        return Seconds(start);  // without freeing them
    };
    std::vector<double> few;
    std::vector<double> many;
    for (auto _ : state) {
        for (int round = 0; round < BUILD_ROUNDS; ++round) {
            publish(FEW_ROWS);
            few.push_back(build(TIMES_AS_MANY) / TIMES_AS_MANY);
            publish(MANY_ROWS);
            many.push_back(build(1));
        }
    }
    state.counters["ms_6000"] = Median(few) * 1e3;
    state.counters["ms_60000"] = Median(many) * 1e3;
    state.counters["growth"] = Median(many) / Median(few);
}

void Bench_Build_File(benchmark::State& state) {
    File_Scene scene;
    for (int i = 0; i < MANY_ROWS; i += FRAMES_PER_FILE) {
        scene.Add_File("folder\\file" + std::to_string(i), FRAMES_PER_FILE - 1);
    }
    Tool_DB_File view(2);
    Bench_Build(state, view, [](int row_nb) {
        Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, row_nb / FRAMES_PER_FILE);
    });
}

/** The memory of a row beside its texts is the difference to what the texts alone would take. */
void Bench_Build_Million(benchmark::State& state) {
    constexpr int million = 1000000;
    File_Scene scene;
    for (int i = 0; i < million; i += FRAMES_PER_FILE) {
        scene.Add_File("folder\\file" + std::to_string(i), FRAMES_PER_FILE - 1);
    }
    Tool_DB_File view(2);
    double least = 1e9;
    for (auto _ : state) {
        for (int round = 0; round < 5; ++round) {
            Rows rows;
            const auto start = std::chrono::steady_clock::now();
            view.List_Create_From_DB(&rows.nb, &rows.list_pt, 0, 0, nullptr);
            least = std::min(least, Seconds(start));
            if (round == 0) {
                double texts = 0.0;
                for (int i = 0; i < rows.nb; ++i) {
                    for (const char* text : {rows.list_pt[i].title, rows.list_pt[i].name}) {
                        texts +=
                            text != nullptr ? static_cast<double>(std::char_traits<char>::length(text)) + 1.0 : 0.0;
                    }
                }
                state.counters["text_bytes"] = texts / rows.nb;
                state.counters["row_bytes"] = static_cast<double>(sizeof(DB_List));
                state.counters["rows"] = rows.nb;
            }
        }
    }
    state.counters["build_ms"] = least * 1e3;
}

/** A tree of classes, twenty below each. */
std::deque<Quorel_2D> Classes_Make(int nb) {
    std::deque<Quorel_2D> objects(static_cast<std::size_t>(nb));
    for (std::size_t i = 1; i < objects.size(); ++i) {
        objects[i].Title_Set("a class");
        objects[(i - 1) / 20].Child_Add(&objects[i]);
    }
    return objects;
}

void Bench_Build_Class(benchmark::State& state) {
    std::deque<Quorel_2D> few = Classes_Make(FEW_ROWS);
    std::deque<Quorel_2D> many = Classes_Make(MANY_ROWS);
    Tool_DB_Class view(2);
    Bench_Build(state, view, [&](int row_nb) {
        Variable_Define_Pointer("$DB_2D_ROOT_PT", row_nb == FEW_ROWS ? &few[0] : &many[0]);
    });
    Variable_Undefine("$DB_2D_ROOT_PT");
    for (auto* objects : {&few, &many}) {
        while (!objects->empty()) {
            objects->pop_back();
        }
    }
}

void Bench_Set_State(benchmark::State& state) {
    File_Scene scene;
    for (int i = 0; i < MANY_ROWS; i += FRAMES_PER_FILE) {
        scene.Add_File("folder\\file" + std::to_string(i), FRAMES_PER_FILE - 1);
    }
    Tool_DB_File view(2);
    Rows rows;
    view.List_Create_From_DB(&rows.nb, &rows.list_pt, 0, 0, nullptr);
    for (int i = 0; i < rows.nb; i += 3) {
        rows.list_pt[i].state = DB_STATE_CHECKED;
    }
    for (auto _ : state) {
        DB_List_Set_State(rows.nb, rows.list_pt);
        benchmark::ClobberMemory();
    }
    state.counters["rows"] = rows.nb;
}

}  // namespace

BENCHMARK_CAPTURE(Bench_Selection, objects_and_rows_1000, 1000, 51)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Selection, objects_and_rows_10000, 10000, 3)->Iterations(1);
BENCHMARK(Bench_Build_File)->Iterations(1);
BENCHMARK(Bench_Build_Million)->Iterations(1);
BENCHMARK(Bench_Build_Class)->Iterations(1);
BENCHMARK(Bench_Set_State)->Unit(benchmark::kMillisecond);
