#include "base/drawing_dc.h"
#include "base/gdi_handles.h"

#include "histogram/tool_histo_paint.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "histogram/histo_colors.h"
#include "tests/histogram/histo_stage.h"

namespace {

constexpr std::uint32_t YELLOW = 0xFFFF00;  // pixels are 0x00RRGGBB
constexpr std::uint32_t RED = 0xFF0000;
constexpr std::uint32_t GREEN = 0x00FF00;
constexpr std::uint32_t BLUE = 0x0000FF;
constexpr std::uint32_t GREY = 0x808080;

/** The plot box's picture by the plain rules, pixel by pixel. */
class Picture {
  public:
    Picture(const Tool_Histo& painted_panel, std::vector<std::uint32_t> before)
        : pixels(std::move(before)), panel(painted_panel), record(*painted_panel.data->record) {
        const int edge = Histo_Stage::EDGE;
        for (int row = edge; row < Histo_Stage::BOX_HEIGHT - edge; ++row) {
            for (int x = edge; x < Histo_Stage::BOX_WIDTH - 36 - edge; ++x) {
                Put(Histo_Stage::LEFT + x, Histo_Stage::TOP + row, 0);
            }
        }
    }
    int Column(int bin) const {
        const float step = static_cast<float>(Histo_Stage::PLOT_WIDTH) / static_cast<float>(record.nb_bins);
        return Histo_Stage::PLOT_LEFT + static_cast<int>(static_cast<float>(bin) * step);
    }
    int Height(std::uint32_t count) const {
        if (record.max_count == 0) {
            return 0;
        }
        const double full = static_cast<double>(record.max_count) * static_cast<double>(panel.scale);
        return std::min(static_cast<int>(static_cast<double>(count) * Histo_Stage::PLOT_HEIGHT / full),
                        Histo_Stage::PLOT_HEIGHT);
    }
    /** @param parity which of the two checker phases: said by the device */
    void Band(int first, int last, std::uint32_t color, const std::uint32_t* counts, int parity) {
        for (int x = Column(first); x < Column(last + 1); ++x) {
            for (int row = 0; row < Histo_Stage::PLOT_HEIGHT; ++row) {
                const int y = Histo_Stage::PLOT_TOP + row;
                Put(x, y, ((x + y) & 1) == parity ? color : 0);
            }
        }
        for (int bin = first; bin <= last; ++bin) {
            for (int x = Column(bin); x < Column(bin + 1); ++x) {
                for (int up = 1; up <= Height(counts[bin]); ++up) {
                    Put(x, BASE - up, color);
                }
            }
        }
    }
    void Outline(const std::uint32_t* counts, std::uint32_t color) {
        int x = Column(0);
        int y = BASE - Height(counts[0]);
        const auto line_to = [&](int to_x, int to_y) {
            // Without its last pixel, as the device draws lines.
            while (x != to_x || y != to_y) {
                Put(x, y, color);
                x += (to_x > x) - (to_x < x);
                y += (to_y > y) - (to_y < y);
            }
        };
        for (int bin = 0; bin < record.nb_bins; ++bin) {
            line_to(Column(bin), BASE - Height(counts[bin]));
            line_to(Column(bin + 1), BASE - Height(counts[bin]));
        }
    }
    std::uint32_t At(int x, int row) const { return pixels[Histo_Stage::At(x, row)]; }

    std::vector<std::uint32_t> pixels;

  private:
    static constexpr int BASE = Histo_Stage::PLOT_TOP + Histo_Stage::PLOT_HEIGHT;

    void Put(int x, int row, std::uint32_t color) { pixels[Histo_Stage::At(x, row)] = color; }

    const Tool_Histo& panel;
    const Histo_Record& record;
};

std::vector<std::uint32_t> Hills(int n, unsigned seed = 5) {
    std::mt19937 random(seed);
    std::vector<std::uint32_t> counts;
    for (int bin = 0; bin < n; ++bin) {
        counts.push_back(static_cast<std::uint32_t>(random() % 1000));
    }
    return counts;
}

/** A brush of 2 x 2 pixels: two in the colour, two black. */
Gdi_Brush Checker_Brush(std::uint32_t color) {
    struct {
        BITMAPINFOHEADER header;
        std::array<std::uint32_t, 4> pixels;
    } dib = {};
    dib.header.biSize = sizeof dib.header;
    dib.header.biWidth = 2;
    dib.header.biHeight = 2;
    dib.header.biPlanes = 1;
    dib.header.biBitCount = 32;
    dib.pixels = {color, 0, 0, color};
    return Gdi_Brush(::CreateDIBPatternBrushPt(&dib, DIB_RGB_COLORS));
}

/** The panel's plot by the window system's own brushes and lines, bin by bin. @param band_color of a range */
void Gdi_Draw(const Tool_Histo& panel, Window_Axis axis, const Picture& places, std::uint32_t (*band_color)(int tag),
              const std::vector<std::pair<const std::uint32_t*, std::uint32_t>>& curves) {
    const Drawing_DC drawing(panel.window, "test");
    HDC dc = drawing.Get();
    if (axis == Window_Axis::Up) {
        ::SetMapMode(dc, MM_TEXT);
        ::SetWindowOrgEx(dc, 0, 0, nullptr);
        ::SetViewportOrgEx(dc, 0, 0, nullptr);
    }
    constexpr int base = Histo_Stage::PLOT_TOP + Histo_Stage::PLOT_HEIGHT;
    const Histo_Record& record = *panel.data->record;
    const auto color_ref = [](std::uint32_t pixel) { return RGB(pixel >> 16, pixel >> 8 & 0xFF, pixel & 0xFF); };
    const RECT ground = {Histo_Stage::PLOT_LEFT - 1, Histo_Stage::PLOT_TOP - 1,
                         Histo_Stage::PLOT_LEFT + Histo_Stage::PLOT_WIDTH + 1, base + 1};
    ::FillRect(dc, &ground, static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH)));
    const std::uint32_t* bars = Histo_Band_Counts(record, panel.color_component);
    for (int range = 0; range < panel.range_nb; ++range) {
        const int first = std::clamp(static_cast<int>(panel.range_min[range]), 0, record.nb_bins - 1);
        const int last = std::clamp(static_cast<int>(panel.range_max[range]), 0, record.nb_bins - 1);
        const std::uint32_t color = band_color(panel.range_tag[range]);
        const RECT all = {places.Column(first), Histo_Stage::PLOT_TOP, places.Column(last + 1), base};
        const Gdi_Brush checker = Checker_Brush(color);
        const Gdi_Brush solid(::CreateSolidBrush(color_ref(color)));
        if (first <= last) {
            ::FillRect(dc, &all, checker.Get());
        }
        for (int bin = first; bin <= last; ++bin) {
            const RECT bar = {places.Column(bin), base - places.Height(bars[bin]), places.Column(bin + 1), base};
            ::FillRect(dc, &bar, solid.Get());
        }
    }
    for (const auto& [counts, color] : curves) {
        std::vector<POINT> points;
        for (int bin = 0; bin < record.nb_bins; ++bin) {
            const int row = base - places.Height(counts[bin]);
            points.push_back({places.Column(bin), row});
            points.push_back({places.Column(bin + 1), row});
        }
        const Gdi_Pen pen(::CreatePen(PS_SOLID, 1, color_ref(color)));
        const Selected_Object selected(dc, pen.Get());
        ::Polyline(dc, points.data(), static_cast<int>(points.size()));
    }
}

class Histo_Plot : public testing::TestWithParam<Window_Axis> {
  protected:
    Histo_Plot() {
        stage.Lay_Out(panel);
        panel.Draw();
        empty = stage.Read();
    }
    /** Gives every array of a colour record. */
    void Color_Record(int nb_bins) {
        Histo_Record_Give(panel, {}, Hills(nb_bins));
        Histo_Record& record = *panel.data->record;
        record.flags = HISTO_COLOR;
        unsigned seed = 20;
        for (std::uint32_t** array :
             {&record.counts_red, &record.counts_green, &record.counts_blue, &record.counts_component0}) {
            const std::vector<std::uint32_t> counts = Hills(nb_bins, ++seed);
            *array = new std::uint32_t[counts.size()];
            std::copy(counts.begin(), counts.end(), *array);
        }
        record.max_count = 1000;
    }
    void Expect_Picture(const Picture& expected) const {
        const std::vector<std::uint32_t> now = stage.Read();
        int wrong = 0;
        for (int row = 0; row < Histo_Stage::HEIGHT; ++row) {
            for (int x = 0; x < Histo_Stage::WIDTH; ++x) {
                if (now[Histo_Stage::At(x, row)] != expected.At(x, row) && ++wrong <= 5) {
                    ADD_FAILURE() << "column " << x << " row " << row << std::hex << ": "
                                  << now[Histo_Stage::At(x, row)] << " instead of " << expected.At(x, row);
                }
            }
        }
        EXPECT_EQ(wrong, 0);
    }
    /** The phase of the checker as painted at the top left pixel of a plot column. */
    int Parity(int column, std::uint32_t color) const {
        const bool colored = stage.Read()[Histo_Stage::At(column, Histo_Stage::PLOT_TOP)] == color;
        return ((column + Histo_Stage::PLOT_TOP) & 1) == (colored ? 0 : 1) ? 0 : 1;
    }
    void Paint() { ASSERT_EQ(Histo_Paint(panel), 1); }
    /** The band of a TAG over the bins 5 .. 30 of 50. */
    void Expect_Band(int tag, std::uint32_t pixel) {
        SCOPED_TRACE(tag);
        panel.Set(1, tag, 5.0, 30.0);
        Paint();
        Picture expected(panel, empty);
        expected.Band(5, 30, pixel, panel.data->record->counts, Parity(expected.Column(5), pixel));
        expected.Outline(panel.data->record->counts, YELLOW);
        Expect_Picture(expected);
    }

    Histo_Scene scene;
    Histo_Stage stage{GetParam()};
    Tool_Histo panel;
    std::vector<std::uint32_t> empty;  ///< the window without a record
};

INSTANTIATE_TEST_SUITE_P(In, Histo_Plot, testing::Values(Window_Axis::Down, Window_Axis::Up),
                         [](const auto& axis) { return axis.param == Window_Axis::Up ? "up" : "down"; });

}  // namespace

TEST_P(Histo_Plot, outlines_every_bin_between_its_columns) {
    for (const int nb_bins : {1, 2, 7, 64, 217, 218, 219, 500, 1021, 4096, 65535}) {
        Histo_Record_Give(panel, {}, Hills(nb_bins));
        Paint();
        Picture expected(panel, empty);
        expected.Outline(panel.data->record->counts, YELLOW);
        SCOPED_TRACE(nb_bins);
        Expect_Picture(expected);
    }
}

TEST_P(Histo_Plot, cuts_at_the_top_what_the_magnification_lifts_over_it) {
    Histo_Record_Give(panel, {}, {10, 5, 4, 6, 0, 1, 10, 9, 2, 5});
    panel.scale = 0.5F;
    Paint();
    Picture expected(panel, empty);
    expected.Outline(panel.data->record->counts, YELLOW);
    Expect_Picture(expected);
    EXPECT_EQ(expected.Height(5), Histo_Stage::PLOT_HEIGHT) << "half of the largest reaches the top";
    EXPECT_EQ(expected.Height(10), Histo_Stage::PLOT_HEIGHT);
    EXPECT_LT(expected.Height(4), Histo_Stage::PLOT_HEIGHT);
    panel.scale = 0.001F;
    Paint();
    Picture flat(panel, empty);
    flat.Outline(panel.data->record->counts, YELLOW);
    Expect_Picture(flat);
}

TEST_P(Histo_Plot, shades_a_range_with_checker_and_solid_bars) {
    scene.Tags(3);
    scene.Tag_Color(2, 200, 30, 60);
    Histo_Record_Give(panel, {100.0F, 2.0F}, Hills(80));
    // 110.9 and 159.9 are cut to 110 and 159: bins 5 and 29.
    panel.Set(1, 2, 110.9, 159.9);
    Paint();
    Picture expected(panel, empty);
    constexpr std::uint32_t color = 0xC81E3C;
    expected.Band(5, 29, color, panel.data->record->counts, Parity(expected.Column(5), color));
    expected.Outline(panel.data->record->counts, YELLOW);
    Expect_Picture(expected);
}

TEST_P(Histo_Plot, paints_later_ranges_over_earlier_ones) {
    scene.Tags(4);
    scene.Tag_Color(1, 255, 0, 0);
    scene.Tag_Color(2, 0, 0, 255);
    Histo_Record_Give(panel, {}, Hills(300));
    panel.Set(3, 1, 10.0, 200.0, 2, 100.0, 250.0, 1, 240.0, 260.0);
    Paint();
    Picture expected(panel, empty);
    const std::uint32_t* counts = panel.data->record->counts;
    const int parity = Parity(expected.Column(10), RED);
    expected.Band(10, 200, RED, counts, parity);
    expected.Band(100, 250, BLUE, counts, parity);
    expected.Band(240, 260, RED, counts, parity);
    expected.Outline(counts, YELLOW);
    Expect_Picture(expected);
}

TEST_P(Histo_Plot, the_last_of_many_ranges_covers_the_others) {
    scene.Tags(3);
    scene.Tag_Color(1, 255, 0, 0);
    scene.Tag_Color(2, 0, 0, 255);
    std::mt19937 random(11);
    for (int round = 0; round < 20; ++round) {
        Histo_Record_Give(panel, {}, Hills(round % 2 == 0 ? 150 : 1000, random()));
        const int nb_bins = panel.data->record->nb_bins;
        panel.range_nb = HISTO_RANGE_MAX;
        Picture probe(panel, empty);
        for (int range = 0; range < HISTO_RANGE_MAX; ++range) {
            panel.range_tag[range] = static_cast<std::uint16_t>(1 + random() % 2);
            panel.range_min[range] = static_cast<float>(random() % static_cast<unsigned>(nb_bins));
            panel.range_max[range] = panel.range_min[range] + static_cast<float>(random() % 200) - 20.0F;
        }
        // The phase of the checker, from a range of its own.
        panel.range_nb = 1;
        panel.range_tag[0] = 1;
        panel.range_min[0] = 0.0F;
        panel.range_max[0] = 1e6F;
        Paint();
        const int parity = Parity(probe.Column(0), RED);
        panel.range_nb = HISTO_RANGE_MAX;
        Paint();
        Picture expected(panel, empty);
        for (int range = 0; range < HISTO_RANGE_MAX; ++range) {
            const int first = std::clamp(static_cast<int>(panel.range_min[range]), 0, nb_bins - 1);
            const int last = std::clamp(static_cast<int>(panel.range_max[range]), 0, nb_bins - 1);
            expected.Band(first, last, panel.range_tag[range] == 1 ? RED : BLUE, panel.data->record->counts, parity);
        }
        expected.Outline(panel.data->record->counts, YELLOW);
        SCOPED_TRACE(round);
        Expect_Picture(expected);
    }
}

TEST_P(Histo_Plot, random_contents_are_what_the_window_system_would_draw) {
    scene.Tags(3);
    scene.Tag_Color(1, 255, 0, 0);
    scene.Tag_Color(2, 0, 0, 255);
    std::mt19937 random(29);
    const auto below = [&random](unsigned end) { return static_cast<int>(random() % end); };
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const int nb_bins = 1 + below(round % 3 == 0 ? 30 : (round % 3 == 1 ? 400 : 3000));
        const bool is_color = round % 2 == 1;
        if (is_color) {
            Color_Record(nb_bins);
        } else {
            Histo_Record_Give(panel, {}, Hills(nb_bins, random()));
        }
        // Flat ends now and then: what the last point of the line reaches.
        for (int bin = std::max(0, nb_bins - below(6)); bin < nb_bins; ++bin) {
            panel.data->record->counts[bin] = static_cast<std::uint32_t>(500 + below(2) * below(200));
        }
        panel.color_component = static_cast<unsigned char>(is_color ? below(5) : 4);
        panel.scale = round % 4 == 0 ? 0.4F : 1.0F;
        panel.range_nb = static_cast<std::uint16_t>(below(HISTO_RANGE_MAX + 1));
        for (int range = 0; range < panel.range_nb; ++range) {
            panel.range_tag[range] = static_cast<std::uint16_t>(1 + below(2));
            panel.range_min[range] = static_cast<float>(below(static_cast<unsigned>(nb_bins)));
            panel.range_max[range] = panel.range_min[range] + static_cast<float>(below(200) - 20);
        }
        Paint();
        const std::vector<std::uint32_t> ours = stage.Read();
        const Histo_Record& record = *panel.data->record;
        std::vector<std::pair<const std::uint32_t*, std::uint32_t>> curves = {{record.counts, YELLOW}};
        if (is_color && panel.color_component == 0) {
            curves = {{record.counts_component0, YELLOW}};
        } else if (is_color && panel.color_component < 4) {
            curves = {{record.counts_red, RED}, {record.counts_green, GREEN}, {record.counts_blue, BLUE}};
        }
        Gdi_Draw(
            panel, GetParam(), Picture(panel, empty), [](int tag) { return tag == 1 ? RED : BLUE; }, curves);
        EXPECT_EQ(ours, stage.Read());
    }
}

TEST_P(Histo_Plot, ranges_beyond_the_grid_end_at_its_ends) {
    scene.Tags(3);
    scene.Tag_Color(1, 255, 0, 0);
    Histo_Record_Give(panel, {-20.0F, 1.0F}, Hills(100));
    const std::pair<double, double> ranges[] = {{-1e30, 1e30},
                                                {-100000.0, 100000.0},
                                                {-std::numeric_limits<double>::infinity(), 79.0},
                                                {-20.0, std::numeric_limits<double>::infinity()}};
    for (const auto& [low, high] : ranges) {
        panel.Set(1, 1, low, high);
        Paint();
        Picture expected(panel, empty);
        const std::uint32_t* counts = panel.data->record->counts;
        expected.Band(0, 99, RED, counts, Parity(expected.Column(0), RED));
        expected.Outline(counts, YELLOW);
        Expect_Picture(expected);
    }
    panel.Set(1, 1, -30.0, -5.5);
    Paint();
    Picture start(panel, empty);
    start.Band(0, 15, RED, panel.data->record->counts, Parity(start.Column(0), RED));
    start.Outline(panel.data->record->counts, YELLOW);
    Expect_Picture(start);
}

TEST_P(Histo_Plot, a_range_that_is_not_a_number_is_the_first_bin) {
    scene.Tags(3);
    scene.Tag_Color(1, 255, 0, 0);
    Histo_Record_Give(panel, {}, Hills(10));
    const double none = std::numeric_limits<double>::quiet_NaN();
    panel.Set(1, 1, none, none);
    Paint();
    Picture expected(panel, empty);
    expected.Band(0, 0, RED, panel.data->record->counts, Parity(expected.Column(0), RED));
    expected.Outline(panel.data->record->counts, YELLOW);
    Expect_Picture(expected);
}

TEST_P(Histo_Plot, black_unknown_and_uncoloured_tags_are_grey) {
    Histo_Record_Give(panel, {}, Hills(50));
    scene.Tags(3);
    Expect_Band(1, GREY);
    scene.Tag_Color(1, 0, 0, 0);  // only the high bytes count
    Expect_Band(1, GREY);
    Expect_Band(3, GREY);
    Expect_Band(65535, GREY);
    scene.Tag_Color(1, 255, 0, 0);
    Variable_Undefine("$TAG_GRN");
    Expect_Band(1, GREY);
}

TEST_P(Histo_Plot, a_host_that_does_not_tell_its_number_of_tags_has_as_many_as_colours) {
    Histo_Record_Give(panel, {}, Hills(50));
    scene.Tags(3);
    for (int tag = 0; tag < 3; ++tag) {
        scene.Tag_Color(tag, 255, 0, 0);
    }
    Variable_Undefine("$TAG_NB");
    Expect_Band(2, RED);
    Expect_Band(3, GREY);
}

TEST_P(Histo_Plot, a_colour_record_shows_its_component) {
    Color_Record(90);
    const Histo_Record& record = *panel.data->record;
    for (int component = 0; component <= 5; ++component) {
        panel.color_component = static_cast<unsigned char>(component);
        Paint();
        Picture expected(panel, empty);
        if (component == 0) {
            expected.Outline(record.counts_component0, YELLOW);
        } else if (component <= 3) {
            expected.Outline(record.counts_red, RED);
            expected.Outline(record.counts_green, GREEN);
            expected.Outline(record.counts_blue, BLUE);
        } else {
            expected.Outline(record.counts, YELLOW);
        }
        SCOPED_TRACE(component);
        Expect_Picture(expected);
    }
}

TEST_P(Histo_Plot, a_band_shows_one_array_by_component_whatever_the_outline_shows) {
    scene.Tags(3);
    scene.Tag_Color(1, 90, 90, 10);
    constexpr std::uint32_t color = 0x5A5A0A;
    Color_Record(90);
    const Histo_Record& record = *panel.data->record;
    const std::uint32_t* const bands[] = {record.counts_component0, record.counts_red, record.counts_green,
                                          record.counts_blue,       record.counts,     record.counts};
    panel.Set(1, 1, 20.0, 70.0);
    for (int component = 0; component <= 5; ++component) {
        panel.color_component = static_cast<unsigned char>(component);
        Paint();
        Picture expected(panel, empty);
        expected.Band(20, 70, color, bands[component], Parity(expected.Column(20), color));
        if (component >= 1 && component <= 3) {
            expected.Outline(record.counts_red, RED);
            expected.Outline(record.counts_green, GREEN);
            expected.Outline(record.counts_blue, BLUE);
        } else {
            expected.Outline(component == 0 ? record.counts_component0 : record.counts, YELLOW);
        }
        SCOPED_TRACE(component);
        Expect_Picture(expected);
    }
}

TEST_P(Histo_Plot, a_grey_record_shows_all_counts_whatever_the_component) {
    Histo_Record_Give(panel, {}, Hills(90));
    for (const int component : {0, 1, 3, 4, 255}) {
        panel.color_component = static_cast<unsigned char>(component);
        Paint();
        Picture expected(panel, empty);
        expected.Outline(panel.data->record->counts, YELLOW);
        Expect_Picture(expected);
    }
}

TEST_P(Histo_Plot, component_arrays_that_are_missing_are_left_out) {
    Color_Record(90);
    Histo_Record& record = *panel.data->record;
    delete[] record.counts_green;
    record.counts_green = nullptr;
    panel.color_component = 2;
    Paint();
    Picture expected(panel, empty);
    expected.Outline(record.counts_red, RED);
    expected.Outline(record.counts_blue, BLUE);
    Expect_Picture(expected);
}

TEST_P(Histo_Plot, an_empty_grid_leaves_the_box_black) {
    scene.Tags(3);
    panel.Set(1, 1, 0.0, 5.0);
    Histo_Record_Give(panel, {}, {});
    Paint();
    Expect_Picture(Picture(panel, empty));
}

TEST_P(Histo_Plot, counts_of_0_lie_on_the_base_line) {
    Histo_Record_Give(panel, {}, std::vector<std::uint32_t>(20, 0));
    Paint();
    Picture expected(panel, empty);
    expected.Outline(panel.data->record->counts, YELLOW);
    Expect_Picture(expected);
}

TEST_P(Histo_Plot, without_counts_nothing_is_painted_and_nothing_said) {
    stage.Take_Messages();
    EXPECT_EQ(Histo_Paint(panel), 0);
    Histo_Record_Give(panel, {}, Hills(5));
    panel.data->Record_Empty();
    EXPECT_EQ(Histo_Paint(panel), 0);
    EXPECT_EQ(stage.Take_Lines(), std::vector<std::string>{});
    EXPECT_EQ(stage.Read(), empty);
}

TEST_P(Histo_Plot, forgets_the_cursor_line) {
    Histo_Record_Give(panel, {}, Hills(5));
    panel.cursor_position = 50;
    Paint();
    EXPECT_EQ(panel.cursor_position, -1);
}

TEST_P(Histo_Plot, a_redraw_without_counts_forgets_the_cursor_line_that_it_wiped) {
    Histo_Record_Give(panel, {}, Hills(5));
    panel.cursor_position = 50;
    panel.data->Record_Empty();
    panel.Draw();
    EXPECT_EQ(panel.cursor_position, -1);
}

TEST_P(Histo_Plot, without_a_device_context_everything_stays) {
    Histo_Record_Give(panel, {}, Hills(5));
    panel.cursor_position = 50;
    panel.window = nullptr;
    EXPECT_EQ(Histo_Paint(panel), 1);
    EXPECT_EQ(panel.cursor_position, 50);
    EXPECT_EQ(stage.Read(), empty);
}

TEST_P(Histo_Plot, a_box_too_small_for_a_plot_draws_none) {
    Histo_Record_Give(panel, {}, Hills(5));
    panel.Set(1, 1, 0.0, 5.0);
    for (const int size : {37, 40, 42, 43}) {
        Boxs box = stage.Host_Box(Histo_Stage::LEFT, 20, size, size - 36);
        box.border = Histo_Stage::EDGE;
        panel.Resize(&box);
        stage.Wipe();
        const std::vector<std::uint32_t> wiped = stage.Read();
        Paint();
        const std::vector<std::uint32_t> now = stage.Read();
        int outside = 0;
        for (int row = 0; row < Histo_Stage::HEIGHT; ++row) {
            for (int x = 0; x < Histo_Stage::WIDTH; ++x) {
                const bool inside = x >= Histo_Stage::LEFT && x < Histo_Stage::LEFT + size - 36;
                outside += !inside && now[Histo_Stage::At(x, row)] != wiped[Histo_Stage::At(x, row)] ? 1 : 0;
            }
        }
        EXPECT_EQ(outside, 0) << size;
    }
}

TEST(Histo_Plot_Axes, give_the_same_picture) {
    std::vector<std::uint32_t> picture[2];
    for (const Window_Axis axis : {Window_Axis::Down, Window_Axis::Up}) {
        Histo_Scene scene;
        scene.Tags(3);
        scene.Tag_Color(1, 255, 0, 0);
        Histo_Stage stage(axis);
        Tool_Histo panel;
        stage.Lay_Out(panel);
        Histo_Record_Give(panel, {}, Hills(300));
        panel.Set(1, 1, 30.0, 120.0);
        panel.Draw();
        Scene_Object& mouse_frame = scene.Add_Frame();
        scene.Mouse_Over(mouse_frame, 77);
        Histo_Cursor(panel);
        picture[axis == Window_Axis::Up ? 1 : 0] = stage.Read();
    }
    int wrong = 0;
    for (int row = Histo_Stage::TOP; row < Histo_Stage::TOP + Histo_Stage::BOX_HEIGHT; ++row) {
        for (int x = Histo_Stage::LEFT; x < Histo_Stage::LEFT + Histo_Stage::BOX_WIDTH - 36; ++x) {
            wrong += picture[0][Histo_Stage::At(x, row)] != picture[1][Histo_Stage::At(x, row)] ? 1 : 0;
        }
    }
    EXPECT_EQ(wrong, 0);
}
