// Carrying TAGs from frame to frame.
#include <algorithm>
#include <climits>

#include "workbench/application.h"
#include "workbench/model/number_text.h"
#include "workbench/progress_window.h"
#include "workbench/prompt_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

int Application::Propagate(int from, int to) {
    tools.Stroke_End();
    Propagation_Tags tags;
    std::ranges::copy(variables.Tag_Select(), tags.carried.begin());
    std::ranges::copy(variables.Tag_Lock(), tags.locked.begin());
    tags.locked[0] = 0;  // see Ink
    const std::size_t carried = session.Propagate(propagation_kind, from, to, tags);
    const wchar_t* name = propagation_kind == Propagation_Kind::Copy ? L"copy" : L"grow";
    if (carried == 0) {
        Status(L"Nothing to carry: frame " + std::to_wstring(from + 1) + L" shows no selected TAG");
        return 0;
    }
    const double score = Overlap(session.Labels().Slice(from), session.Labels().Slice(to), tags.carried);
    Status(std::wstring(L"Propagated by ") + name + L" from frame " + std::to_wstring(from + 1) + L" to " +
           std::to_wstring(to + 1) + L": " + std::to_wstring(carried) + L" pixels, overlap " +
           Wide_Of_Utf8(Number_Text(score)));
    hub.Note(Change::Pixels);
    return static_cast<int>(std::min<std::size_t>(carried, INT_MAX));
}

void Application::Propagate_Step(int direction) {
    propagate_host->Buffered([&] { propagate_panel.Propagate(direction); });
}

void Application::Propagation_Kind_Set(Propagation_Kind kind) {
    propagation_kind = kind;
    hub.Note(Change::Mode);
    Status(kind == Propagation_Kind::Copy ? L"Propagation copies TAGs as they are"
                                          : L"Propagation lets TAGs grow to the grey levels of the next frame");
}

void Application::Propagate_Repeat(int direction) {
    const int room = direction > 0 ? session.Slice_Nb() - 1 - slice : slice;
    if (room <= 0) {
        Status(L"There is no frame to propagate to");
        return;
    }
    const auto answer =
        Prompt(window.Handle(), L"Repeat propagation", L"Number of frames (at most " + std::to_wstring(room) + L"):",
               std::to_wstring(std::min(room, 5)));
    const long wanted = answer ? std::wcstol(answer->c_str(), nullptr, 10) : 0;
    if (wanted <= 0) {
        return;
    }
    const int count = static_cast<int>(std::min<long>(wanted, room));
    int done = 0;
    {
        Progress_Window progress(look, window.Handle(), L"Propagating");
        // Every frame is written whole, so giving up between two frames leaves nothing half done.
        while (done < count &&
               progress.Step(static_cast<double>(done) / count,
                             L"Frame " + std::to_wstring(done + 1) + L" of " + std::to_wstring(count)) &&
               propagate_host->Buffered([&] { return propagate_panel.Propagate(direction); }) != 0) {
            ++done;
            Deliver();  // each frame is seen
            ::UpdateWindow(image.Handle());
        }
    }
    Status(L"Propagated to " + std::to_wstring(done) + L" of " + std::to_wstring(count) + L" frames");
}

}  // namespace workbench
