/** The order of slices in space and time. */
#pragma once

#include <cstdint>
#include <vector>

/** Puts slices that have a place in order, and finds out how often every place occurs.
 *  @param depth of every slice, mm
 *  @param later a number that rises with time, of every slice
 *  @param nz, nt receive how many places there are and how often each occurs
 *  @return the slices' numbers, all places of the first time first; empty when places do not occur equally often */
std::vector<std::int32_t> Slices_In_Order(const std::vector<double>& depth, const std::vector<double>& later,
                                          std::int32_t& nz, std::int32_t& nt);
