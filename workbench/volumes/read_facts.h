/** Says how a volume was read: for a user who has to judge whether to trust the greys and the places. */
#pragma once

#include <span>
#include <string>

#include "workbench/volumes/volume.h"

namespace volumes {

/** A page of text, UTF-8, lines end with '\n': size, file, type, scale, largest error, values outside, where the
 *  orientation comes from, and what was told on reading.
 *  @param title of the volume @param warnings sentences @param orientation the letters that the user chose; empty: none
 */
std::string Read_Facts_Text(const std::string& title, const Volume& volume, std::span<const std::string> warnings,
                            const std::string& orientation);

/** The same in a few words, for what is not exact: "largest error 0.002, 3 values outside"; empty: all is exact. */
std::string Read_Losses_Text(const Volume& volume);

}  // namespace volumes
