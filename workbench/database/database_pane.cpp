#include "workbench/database/database_pane.h"

#include <windowsx.h>

#include <oleacc.h>

#include <algorithm>
#include <utility>

#include "base/gdi_handles.h"
#include "kits/widgets/widgets_host.h"
#include "workbench/database/tree_parts.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int FIND_INSET = 6;                // pixels at 96 dots per inch
constexpr int PANE_GAP = 6;                  // below and right of the panels
constexpr unsigned short TREE_GREY = 140;    // yellow, blue, red and black texts can all be read on it
constexpr unsigned short EDITOR_GREY = 200;  // the diagram's grey lines can be seen on it
constexpr int TREE_FONT = 13;
constexpr int FIND_FIELD_ID = 1;
constexpr UINT FIND_CUE_BANNER = 0x1501;  // EM_SETCUEBANNER
constexpr int FILE_MODE = 2;
constexpr int CLASS_MODE[] = {2, 3, 1};  // the dimension of the class views, in their order

}  // namespace

/** Hands every event of a panel to the application, which does what the panel asked for when the event is over. */
class Database_Pane::Relay : public Hosted_Panel {
  public:
    Relay(Database_Pane& column, Hosted& shown) : pane(column), hosted(shown), tree(*shown.tree) {}
    void Resize(Boxs* box) override { tree.Resize(box); }
    int Height() override { return tree.Height(); }
    void Draw() override { tree.Draw(); }
    int Click(int up_down) override {
        // A press renames, which leaves an editor's records as they are.
        return Run([&] { return tree.Click(up_down); }, (up_down & MOUSE_PRESS) == 0);
    }
    int Motion(int up_down) override {
        return Run([&] { return tree.Motion(up_down); });
    }
    int Scroll(int notches) override { return tree.Scroll(notches); }
    int Keyboard(int key) override {
        return Run([&] { return tree.Keyboard(key); });
    }
    void Leave() override { tree.Leave(); }
    void Update(unsigned __int64 flags) override { tree.Update(flags); }

  private:
    /** Puts `after_event` back to what it was. */
    struct After_Event {
        explicit After_Event(Database_Pane& column) : pane(column), before(column.after_event) {}
        ~After_Event() { pane.after_event = before; }
        After_Event(const After_Event&) = delete;
        After_Event& operator=(const After_Event&) = delete;
        Database_Pane& pane;
        const Hosted* before;
    };
    /** @param builds an editor has its records anew after it */
    template <class Call>
    int Run(Call call, bool builds = true) {
        int result = 0;
        const After_Event restored(pane);
        pane.host.run([&] {
            result = call();
            pane.after_event = builds ? &hosted : nullptr;
        });
        return result;
    }
    Database_Pane& pane;
    Hosted& hosted;
    Keyed_Tree& tree;
};

Database_Pane::Database_Pane(const Look& shared_look, Database_Host application)
    : look(shared_look), strip(shared_look), host(std::move(application)) {
    auto files = std::make_shared<Tool_DB_File>(FILE_MODE);
    auto patients = std::make_shared<Patient_View>(host.origin_of);
    patients->Source_Set(files.get());
    Panel_Make(static_cast<int>(Database_View::Files), std::move(files));
    Panel_Make(static_cast<int>(Database_View::Patients), std::move(patients));
    for (int at = 0; at < EDITOR_NB; ++at) {
        Panel_Make(static_cast<int>(Database_View::Classes_2D) + at, std::make_shared<Tool_DB_Class>(CLASS_MODE[at]));
        Panel_Make(EDITOR_FIRST + at, std::make_shared<Tool_DB_Class>(CLASS_MODE[at] | DB_MODE_EDIT));
    }
    auto find = std::make_shared<Find_View>();
    found = find.get();
    Panel_Make(FIND, std::move(find));
}

Database_Pane::~Database_Pane() = default;

void Database_Pane::Panel_Make(int at, std::shared_ptr<Tool_DB_List> panel) {
    Hosted& hosted = panels[static_cast<std::size_t>(at)];
    hosted.panel = std::move(panel);
    hosted.tree = std::make_unique<Keyed_Tree>(*hosted.panel, look, host.may_remove);
    hosted.relay = std::make_unique<Relay>(*this, hosted);
    hosted.host = std::make_unique<Panel_Host>(*hosted.relay, look, [](int, int) {});
    hosted.host->Face_Set(at >= EDITOR_FIRST && at < FIND ? EDITOR_GREY : TREE_GREY, TREE_FONT);
}

bool Database_Pane::Make(HWND parent) {
    if (!Create(parent, WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, L"Database")) {
        return false;
    }
    for (const Hosted& hosted : panels) {
        if (hosted.host && !hosted.host->Make(Handle(), Window_Axis::Up)) {
            return false;
        }
    }
    // A field is called by the label before it, also by one that is not shown.
    const HWND label = ::CreateWindowExW(0, L"STATIC", L"Find", WS_CHILD, 0, 0, 0, 0, Handle(), nullptr,
                                         ::GetModuleHandleW(nullptr), nullptr);
    find_field = ::CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0, 0, 10, 10, Handle(),
                                   reinterpret_cast<HMENU>(static_cast<INT_PTR>(FIND_FIELD_ID)),
                                   ::GetModuleHandleW(nullptr), nullptr);
    if (label == nullptr || find_field == nullptr) {
        return false;
    }
    ::SendMessageW(find_field, FIND_CUE_BANNER, TRUE, reinterpret_cast<LPARAM>(L"Find"));
    return true;
}

int Database_Pane::Shown() const {
    if (!find_text.empty()) {
        return FIND;
    }
    return is_editor && Is_Of_Classes()
               ? EDITOR_FIRST + static_cast<int>(view) - static_cast<int>(Database_View::Classes_2D)
               : static_cast<int>(view);
}

void Database_Pane::Lay_Out() {
    const RECT client = Client();
    if (client.right <= 0 || client.bottom <= 0) {
        return;
    }
    const int left = strip.Left();
    const int gap = look.Px(PANE_GAP);
    ::SendMessageW(find_field, WM_SETFONT, reinterpret_cast<WPARAM>(look.Font()), TRUE);
    // A field of one line keeps its text at its top: as high as the text, in the middle of the box drawn for it.
    const RECT box = strip.Find_Box(Client());
    const int height = std::min<int>(Line_Height(look.Font()), box.bottom - box.top - 2);
    ::SetWindowPos(find_field, nullptr, box.left + look.Px(FIND_INSET), (box.top + box.bottom - height) / 2,
                   std::max<int>(box.right - box.left - 2 * look.Px(FIND_INSET), 1), height,
                   SWP_NOZORDER | SWP_NOACTIVATE);
    for (Hosted& hosted : panels) {
        if (hosted.host) {
            hosted.host->Place({left, strip.Height(), std::max<LONG>(client.right - gap, left + 1),
                                std::max<LONG>(client.bottom - gap, strip.Height() + 1)});
        }
    }
    Show_Panel();
    Invalidate();
}

void Database_Pane::Show_Panel() {
    const int shown = Shown();
    for (int at = 0; at < PANEL_NB; ++at) {
        Hosted& hosted = panels[static_cast<std::size_t>(at)];
        if (!hosted.host) {
            continue;
        }
        if (at == shown && Is_Shown()) {
            // First the records: they may name objects that are gone. Before its first layout the panel has none, and
            // takes nothing.
            if (hosted.host->Is_Ready()) {
                hosted.host->Update(hosted.pending & UPDATE_STRUCTURE);
                hosted.pending &= ~UPDATE_STRUCTURE;
            }
            hosted.host->Lay_Out();
            hosted.host->Update(std::exchange(hosted.pending, 0));
        }
        hosted.host->Show(at == shown);
    }
}

void Database_Pane::Update(unsigned __int64 flags) {
    for (int at = 0; at < PANEL_NB; ++at) {
        Hosted& hosted = panels[static_cast<std::size_t>(at)];
        if (hosted.host && at == Shown() && Is_Shown()) {
            // An editor has built its records anew before the event ended by which it changed the classes.
            const bool is_built = &hosted == after_event && at >= EDITOR_FIRST && at < FIND;
            hosted.host->Update(is_built ? flags & ~UPDATE_STRUCTURE : flags);
        } else {
            hosted.pending |= flags;  // nobody sees it: told when it is shown
        }
    }
}

void Database_Pane::View_Set(Database_View wanted) {
    view = wanted;
    ::SetWindowTextW(find_field, L"");
    Show_Panel();
    Invalidate();
    host.changed();
}

void Database_Pane::Editor_Set(bool on) {
    is_editor = on;
    if (on && !Is_Of_Classes()) {
        view = Database_View::Classes_3D;
    }
    View_Set(view);
}

void Database_Pane::Expand_All(bool open) {
    Hosted& hosted = panels[static_cast<std::size_t>(Shown())];
    hosted.host->Buffered([&] { hosted.tree->Expand_All(open); });
}

void Database_Pane::Find_Begin() {
    ::SetFocus(find_field);
    ::SendMessageW(find_field, EM_SETSEL, 0, -1);
}

void Database_Pane::Find_Changed() {
    std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(find_field)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(::GetWindowTextW(find_field, text.data(), static_cast<int>(text.size()))));
    if (text == find_text) {
        return;
    }
    find_text = text;
    found->Source_Set(panels[static_cast<std::size_t>(view)].panel.get());
    found->Words_Set(Panel_Of_Wide(text));
    panels[FIND].pending |= UPDATE_STRUCTURE;
    Show_Panel();
}

HWND Database_Pane::Panel_Window() const {
    return panels[static_cast<std::size_t>(Shown())].host->Handle();
}

Panel_Host* Database_Pane::Panel_At(POINT screen) const {
    const HWND under = ::WindowFromPoint(screen);
    for (const Hosted& hosted : panels) {
        if (hosted.host && hosted.host->Handle() == under) {
            return hosted.host.get();
        }
    }
    return nullptr;
}

void Database_Pane::Accessible_Names() {
    Accessible_Source source;
    source.role = ROLE_SYSTEM_PANE;
    source.name = [] { return std::wstring(L"Database"); };
    source.parts = [this] {
        std::vector<Accessible_Part> parts;
        for (int at = 0; at < DATABASE_VIEW_NB; ++at) {
            const LONG state = view == Database_Strip::Tab_View(at) ? STATE_SYSTEM_SELECTED : 0;
            parts.push_back({Database_Strip::Tab_Name(at), L"", ROLE_SYSTEM_PAGETAB, state, strip.Tab(Client(), at)});
        }
        for (int at = 0; at < Database_Strip::BUTTON_NB; ++at) {
            const LONG state = at == Database_Strip::EDIT_BUTTON && is_editor ? STATE_SYSTEM_PRESSED : 0;
            parts.push_back(
                {Database_Strip::Button_Name(at), L"", ROLE_SYSTEM_PUSHBUTTON, state, strip.Button(Client(), at)});
        }
        return parts;
    };
    Accessible_Set(std::move(source));
    for (Hosted& hosted : panels) {
        if (hosted.host) {
            Panel_Host* const of = hosted.host.get();
            Keyed_Tree* const tree = hosted.tree.get();
            of->Accessible_Names(L"Tree", {},
                                 [of, tree] { return Tree_Parts(tree->Tree(), tree->Current(), of->Handle()); });
        }
    }
}

bool Database_Pane::Key(int key) {
    return panels[static_cast<std::size_t>(Shown())].host->Key(key);
}

void Database_Pane::Focus_Set(bool on) {
    has_focus = on;
    Invalidate();
}

bool Database_Pane::Key_Message(const MSG& message) {
    if (message.hwnd != find_field || message.message != WM_KEYDOWN) {
        return false;
    }
    if (message.wParam >= VK_F1 && message.wParam <= VK_F24) {
        // No text: commands, as elsewhere.
        ::PostMessageW(::GetAncestor(Handle(), GA_ROOT), message.message, message.wParam, message.lParam);
        return true;
    }
    if (message.wParam != VK_ESCAPE && message.wParam != VK_RETURN && message.wParam != VK_TAB) {
        return false;
    }
    if (message.wParam == VK_ESCAPE) {
        ::SetWindowTextW(find_field, L"");
    }
    ::SetFocus(::GetAncestor(Handle(), GA_ROOT));
    return true;
}

void Database_Pane::Paint() {
    const Buffered_Paint paint(Handle());
    const HDC dc = paint.Dc();
    Fill(dc, paint.Client(), look.ground);
    Fill(dc, {0, 0, 1, paint.Client().bottom}, look.line);
    strip.Paint(dc, paint.Client(), view, is_editor, ::GetFocus() == find_field);
    if (has_focus) {
        Frame(dc, paint.Client(), look.Px(3), look.accent);
    }
}

void Database_Pane::Press(POINT point) {
    const Database_Strip::Hit hit = strip.Part_At(Client(), point);
    switch (hit.part) {
        case Database_Strip::Part::Edge:
            is_dragged = true;
            ::SetCapture(Handle());
            return;
        case Database_Strip::Part::Find:
            return Find_Begin();
        case Database_Strip::Part::Tab:
            return View_Set(hit.view);
        case Database_Strip::Part::Expand:
            return Expand_All(true);
        case Database_Strip::Part::Collapse:
            return Expand_All(false);
        case Database_Strip::Part::Edit:
            return Editor_Set(!is_editor);
        case Database_Strip::Part::None:
            return;
    }
}

LRESULT Database_Pane::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    const POINT point = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    switch (message) {
        case WM_SIZE:
            Lay_Out();
            return 0;
        case WM_PAINT:
            Paint();
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_COMMAND:
            if (LOWORD(wparam) == FIND_FIELD_ID && HIWORD(wparam) == EN_CHANGE) {
                Find_Changed();
            } else if (LOWORD(wparam) == FIND_FIELD_ID &&
                       (HIWORD(wparam) == EN_SETFOCUS || HIWORD(wparam) == EN_KILLFOCUS)) {
                const RECT box = strip.Find_Box(Client());
                Invalidate(&box);
            }
            return 0;
        case WM_CTLCOLOREDIT:
            ::SetTextColor(reinterpret_cast<HDC>(wparam), look.text);
            ::SetBkColor(reinterpret_cast<HDC>(wparam), look.heading);
            ::SetDCBrushColor(reinterpret_cast<HDC>(wparam), look.heading);
            return reinterpret_cast<LRESULT>(::GetStockObject(DC_BRUSH));
        case WM_SETCURSOR: {
            POINT pointer = {};
            ::GetCursorPos(&pointer);
            ::ScreenToClient(Handle(), &pointer);
            if (reinterpret_cast<HWND>(wparam) == Handle() && strip.Is_Edge(pointer)) {
                ::SetCursor(::LoadCursorW(nullptr, MAKEINTRESOURCEW(32644)));  // sizing, left and right
                return TRUE;
            }
            return Window_Base::On_Message(message, wparam, lparam);
        }
        case WM_LBUTTONDOWN:
            Press(point);
            return 0;
        case WM_MOUSEMOVE:
            if (is_dragged) {
                host.width_set(std::max<int>(Client().right - point.x, look.Px(DATABASE_WIDTH_LEAST)));
            }
            return 0;
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED:
            is_dragged = false;
            if (message == WM_LBUTTONUP) {
                ::ReleaseCapture();
            }
            return 0;
        default:
            return Window_Base::On_Message(message, wparam, lparam);
    }
}

}  // namespace workbench
