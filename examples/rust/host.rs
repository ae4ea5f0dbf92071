// The beginning of a host in Rust: starts the panels, picks a TAG, tells what went wrong, ends.
// This file is not built by the project's tests. For the target x86_64-pc-windows-msvc:
//   rustc host.rs -L FOLDER\lib        (kit_panels_c.lib; the DLLs of FOLDER\bin stand beside the program)
use std::ffi::{c_char, c_void};

type Event = *const c_void; // kit_event: its members are in kit_panels.h, in the same order with #[repr(C)]
type EventFunction = extern "C" fn(*mut c_void, Event) -> i32; // must not unwind

#[repr(C)]
struct Settings {
    size: u32,
    abi_version: u32,
    on_event: Option<EventFunction>,
    context: *mut c_void,
    icon_folder: *const c_char,
    scale: f32,
    theme: i32,
    contract_checks: i32,
    traces: i32,
}

#[link(name = "kit_panels_c")]
extern "C" {
    fn kit_start(settings: *const Settings) -> i32;
    fn kit_stop() -> i32;
    fn kit_tag_pick(index: u32) -> i32;
    fn kit_error_text(handle: u64, out: *mut c_char, room: u32, needed: *mut u32) -> i32;
}

fn main() {
    let settings = Settings {
        size: std::mem::size_of::<Settings>() as u32,
        abi_version: 0x0001_0000,
        on_event: None,
        context: std::ptr::null_mut(),
        icon_folder: std::ptr::null(),
        scale: 1.0,
        theme: 0,
        contract_checks: 0,
        traces: 0,
    };
    unsafe {
        assert_eq!(kit_start(&settings), 0);
        if kit_tag_pick(99) != 0 {
            let mut text = [0u8; 200];
            kit_error_text(0, text.as_mut_ptr() as *mut c_char, 200, std::ptr::null_mut());
            println!("{}", String::from_utf8_lossy(&text).trim_end_matches('\0'));
        }
        assert_eq!(kit_stop(), 0);
    }
}
