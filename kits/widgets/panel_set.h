/** @file
 *  The panels of a host, each in a window of its own (panel_window.h): what a pick changes, who is told of a change,
 *  and when. A host adds its panels, makes their windows, places them, and sends between two messages. One per process.
 *  User-interface thread.
 *
 *  Includes <windows.h>, as panel_window.h does. */
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "host/kit_common.h"
#include "kits/dataset/dataset_host.h"
#include "kits/dataset/panel_flags.h"
#include "kits/widgets/panel_window.h"

namespace kit {

/** The axis that a kind of panel needs, see docs/coordinates.md. */
inline constexpr Window_Axis Panel_Axis(Panel_Kind kind) {
    return kind == Panel_Kind::Tag || kind == Panel_Kind::Marker || kind == Panel_Kind::Histogram ? Window_Axis::Down
                                                                                                  : Window_Axis::Up;
}

/** See above. */
class Panel_Set {
  public:
    Panel_Set() {
        look.style = STYLE_FRAMED_BOX | STYLE_SHOW_CHECK;
        look.border = 1;
        look.Set_Color(70, 70, 70);
        tree_look = look;
        tree_look.Set_Color(140, 140, 140);
    }
    /** Destroys the windows; nobody listens to requests any more. */
    ~Panel_Set() {
        if (parent != nullptr) {
            Request_Listener_Set({});
            Variable_Define_Pointer("$HISTO_WINDOW_OWNER", nullptr);
            hwnd = nullptr;
        }
    }
    Panel_Set(const Panel_Set&) = delete;
    Panel_Set& operator=(const Panel_Set&) = delete;

    Boxs look;       ///< of the panels, but place and window; to be set before Make
    Boxs tree_look;  ///< of class and file views, which write names in black and dark blue; to be set before Make
    std::function<void(unsigned __int64 flags)> redraw;  ///< Fct_Redraw of a panel; may be empty
    std::function<void(int key)> untaken;  ///< keys that no panel used; may be empty, to be set before Make

    /** Adds a panel, before Make. What is picked in a TAG, marker or brush panel goes into its variable and is
     *  announced.
     *  @param panel one of the module's, outlives this; @param kind what it is
     *  @param wanted what its Height takes: rows, or pixels of a histogram; @param dimension of a class view
     *  @return its window, which lives as long as this */
    template <class Panel>
    Panel_Window& Add(Panel& panel, Panel_Kind kind, unsigned short wanted = 0, int dimension = 2) {
        auto hosted = std::make_unique<Panel_Of<Panel>>(panel, [wanted](Panel& of) { return Height_Of(of, wanted); });
        auto window = std::make_unique<Panel_Window>(*hosted, Answer_To_Clicks(panel, kind));
        window->after_resize = Update_After_Resize(kind, dimension);
        members.push_back({std::move(hosted), std::move(window), Panel_Axis(kind), Is_Tree(kind)});
        return *members.back().window;
    }
    /** Makes all windows, without a place yet, and listens to the panels' requests. The variables are defined, see
     *  kits/dataset/variable_rules.h.
     *  @param main the host's window, which messages and the enlarged histogram belong to
     *  @return false when the system refuses a window */
    bool Make(HWND main) {
        parent = hwnd = main;
        Variable_Define_Pointer("$HISTO_WINDOW_OWNER", main);
        Request_Listener listener;
        listener.context = this;
        listener.update = [](void* set, unsigned __int64 flags, void*, void*) {
            static_cast<Panel_Set*>(set)->Announce(flags);
        };
        listener.redraw = [](void* set, unsigned __int64 flags, void*, void*) {
            if (static_cast<Panel_Set*>(set)->redraw) {
                static_cast<Panel_Set*>(set)->redraw(flags);
            }
        };
        listener.change_child = [](void* set, Quorel_Window*, Quorel_2D*, Quorel_2D*) {
            static_cast<Panel_Set*>(set)->Announce(UPDATE_FRAME_CUR);
        };
        Request_Listener_Set(listener);
        for (const Member& member : members) {
            member.window->look = member.is_tree ? tree_look : look;
            member.window->untaken = untaken;
            if (!member.window->Make(main, member.axis)) {
                return false;
            }
        }
        return true;
    }
    /** Shared state changed: the panels are told with the next Send. Also from inside an operation of a panel. */
    void Announce(unsigned __int64 flags) { collected.Add(flags); }
    /** Tells all panels what was announced, by them or by the host. To be called between two messages, where no
     *  operation of a panel runs. @return the flags that were sent; 0 when nothing had changed */
    unsigned __int64 Send() {
        unsigned __int64 sent = 0;
        collected.Send([this, &sent](unsigned __int64 flags) {
            Contract_Check_Update(flags);
            // A computation of the histogram paints nothing of itself.
            const bool computes = Has_Any(flags, UPDATE_SELECTION | UPDATE_STRUCTURE | UPDATE_HISTO_DATA);
            sent = flags | (computes ? UPDATE_HISTO_PAINT : 0);
            for (const Member& member : members) {
                member.window->Update(sent);
            }
        });
        return sent;
    }

  private:
    struct Member {
        std::unique_ptr<Hosted_Panel> hosted;
        std::unique_ptr<Panel_Window> window;
        Window_Axis axis;
        bool is_tree;
    };
    static bool Is_Tree(Panel_Kind kind) { return kind == Panel_Kind::Classes || kind == Panel_Kind::Files; }

    template <class Panel>
    static int Height_Of(Panel& panel, unsigned short wanted) {
        if constexpr (requires { panel.Height(wanted); }) {
            return panel.Height(wanted);
        } else {
            return panel.Height();
        }
    }
    void Pick(const char* variable, int picked, unsigned __int64 flags) {
        Variable_Set(variable, picked);
        Announce(flags);
    }
    /** TAG and marker panels answer a click with what was picked, the brush panel with whether one was. */
    template <class Panel>
    Panel_Window::Click_Answer Answer_To_Clicks(Panel& panel, Panel_Kind kind) {
        if (kind == Panel_Kind::Tag || kind == Panel_Kind::Marker) {
            return [this, variable = kind == Panel_Kind::Tag ? "$TAG_CUR" : "$MARKER_CUR"](int picked, int) {
                if (picked >= 0) {
                    Pick(variable, picked, UPDATE_TAG_CUR);
                }
            };
        }
        if constexpr (requires { panel.Read(); }) {
            if (kind == Panel_Kind::Brush) {
                return [this, &panel](int is_picked, int) {
                    if (is_picked != 0) {
                        Pick("$BRUSH_CUR", panel.Read(), UPDATE_BRUSH);
                    }
                };
            }
        }
        return {};
    }

    std::vector<Member> members;
    Collected_Updates collected;
    HWND parent = nullptr;
};

}  // namespace kit
