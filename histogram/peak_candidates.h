/** Where candidate peaks stand: tests on the derivative and on the filtered curve. Pure functions over spans. */
#pragma once

#include <span>

/** Downward zero crossing of the derivative with clear slopes on both sides.
 *  @param derivative the derivative curve; @param x a bin, 1 .. n - 1; @param gap bins on each side that must rise and
 *  fall strictly
 *  @param slope      steepness that at least one bin on each side must exceed
 *  @param zero_before  the last crossing seen; moves to x at every crossing, also when the test fails afterwards
 *  @return 0: no candidate; otherwise how many bins may be skipped: 1 + the length of the falling side */
int Zero_Peak_Test(std::span<const float> derivative, int x, int gap, float slope, int& zero_before);

/** Outcome of the data test. */
struct Data_Peak {
    bool is_maximum =
        false;     ///< the bin before x is not below data_min and no neighbour within the half width is higher
    int drop = 0;  ///< largest fall to a neighbour, truncated to an integer
};

/** Local maximum of the filtered curve at bin x - 1.
 *  Contract: fits compared with earlier ones start from the bin before x. @param x 1 .. n - 1 */
Data_Peak Data_Peak_Test(std::span<const double> filtered, int x, int half, float data_min);
