/** What the guide's code is about: every block of its pages is compiled as a function after this. */
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <type_traits>
#include <vector>

#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "histogram/histo_peaks.h"
#include "histogram/tool_histo.h"
#include "host/kit_names.h"
#include "kits/common/contract.h"
#include "kits/common/messages.h"
#include "kits/dataset/dataset_host.h"
#include "kits/dataset/panel_flags.h"
#include "kits/dataset/variable_rules.h"
#include "kits/widgets/panel_set.h"
#include "kits/widgets/panel_window.h"
#include "kits/widgets/widgets_host.h"
#include "panels/kit_version.h"
#include "panels/tool_brush.h"
#include "panels/tool_marker.h"
#include "panels/tool_propagate.h"
#include "panels/tool_tag.h"
#include "panels/version_export.h"

/** A host that has a name of the contract for something of its own. */
namespace my_host {
struct Labels {
    int nb = 0;
};
inline int Own_And_The_Contracts() {
    const Labels own{3};
    const kit::Labels widget;
    return own.nb + widget.border;
}
}  // namespace my_host

// The names in the namespace are the contract's own.
static_assert(std::is_same_v<kit::Boxs, ::Boxs> && std::is_same_v<kit::Buttons, ::Buttons> &&
              std::is_same_v<kit::Colors, ::Colors> && std::is_same_v<kit::Labels, ::Labels> &&
              std::is_same_v<kit::Selects, ::Selects> && std::is_same_v<kit::Sliders, ::Sliders> &&
              std::is_same_v<kit::Texts, ::Texts> && std::is_same_v<kit::Tools, ::Tools> &&
              std::is_same_v<kit::Valuators, ::Valuators>);

inline HWND window = nullptr;
inline Boxs box;
inline int x = 0;
inline int y = 0;
inline unsigned __int64 flags = 0;
inline std::int32_t kept_place[4] = {};
inline Tool_Histo histogram;
inline std::vector<kit::Panel_Window*> all_panels;
