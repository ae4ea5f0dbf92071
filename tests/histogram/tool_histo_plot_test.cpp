// The enlarged window's plot as it comes out on the screen.
#include "base/gdi_handles.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "histogram/histo_colors.h"
#include "histogram/plot_pixels.h"
#include "tests/histogram/plot_stage.h"
#include "tests/support/import_hook.h"

namespace {

constexpr std::uint32_t GROUND = 0x202226;
constexpr std::uint32_t YELLOW = 0xFFFF00;
constexpr std::uint32_t MAGENTA = 0xFF00FF;
constexpr std::uint32_t FIT_SUM = 0x00A0FF;
constexpr std::uint32_t DERIVATIVE = 0xD8D8D8;

using Pixels = std::vector<std::uint32_t>;

/** The plot area's pixels, rows from the bottom. */
Pixels Area_Of(const Plot_Stage& plot) {
    const Pixels all = plot.Read();
    Pixels area;
    for (int row = 0; row < plot.scene.area.height; ++row) {
        for (int column = 0; column < plot.scene.area.width; ++column) {
            area.push_back(all[plot.At(column, row)]);
        }
    }
    return area;
}

std::set<std::uint32_t> Colors_Of(const Pixels& pixels) {
    return {pixels.begin(), pixels.end()};
}

std::size_t Differences(const Pixels& a, const Pixels& b) {
    EXPECT_EQ(a.size(), b.size());
    std::size_t nb = 0;
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
        nb += a[i] != b[i] ? 1U : 0U;
    }
    return nb;
}

std::vector<std::uint32_t> Noise(int nb, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::uint32_t> counts(static_cast<std::size_t>(nb));
    for (auto& count : counts) {
        count = static_cast<std::uint32_t>(random() % 1000);
    }
    return counts;
}

std::vector<std::uint32_t> Flat(int nb, std::uint32_t value) {
    return std::vector<std::uint32_t>(static_cast<std::size_t>(nb), value);
}

/** True when the pixels of a band above the counts are its half-tone: every other one black, as on a chessboard. */
bool Is_Half_Tone(const Pixels& area, int width, int column, int row, std::uint32_t color) {
    const auto at = [&](int dx, int dy) { return area[static_cast<std::size_t>((row + dy) * width + column + dx)]; };
    const std::uint32_t here = at(0, 0);
    const std::uint32_t other = at(0, -1);
    return (here == color && other == 0) || (here == 0 && other == color);
}

/** One grey level per column and one count per row: bin k lies on columns around k. */
void Unit_View(Plot_Stage& plot) {
    plot.scene.x = {0.0F, static_cast<float>(plot.scene.area.width)};
    plot.scene.y = {-10.0F, static_cast<float>(plot.scene.area.height) - 10.0F};
}

/** The same curve by the window system: a line along every bin. */
Pixels Drawn_By_Gdi(const Plot_Stage& plot) {
    const Pixel_Rectangle& area = plot.scene.area;
    const Histo_Record& record = *plot.panel.data->record;
    const Plot_Frame frame = plot.scene.Frame();
    const Plot_Grid grid{record.nb_bins, static_cast<double>(record.origin), static_cast<double>(record.bin_width)};
    const Dib_Picture picture(nullptr, area.width, area.height);
    std::fill(picture.Pixels(), picture.Pixels() + area.width * area.height, GROUND);
    const Gdi_Pen pen(::CreatePen(PS_SOLID, 1, HISTO_COLOR_ALL));
    const Selected_Object selected(picture.Get_DC(), pen.Get());
    const auto y_of = [&](double count) { return area.height - 1 - frame.Row(count); };
    ::MoveToEx(picture.Get_DC(), frame.Column(grid.Edge(0)), y_of(0.0), nullptr);
    for (int bin = 0; bin < record.nb_bins; ++bin) {
        ::LineTo(picture.Get_DC(), frame.Column(grid.Edge(bin)), y_of(record.counts[bin]));
        ::LineTo(picture.Get_DC(), frame.Column(grid.Edge(bin + 1)), y_of(record.counts[bin]));
    }
    // A line leaves its last pixel out.
    ::LineTo(picture.Get_DC(), frame.Column(grid.Edge(record.nb_bins)), y_of(0.0) + 1);
    Dib_Picture::Flush();
    Pixels rows;
    for (int row = 0; row < area.height; ++row) {
        const std::uint32_t* line = picture.Pixels() + (area.height - 1 - row) * area.width;
        for (int column = 0; column < area.width; ++column) {
            rows.push_back(line[column] & 0xFFFFFF);
        }
    }
    return rows;
}

/** Texts that go through TextOutA. */
std::vector<std::string>* texts_seen = nullptr;
BOOL(WINAPI* text_out)(HDC, int, int, LPCSTR, int) = nullptr;
BOOL WINAPI Text_Out(HDC dc, int x, int y, LPCSTR text, int length) {
    if (texts_seen != nullptr) {
        texts_seen->emplace_back(text, static_cast<std::size_t>(length));
    }
    return text_out(dc, x, y, text, length);
}

/** Texts that go through DrawTextA: notes in place of curves. */
int(WINAPI* draw_text)(HDC, LPCSTR, int, LPRECT, UINT) = nullptr;
int WINAPI Draw_Text(HDC dc, LPCSTR text, int length, LPRECT place, UINT format) {
    if (texts_seen != nullptr) {
        texts_seen->emplace_back(text);
    }
    return draw_text(dc, text, length, place, format);
}

/** The texts of one drawing that go through `stand_in`, which notes them and calls `original`. */
template <class Function>
std::vector<std::string> Texts_Drawn(Plot_Stage& plot, const char* module, const char* name, Function* stand_in,
                                     Function*& original) {
    std::vector<std::string> texts;
    const Import_Hook hook("", module, name, reinterpret_cast<void*>(stand_in));
    EXPECT_TRUE(hook.Is_Set());
    original = reinterpret_cast<Function*>(hook.Original());
    texts_seen = &texts;
    EXPECT_EQ(plot.Draw(), 1);
    texts_seen = nullptr;
    return texts;
}

std::vector<std::string> Labels_Drawn(Plot_Stage& plot) {
    return Texts_Drawn(plot, "gdi32.dll", "TextOutA", &Text_Out, text_out);
}

std::vector<std::string> Notes_Drawn(Plot_Stage& plot) {
    return Texts_Drawn(plot, "user32.dll", "DrawTextA", &Draw_Text, draw_text);
}

}  // namespace

TEST(Tool_Histo_Plot_Test, without_counts_nothing_is_plotted) {
    Plot_Stage plot;
    plot.panel.data->Record_Free();
    plot.stage.Wipe();
    const Pixels before = plot.Read();
    EXPECT_EQ(Histo_Plot_Draw(plot.panel, plot.scene), 0);
    EXPECT_EQ(Histo_Plot_Cursor(plot.panel, plot.scene), 0);
    plot.Counts_Give({}, Flat(5, 3));
    plot.panel.data->Record_Empty();
    EXPECT_EQ(Histo_Plot_Draw(plot.panel, plot.scene), 0);
    EXPECT_EQ(Histo_Plot_Cursor(plot.panel, plot.scene), 0);
    EXPECT_EQ(plot.Read(), before);
}

TEST(Tool_Histo_Plot_Test, same_picture_as_the_window_system_drawing_every_bin) {
    std::mt19937 random(11);
    const auto real = [&](float least, float most) {
        return std::uniform_real_distribution<float>(least, most)(random);
    };
    for (unsigned round = 0; round < 24; ++round) {
        Plot_Stage plot({300 + static_cast<int>(random() % 500), 200 + static_cast<int>(random() % 300), 13, 0});
        const int nb = round % 3 == 0 ? 5000 : round % 3 == 1 ? 256 : 7;
        plot.Counts_Give({-20.0F, 0.7F}, Noise(nb, round));
        if (round >= 3) {
            const Blow_Range x = plot.scene.x;
            const float middle = real(x.start, x.end);
            const float reach = (x.end - x.start) * std::pow(10.0F, real(-2.0F, 0.0F));
            plot.scene.x = {middle - reach, middle + reach};
            plot.scene.y.start = real(-100.0F, 500.0F);
            plot.scene.y.end = plot.scene.y.start + real(10.0F, 900.0F);
        }
        ASSERT_EQ(plot.Draw(), 1);
        const Pixels drawn = Drawn_By_Gdi(plot);
        if (Colors_Of(drawn).size() == 1) {
            continue;  // a view beside the counts: there a note stands
        }
        ASSERT_EQ(Differences(Area_Of(plot), drawn), 0U) << "round " << round;
    }
}

TEST(Tool_Histo_Plot_Test, curves_have_the_colors_of_their_components) {
    Plot_Stage plot;
    Scene_Object& colored = plot.host.Add_Color({0.0F, 1.0F}, Noise(50, 1));
    plot.panel.data->Record_Free();
    auto* record = new Histo_Record(colored.record);
    for (auto member : {&Histo_Record::counts, &Histo_Record::counts_red, &Histo_Record::counts_green,
                        &Histo_Record::counts_blue, &Histo_Record::counts_component0}) {
        auto* copy = new std::uint32_t[50];
        std::copy(record->*member, record->*member + 50, copy);
        record->*member = copy;
    }
    record->max_count = 5000;
    plot.panel.data->record = record;
    plot.Full_View();
    plot.scene.y = {-100.0F, 6000.0F};
    Pixels by_component[5];
    for (unsigned char component = 0; component <= 4; ++component) {
        plot.panel.color_component = component;
        plot.Draw();
        by_component[component] = Area_Of(plot);
        const auto colors = Colors_Of(by_component[component]);
        const bool split = component >= 1 && component <= 3;
        EXPECT_EQ(colors.count(YELLOW), split ? 0U : 1U) << int{component};
        EXPECT_EQ(colors.count(0xFF0000), split ? 1U : 0U) << int{component};
        EXPECT_EQ(colors.count(0x00FF00), split ? 1U : 0U) << int{component};
        EXPECT_EQ(colors.count(0x0000FF), split ? 1U : 0U) << int{component};
    }
    EXPECT_EQ(by_component[1], by_component[3]);
    // The fourth array is five times `counts`.
    EXPECT_NE(by_component[0], by_component[4]);
}

TEST(Tool_Histo_Plot_Test, curves_of_the_analysis_are_shown_by_the_trace_level) {
    Plot_Stage plot;
    plot.Counts_Give({}, Flat(40, 100));
    Histo_Data& data = *plot.panel.data;
    data.curve_nb = 40;
    data.fit_sum = new float[40];
    data.derivative = new float[40];
    for (int bin = 0; bin < 40; ++bin) {
        data.fit_sum[bin] = 50.0F;
        data.derivative[bin] = bin < 20 ? 5.0F : -5.0F;
    }
    plot.Draw();
    EXPECT_EQ(Colors_Of(Area_Of(plot)), (std::set<std::uint32_t>{GROUND, YELLOW}));
    data.filtered = new double[40];
    std::fill(data.filtered, data.filtered + 40, 80.0);
    plot.Draw();
    EXPECT_EQ(Colors_Of(Area_Of(plot)), (std::set<std::uint32_t>{GROUND, YELLOW, MAGENTA}));
    Flag_Trace = 1;
    plot.Draw();
    Flag_Trace = 0;
    EXPECT_EQ(Colors_Of(Area_Of(plot)), (std::set<std::uint32_t>{GROUND, YELLOW, MAGENTA, FIT_SUM, DERIVATIVE}));
}

TEST(Tool_Histo_Plot_Test, range_ends_are_rounded_unlike_in_the_panel) {
    Plot_Stage plot;
    plot.Counts_Give({}, Flat(200, 1));
    Unit_View(plot);
    plot.host.Tags(1);
    plot.host.Tag_Color(0, 0, 200, 0);
    plot.Range_Give(0, 10.5F, 20.4F);
    plot.Range_Give(0, 49.6F, 60.6F);
    plot.scene.tag = true;
    plot.Draw();
    const Pixels area = Area_Of(plot);
    const int top = plot.scene.area.height - 1;
    std::vector<int> shaded;
    for (int column = 0; column < 100; ++column) {
        const std::uint32_t pixel = area[static_cast<std::size_t>(top * plot.scene.area.width + column)];
        if (pixel != GROUND) {
            EXPECT_TRUE(Is_Half_Tone(area, plot.scene.area.width, column, top, 0x00C800)) << column;
            shaded.push_back(column);
        }
    }
    std::vector<int> wanted;
    for (int column = 11; column <= 20; ++column) {
        wanted.push_back(column);
    }
    for (int column = 50; column <= 61; ++column) {
        wanted.push_back(column);
    }
    EXPECT_EQ(shaded, wanted);
    plot.scene.tag = false;
    plot.Draw();
    EXPECT_EQ(Colors_Of(Area_Of(plot)), (std::set<std::uint32_t>{GROUND, YELLOW}));
}

TEST(Tool_Histo_Plot_Test, range_ends_below_0_are_cut_towards_0_once_rounded) {
    Plot_Stage plot;
    plot.Counts_Give({-20.0F, 1.0F}, Flat(200, 1));
    Unit_View(plot);
    plot.scene.x.start -= 20.0F;
    plot.scene.x.end -= 20.0F;
    plot.host.Tags(1);
    plot.host.Tag_Color(0, 0, 200, 0);
    plot.Range_Give(0, -10.6F, -0.7F);  // -10.1 and -0.2: -10 and 0
    plot.scene.tag = true;
    plot.Draw();
    const Pixels area = Area_Of(plot);
    const int top = plot.scene.area.height - 1;
    std::vector<int> shaded;
    for (int column = 0; column < 100; ++column) {
        if (area[static_cast<std::size_t>(top * plot.scene.area.width + column)] != GROUND) {
            shaded.push_back(column - 20);
        }
    }
    EXPECT_EQ(shaded, (std::vector<int>{-10, -9, -8, -7, -6, -5, -4, -3, -2, -1, 0}));
}

TEST(Tool_Histo_Plot_Test, bands_are_clipped_to_the_plot_area_and_later_ones_hide_earlier_ones) {
    Plot_Stage plot;
    plot.Counts_Give({}, Flat(2000, 1));
    Unit_View(plot);
    plot.scene.x = {500.5F, 900.5F};
    plot.Draw();
    const Pixels plain = plot.Read();
    plot.host.Tags(2);
    plot.host.Tag_Color(0, 200, 0, 0);
    plot.host.Tag_Color(1, 0, 0, 200);
    plot.Range_Give(0, -100000.0F, 100000.0F);
    plot.Range_Give(1, 700.0F, 1e30F);
    plot.Range_Give(1, 800.0F, 750.0F);  // turned inside out: nothing
    plot.Range_Give(0, 20.0F, 30.0F);    // not in view
    plot.scene.tag = true;
    plot.Draw();
    const Pixels banded = plot.Read();
    std::set<std::size_t> inside;
    for (int row = 0; row < plot.scene.area.height; ++row) {
        for (int column = 0; column < plot.scene.area.width; ++column) {
            inside.insert(plot.At(column, row));
        }
    }
    for (std::size_t i = 0; i < plain.size(); ++i) {
        ASSERT_TRUE(inside.count(i) != 0 || plain[i] == banded[i]) << "outside the plot area " << i;
    }
    const int top = plot.scene.area.height - 1;
    const Pixels area = Area_Of(plot);
    const int width = plot.scene.area.width;
    EXPECT_TRUE(Is_Half_Tone(area, width, 0, top, 0xC80000)) << "red at the left";
    EXPECT_TRUE(Is_Half_Tone(area, width, width - 1, top, 0x0000C8)) << "blue at the right";
}

TEST(Tool_Histo_Plot_Test, a_band_out_of_view_has_no_pixel) {
    Plot_Stage plot;
    plot.Counts_Give({}, Flat(2000, 1));
    Unit_View(plot);
    plot.scene.x = {500.5F, 900.5F};
    plot.Draw();
    const Pixels plain = Area_Of(plot);
    plot.host.Tags(1);
    plot.host.Tag_Color(0, 200, 0, 0);
    plot.scene.tag = true;
    for (const auto& [least, most] : {std::pair{20.0F, 30.0F}, {0.0F, 499.0F}, {950.0F, 1999.0F}}) {
        plot.panel.range_nb = 0;
        plot.Range_Give(0, least, most);
        plot.Draw();
        EXPECT_EQ(Area_Of(plot), plain) << least << " to " << most;
    }
    plot.panel.range_nb = 0;
    plot.Range_Give(0, 0.0F, 500.0F);
    plot.Draw();
    EXPECT_NE(Area_Of(plot), plain) << "its last bin is in view";
}

TEST(Tool_Histo_Plot_Test, a_band_is_its_color_under_the_counts_and_a_half_tone_above) {
    Plot_Stage plot;
    plot.Counts_Give({}, Noise(300, 8));
    plot.scene.x = {0.0F, static_cast<float>(plot.scene.area.width)};
    plot.host.Tags(1);
    plot.host.Tag_Color(0, 200, 100, 30);
    plot.Draw();
    const Pixels plain = Area_Of(plot);
    plot.Range_Give(0, 40.0F, 90.0F);
    plot.scene.tag = true;
    plot.Draw();
    const Pixels area = Area_Of(plot);
    constexpr std::uint32_t color = 0xC8641E;
    const int width = plot.scene.area.width;
    const int height = plot.scene.area.height;
    const Plot_Frame frame{width,
                           height,
                           0.0,
                           static_cast<double>(width),
                           static_cast<double>(plot.scene.y.start),
                           static_cast<double>(plot.scene.y.end)};
    const int base = frame.Row(0.0);
    for (int column = 0; column < width; ++column) {
        const bool banded = column >= 40 && column <= 90;
        // The curve's highest pixel in the column ends what is under the counts.
        int highest = -1;
        for (int row = 0; row < height; ++row) {
            highest = area[static_cast<std::size_t>(row * width + column)] == YELLOW ? row : highest;
        }
        for (int row = 0; row < height; ++row) {
            const auto at = static_cast<std::size_t>(row * width + column);
            if (area[at] == YELLOW || !banded) {
                ASSERT_EQ(area[at], plain[at]) << column << " " << row;
            } else if (row >= base && row < highest) {
                ASSERT_EQ(area[at], color) << column << " " << row;
            } else {
                ASSERT_EQ(area[at], (column + row) % 2 == 0 ? color : 0U) << column << " " << row;
            }
        }
    }
}

TEST(Tool_Histo_Plot_Test, a_tag_without_color_is_grey) {
    Plot_Stage plot;
    plot.Counts_Give({}, Flat(50, 1));
    plot.host.Tags(1);
    plot.Range_Give(0, 0.0F, 60.0F);
    plot.scene.tag = true;
    plot.Draw();
    const int width = plot.scene.area.width;
    EXPECT_TRUE(Is_Half_Tone(Area_Of(plot), width, width / 2, plot.scene.area.height - 2, 0x808080));
}

/** A pixel of the plot area under the first peak of the test below. */
static std::uint32_t Below_Peak(const Plot_Stage& plot, const Pixels& area) {
    const Plot_Frame frame = plot.scene.Frame();
    return area[static_cast<std::size_t>(frame.Row(100.0) * frame.width + frame.Column(50.5))];
}

TEST(Tool_Histo_Plot_Test, peaks_show_by_their_selector) {
    Plot_Stage plot;
    plot.Counts_Give({}, Flat(200, 300));
    plot.Peak_Give(50, 250, 10);
    plot.Peak_Give(70, 200, 10);
    plot.Draw();
    const auto off = Colors_Of(Area_Of(plot));
    EXPECT_EQ(off, (std::set<std::uint32_t>{GROUND, YELLOW}));
    plot.scene.peak = HISTO_PEAK_COMPOSITE;
    plot.Draw();
    const Pixels composite = Area_Of(plot);
    plot.scene.peak = HISTO_PEAK_INDIVIDUAL;
    plot.Draw();
    const Pixels individual = Area_Of(plot);
    EXPECT_EQ(Colors_Of(composite).count(0x4FC3F7), 1U);
    EXPECT_EQ(Colors_Of(composite).count(0xFF8A65), 0U) << "one color for the sum";
    EXPECT_EQ(Below_Peak(plot, composite), GROUND) << "the sum is an outline";
    EXPECT_NE(Below_Peak(plot, individual), GROUND) << "single peaks are filled";
    EXPECT_EQ(Colors_Of(individual).count(0x4FC3F7), 1U);
    EXPECT_EQ(Colors_Of(individual).count(0xFF8A65), 1U);
    // Between the peaks the sum stands higher than each of them.
    const auto top_of = [&](const Pixels& area, int column) {
        int top = 0;
        for (int row = 0; row < plot.scene.area.height; ++row) {
            const std::uint32_t pixel = area[static_cast<std::size_t>(row * plot.scene.area.width + column)];
            top = pixel == 0x4FC3F7 || pixel == 0xFF8A65 ? row : top;
        }
        return top;
    };
    const Plot_Frame frame = plot.scene.Frame();
    const int middle = frame.Column(60.5);
    EXPECT_NEAR(top_of(composite, middle), frame.Row(225.0), 3);
    EXPECT_NEAR(top_of(individual, middle), frame.Row(125.0), 9) << "a steep flank";
}

TEST(Tool_Histo_Plot_Test, labels_name_the_centres_in_grey_levels) {
    Plot_Stage plot;
    plot.Counts_Give({-100.0F, 2.0F}, Flat(200, 300));
    plot.Peak_Give(20.2, 250, 3);
    plot.Peak_Give(120.4, 200, 3);
    EXPECT_TRUE(Labels_Drawn(plot).empty());
    const std::vector<std::string> wanted = {"-60", "141"};  // as the exported file has them
    plot.scene.peak = HISTO_PEAK_COMPOSITE;
    EXPECT_EQ(Labels_Drawn(plot), wanted);
    plot.scene.peak = HISTO_PEAK_INDIVIDUAL;
    EXPECT_EQ(Labels_Drawn(plot), wanted);
    plot.scene.x = {0.0F, 300.0F};
    EXPECT_EQ(Labels_Drawn(plot), std::vector<std::string>{"141"}) << "only what is in view";
}

TEST(Tool_Histo_Plot_Test, segments_are_bands_side_by_side_below_the_curve) {
    Plot_Stage plot;
    plot.Counts_Give({}, Flat(100, 100));
    plot.Segment_Give(20, 0, 49);
    plot.Segment_Give(70, 50, 99);
    plot.scene.peak = HISTO_PEAK_COMPOSITE;
    EXPECT_EQ(Labels_Drawn(plot), (std::vector<std::string>{"20", "70"}));
    const Pixels area = Area_Of(plot);
    const Plot_Frame frame = plot.scene.Frame();
    const auto at = [&](double level, double count) {
        return area[static_cast<std::size_t>(frame.Row(count) * frame.width + frame.Column(level))];
    };
    EXPECT_EQ(at(30.0, 50.0), at(49.0, 20.0));
    EXPECT_EQ(at(51.0, 50.0), at(80.0, 20.0));
    EXPECT_NE(at(30.0, 50.0), at(80.0, 50.0));
    EXPECT_NE(at(30.0, 50.0), GROUND);
    EXPECT_EQ(at(30.0, 105.0), at(30.0, 50.0)) << "from the bottom of the plot to its top";
    EXPECT_EQ(at(30.0, -5.0), at(30.0, 50.0));
    EXPECT_EQ(at(30.0, 100.0), YELLOW) << "the counts lie over them";
    EXPECT_EQ(Colors_Of(area).count(0x4FC3F7), 0U) << "no outline";
}

TEST(Tool_Histo_Plot_Test, peaks_older_than_the_record_and_without_curves_do_no_harm) {
    Plot_Stage plot;
    plot.Counts_Give({}, Flat(300, 100));
    plot.Filtered_Give();
    plot.Peak_Give(150, 90, 10);
    plot.Peak_Give(290, 90, 10);
    Histo_Peak& bare = plot.Peak_Give(295, 90, 1);
    delete[] bare.curve;
    bare.curve = nullptr;
    const std::vector<std::uint32_t> fewer = Flat(20, 50);
    Histo_Record_Give(plot.panel, {}, fewer);
    plot.Full_View();
    for (const int display : {HISTO_PEAK_COMPOSITE, HISTO_PEAK_INDIVIDUAL}) {
        plot.scene.peak = display;
        EXPECT_EQ(plot.Draw(), 1);
        EXPECT_TRUE(Labels_Drawn(plot).empty());
    }
    Histo_Record_Give(plot.panel, {}, Flat(3000, 50));
    plot.Full_View();
    EXPECT_EQ(Labels_Drawn(plot), (std::vector<std::string>{"150", "290"}));
}

TEST(Tool_Histo_Plot_Test, the_cursor_line_moves_and_leaves_nothing) {
    Plot_Stage plot;
    plot.Counts_Give({}, Noise(200, 4));
    Scene_Object& frame = plot.host.Add_Frame();
    plot.Draw();
    const Pixels clean = plot.Read();
    plot.host.Mouse_Over(frame, 60);
    EXPECT_EQ(Histo_Plot_Cursor(plot.panel, plot.scene), 1);
    const Pixels first = plot.Read();
    EXPECT_EQ(Differences(clean, first), static_cast<std::size_t>(plot.scene.area.height));
    plot.host.Mouse_Over(frame, 120);
    EXPECT_EQ(Histo_Plot_Cursor(plot.panel, plot.scene), 1);
    EXPECT_EQ(Differences(clean, plot.Read()), static_cast<std::size_t>(plot.scene.area.height));
    EXPECT_NE(plot.Read(), first);
    plot.host.Mouse_Away();
    EXPECT_EQ(Histo_Plot_Cursor(plot.panel, plot.scene), 0);
    EXPECT_EQ(plot.Read(), clean);
}

TEST(Tool_Histo_Plot_Test, the_cursor_line_stands_on_the_middle_of_its_bin_and_stays_inside_the_plot_area) {
    Plot_Stage plot;
    plot.Counts_Give({}, Flat(200, 100));
    Scene_Object& frame = plot.host.Add_Frame();
    plot.scene.x = {50.0F, 60.0F};
    plot.Draw();
    const Pixels clean = plot.Read();
    plot.host.Mouse_Over(frame, 54);
    Histo_Plot_Cursor(plot.panel, plot.scene);
    const int column = static_cast<int>(std::floor(4.5 / 10.0 * plot.scene.area.width + 0.5));
    const Pixels marked = plot.Read();
    for (const int row : {0, plot.scene.area.height / 3, plot.scene.area.height - 1}) {
        EXPECT_NE(clean[plot.At(column, row)], marked[plot.At(column, row)]);
    }
    for (const int level : {3, 49, 61, 199}) {
        plot.host.Mouse_Over(frame, level);
        EXPECT_EQ(Histo_Plot_Cursor(plot.panel, plot.scene), 0) << level;
        EXPECT_EQ(plot.Read(), clean) << level;
    }
}

TEST(Tool_Histo_Plot_Test, the_cursor_line_survives_a_redraw) {
    Plot_Stage plot;
    plot.Counts_Give({}, Noise(200, 4));
    Scene_Object& frame = plot.host.Add_Frame();
    plot.Draw();
    plot.host.Mouse_Over(frame, 60);
    Histo_Plot_Cursor(plot.panel, plot.scene);
    const Pixels marked = plot.Read();
    plot.Draw();
    Histo_Plot_Cursor(plot.panel, plot.scene);
    EXPECT_EQ(plot.Read(), marked);
    plot.host.Mouse_Away();
    Histo_Plot_Cursor(plot.panel, plot.scene);
    const Pixels clean = plot.Read();
    plot.Draw();
    EXPECT_EQ(plot.Read(), clean);
}

TEST(Tool_Histo_Plot_Test, the_zoom_rectangle_moves_inside_the_plot_area_and_leaves_nothing) {
    Plot_Stage plot({500, 320, 13, 40});
    plot.Counts_Give({}, Noise(200, 4));
    plot.Draw();
    const Pixels clean = plot.Read();
    std::mt19937 random(8);
    const auto pick = [&](int most) { return static_cast<int>(random() % static_cast<unsigned>(most)); };
    Local_Drag_Clear(plot.scene);
    EXPECT_EQ(plot.Read(), clean);
    for (int move = 0; move < 40; ++move) {
        Blow_Drag drag{pick(500), pick(500), pick(320), pick(320)};
        if (move % 4 == 0) {
            drag.x_end = drag.x_start + move % 3;
        }
        if (move % 5 == 0) {
            drag.y_end = drag.y_start + move % 4;
        }
        Local_Drag_Draw(plot.scene, drag);
        const Pixels marked = plot.Read();
        std::size_t inside = 0;
        for (int row = 0; row < plot.scene.area.height; ++row) {
            for (int column = 0; column < plot.scene.area.width; ++column) {
                const std::size_t at = plot.At(column, row);
                inside += clean[at] != marked[at] ? 1U : 0U;
            }
        }
        ASSERT_EQ(inside, Differences(clean, marked)) << "outside the plot area";
        if (move % 7 == 6) {
            Local_Drag_Clear(plot.scene);
            ASSERT_EQ(plot.Read(), clean);
        }
    }
    Local_Drag_Clear(plot.scene);
    EXPECT_EQ(plot.Read(), clean);
}

TEST(Tool_Histo_Plot_Test, the_zoom_rectangle_is_a_frame_that_stands_out_on_any_color) {
    Plot_Stage plot;
    plot.Counts_Give({}, Noise(200, 4));
    plot.host.Tags(1);  // grey, which inverting alone would leave grey
    plot.Range_Give(0, 0.0F, 200.0F);
    plot.scene.tag = true;
    plot.Draw();
    const Pixels clean = plot.Read();
    const Pixel_Rectangle& area = plot.scene.area;
    Local_Drag_Draw(plot.scene, {area.x + 20, area.x + 119, area.y + 80, area.y + 31});
    const Pixels marked = plot.Read();
    for (int row = 0; row < area.height; ++row) {
        for (int column = 0; column < area.width; ++column) {
            const bool in = column >= 20 && column <= 119 && row >= 31 && row <= 80;
            const bool core = column >= 21 && column <= 118 && row >= 32 && row <= 79;
            const std::size_t at = plot.At(column, row);
            ASSERT_EQ(clean[at] ^ marked[at], in && !core ? 0x808080U : 0U) << column << ", " << row;
        }
    }
}

TEST(Tool_Histo_Plot_Test, lines_grow_with_the_font) {
    std::vector<std::size_t> widths;
    for (const short font : std::initializer_list<short>{12, 18, 24, 40}) {
        Plot_Stage plot({640, 400, font, 0});
        plot.Counts_Give({}, Flat(200, 100));
        Scene_Object& frame = plot.host.Add_Frame();
        plot.Draw();
        const Pixels clean = plot.Read();
        plot.host.Mouse_Over(frame, 60);
        Histo_Plot_Cursor(plot.panel, plot.scene);
        widths.push_back(Differences(clean, plot.Read()) / static_cast<std::size_t>(plot.scene.area.height));
    }
    EXPECT_EQ(widths, (std::vector<std::size_t>{1, 1, 2, 3}));
}

TEST(Tool_Histo_Plot_Test, axes_stay_out_of_the_rows_of_the_controls) {
    constexpr int reserved = 105;
    Plot_Stage plot({300, 200, 20, reserved});
    plot.Counts_Give({}, Noise(200, 4));
    plot.Draw();
    const std::vector<std::uint32_t> pixels = plot.Read();
    const std::uint32_t ground = pixels[plot.stage.Index(10, 190)];
    int drawn = 0;
    for (int y = 200 - 1 - reserved; y < 200 - 4; ++y) {
        for (int x = 4; x < 300 - 4; ++x) {
            drawn += pixels[plot.stage.Index(x, y)] != ground ? 1 : 0;
        }
    }
    EXPECT_EQ(drawn, 0);
}

TEST(Tool_Histo_Plot_Test, large_fonts_leave_several_numbers_on_the_axes) {
    for (const short font : std::initializer_list<short>{13, 20, 26}) {
        Plot_Stage plot({800, 400, font, 80});
        plot.Counts_Give({}, std::vector<std::uint32_t>(500, 1000));
        plot.Draw();
        const std::vector<std::uint32_t> pixels = plot.Read();
        constexpr int beside_the_axis = -3;
        int ticks = 0;
        for (int row = 0; row < plot.scene.area.height; ++row) {
            ticks += pixels[plot.At(beside_the_axis, row)] != pixels[plot.At(beside_the_axis, -1)] ? 1 : 0;
        }
        EXPECT_GE(ticks, 4) << font;
    }
}

TEST(Tool_Histo_Plot_Test, a_view_beside_the_counts_says_so) {
    Plot_Stage plot;
    plot.Counts_Give({}, Flat(200, 100));
    EXPECT_TRUE(Notes_Drawn(plot).empty());
    const Histo_Plot_Scene whole = plot.scene;
    plot.scene.x = {300.0F, 400.0F};
    EXPECT_EQ(Notes_Drawn(plot), std::vector<std::string>{"No counts here: Reset Zoom shows all"});
    EXPECT_GT(Colors_Of(Area_Of(plot)).size(), 1U) << "the note can be seen";
    plot.scene = whole;
    plot.scene.y = {150.0F, 200.0F};
    plot.scene.x = {20.0F, 80.0F};
    EXPECT_EQ(Notes_Drawn(plot).size(), 1U) << "above them";
    plot.scene.y = {50.0F, 200.0F};
    EXPECT_TRUE(Notes_Drawn(plot).empty());
    plot.scene.x = {300.0F, 400.0F};
    EXPECT_EQ(Notes_Drawn(plot).size(), 1U);
    plot.Draw();
    plot.scene = whole;
    EXPECT_TRUE(Notes_Drawn(plot).empty()) << "gone with the next view";
}

TEST(Tool_Histo_Plot_Test, a_histogram_of_one_bin_says_what_it_holds) {
    Plot_Stage plot;
    plot.Counts_Give({-20.0F, 4.0F}, Flat(1, 4321));
    EXPECT_EQ(Notes_Drawn(plot), std::vector<std::string>{"4321 pixels in one bin, at grey level -18"});
    EXPECT_GT(Colors_Of(Area_Of(plot)).size(), 1U) << "the note can be seen";
    plot.Counts_Give({}, Flat(30, 0));
    EXPECT_EQ(Notes_Drawn(plot), std::vector<std::string>{"No range of grey levels and counts to plot"});
}

TEST(Tool_Histo_Plot_Test, nothing_to_plot_on_is_no_harm) {
    Plot_Stage plot;
    plot.Counts_Give({}, Flat(200, 100));
    Scene_Object& frame = plot.host.Add_Frame();
    plot.host.Mouse_Over(frame, 60);
    const auto all = [&] {
        EXPECT_EQ(plot.Draw(), 1);
        EXPECT_EQ(Histo_Plot_Cursor(plot.panel, plot.scene), 0);
        Local_Drag_Draw(plot.scene, {10, 200, 10, 200});
        Local_Drag_Clear(plot.scene);
    };
    const Histo_Plot_Scene good = plot.scene;
    plot.scene.x = {5.0F, 5.0F};
    all();
    plot.scene.x = {NAN, 5.0F};
    all();
    plot.scene = good;
    plot.scene.y = {0.0F, INFINITY};
    all();
    plot.scene = good;
    plot.scene.area = {10, 10, 0, 50};
    all();
    plot.scene.area = {10, 10, -5, -5};
    all();
    plot.scene = good;
    plot.panel.data->record->bin_width = 0.0F;
    EXPECT_EQ(plot.Draw(), 1);
    plot.panel.data->record->nb_bins = 0;
    all();
    plot.scene.box.window = nullptr;
    EXPECT_EQ(Histo_Plot_Cursor(plot.panel, plot.scene), 0);
    Local_Drag_Draw(plot.scene, {10, 200, 10, 200});
    Local_Drag_Clear(plot.scene);
}

TEST(Tool_Histo_Plot_Test, every_device_object_is_given_back) {
    Plot_Stage plot;
    plot.Counts_Give({}, Noise(200, 4));
    plot.Filtered_Give();
    for (int peak = 0; peak < 9; ++peak) {
        plot.Peak_Give(peak * 20 + 10, 500, 4);
    }
    plot.Range_Give(0, 20.0F, 60.0F);
    plot.scene.tag = true;
    plot.scene.peak = HISTO_PEAK_INDIVIDUAL;
    Scene_Object& frame = plot.host.Add_Frame();
    Import_Counter counter("", "gdi32.dll");
    std::uint64_t fonts = 0;  // made by Kit_Widgets, deleted here
    for (int level = 10; level < 150; level += 20) {
        plot.host.Mouse_Over(frame, level);
        plot.Draw();
        ++fonts;
        Histo_Plot_Cursor(plot.panel, plot.scene);
        Local_Drag_Draw(plot.scene, {100, 100 + level, 90, 200});
        Local_Drag_Clear(plot.scene);
    }
    EXPECT_EQ(counter.Calls("CreateDIBSection"), 1U) << "redraws of one size share their memory";
    Histo_Plot_Picture_Free();
    const auto calls = [&](const char* function) { return counter.Calls(function); };
    EXPECT_EQ(calls("CreateSolidBrush") + calls("CreateDIBSection") + calls("CreatePen") + fonts, calls("DeleteObject"))
        << counter.Text();
    EXPECT_EQ(calls("CreateCompatibleDC"), calls("DeleteDC"));
    EXPECT_EQ(calls("SaveDC"), calls("RestoreDC"));
    EXPECT_GT(calls("CreateSolidBrush"), 20U);
    EXPECT_GT(calls("SaveDC"), 20U);
}

TEST(Tool_Histo_Plot_Test, the_number_of_calls_does_not_grow_with_the_bins) {
    std::vector<std::uint64_t> calls;
    for (const int nb : {500, 50000}) {
        Plot_Stage plot({900, 600, 13, 0});
        plot.Counts_Give({}, Noise(nb, 4));
        plot.Draw();
        Import_Counter counter("", "gdi32.dll");
        plot.Draw();
        calls.push_back(counter.Calls());
    }
    EXPECT_EQ(calls[0], calls[1]);
    EXPECT_GT(calls[0], 0U);
    EXPECT_LT(calls[0], 60U);
}
