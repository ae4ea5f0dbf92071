#include "workbench/folder_dialog.h"

#include <windows.h>

#include <shobjidl.h>

namespace workbench {

namespace {

/** Gives an interface back. */
template <class Interface>
class Com_Pointer {
  public:
    Com_Pointer() = default;
    ~Com_Pointer() {
        if (pointer != nullptr) {
            pointer->Release();
        }
    }
    Com_Pointer(const Com_Pointer&) = delete;
    Com_Pointer& operator=(const Com_Pointer&) = delete;
    Interface* operator->() const { return pointer; }
    Interface** Receive() { return &pointer; }

  private:
    Interface* pointer = nullptr;
};

/** The system's objects may be used as long as this lives. */
class Com_Use {
  public:
    Com_Use() : is_ready(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}
    ~Com_Use() {
        if (is_ready) {
            ::CoUninitialize();
        }
    }
    Com_Use(const Com_Use&) = delete;
    Com_Use& operator=(const Com_Use&) = delete;

  private:
    bool is_ready;
};

}  // namespace

std::optional<std::filesystem::path> Ask_Folder(HWND owner, const wchar_t* title) {
    const Com_Use use;
    Com_Pointer<IFileOpenDialog> dialog;
    Com_Pointer<IShellItem> chosen;
    if (FAILED(::CoCreateInstance(__uuidof(FileOpenDialog), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IFileOpenDialog),
                                  reinterpret_cast<void**>(dialog.Receive())))) {
        return std::nullopt;
    }
    FILEOPENDIALOGOPTIONS options = 0;
    dialog->GetOptions(&options);
    dialog->SetOptions(options | FOS_PICKFOLDERS | FOS_FORCEFILESYSTEM | FOS_PATHMUSTEXIST | FOS_NOCHANGEDIR);
    dialog->SetTitle(title);
    wchar_t* name = nullptr;
    if (FAILED(dialog->Show(owner)) || FAILED(dialog->GetResult(chosen.Receive())) ||
        FAILED(chosen->GetDisplayName(SIGDN_FILESYSPATH, &name)) || name == nullptr) {
        return std::nullopt;
    }
    std::filesystem::path path(name);
    ::CoTaskMemFree(name);
    return path;
}

}  // namespace workbench
