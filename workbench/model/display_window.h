/** Windows to look at a volume through: those of its file, and the usual ones of its kind. Pure code. */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "workbench/model/slice_render.h"
#include "workbench/volumes/volume.h"

namespace workbench {

/** The windows of the volume's file, then brain, bone, lung and abdomen for images of a CT. Colours have none.
 *  @param is_ct grey values are Hounsfield units */
std::vector<volumes::Display_Window> Display_Windows_Of(const volumes::Volume& volume, bool is_ct);

Grey_Window Grey_Window_Of(const volumes::Display_Window& window);

/** The first window of the volume's file that shows anything: that does not lie beyond all of its grey values. */
std::optional<Grey_Window> First_Window(const volumes::Volume& volume);

/** "BRAIN: centre 40, width 80". @param number of a window without a name, from 1 @return UTF-8 */
std::string Display_Window_Text(const volumes::Display_Window& window, int number);

}  // namespace workbench
