// A host in Rust: a window with all panels, an image slice, a TAG picked, the peaks of its histogram.
//
//   host SLICE WIDTH HEIGHT [stay]    SLICE: a file of WIDTH x HEIGHT bytes, one grey level each
//
// Without a fourth word it does its work, prints what it saw, and ends.
//   rustc --target x86_64-pc-windows-msvc host.rs -L FOLDER\lib     (kit_panels_c.lib)
//   rustc --target x86_64-pc-windows-gnu host.rs -L FOLDER\lib      (libkit_panels_c.dll.a)
// The DLLs of FOLDER\bin stand beside the program.
mod kit_panels;

use kit_panels::*;
use std::ffi::{c_void, CStr};
use std::os::raw::{c_char, c_int};
use std::ptr::null_mut;

/// What is asked of the window system; a program with a crate for windows takes that.
#[repr(C)]
struct Message {
    window: *mut c_void,
    message: u32,
    wparam: u64,
    lparam: i64,
    time: u32,
    x: i32,
    y: i32,
    reserved: u32,
}
#[link(name = "user32")]
extern "system" {
    fn CreateWindowExA(extended: u32, class: *const c_char, title: *const c_char, style: u32, x: c_int, y: c_int,
        width: c_int, height: c_int, parent: *mut c_void, menu: *mut c_void, module: *mut c_void, data: *mut c_void)
        -> *mut c_void;
    fn IsWindow(window: *mut c_void) -> c_int;
    fn GetMessageA(message: *mut Message, window: *mut c_void, first: u32, last: u32) -> c_int;
    fn PeekMessageA(message: *mut Message, window: *mut c_void, first: u32, last: u32, remove: u32) -> c_int;
    fn TranslateMessage(message: *const Message) -> c_int;
    fn DispatchMessageA(message: *const Message) -> i64;
}

/// Must not panic: nothing may unwind through the DLL.
unsafe extern "C" fn on_event(_context: *mut c_void, event: *const kit_event) -> i32 {
    let event = &*event;
    if event.kind == KIT_EVENT_PICKED {
        println!("picked {}", event.index);
    } else if event.kind == KIT_EVENT_MESSAGE && event.level <= 2 {
        println!("message: {}", CStr::from_ptr(event.text).to_string_lossy());
    }
    0
}

fn check(status: i32, handle: u64) {
    if status != KIT_OK {
        let mut text = [0 as c_char; 400];
        unsafe {
            kit_error_text(handle, text.as_mut_ptr(), 400, null_mut());
            panic!("{}", CStr::from_ptr(text.as_ptr()).to_string_lossy());
        }
    }
}

fn make_panel(window: *mut c_void, kind: u32, option: i32, x: i32, y: i32, width: i32, height: i32) -> u64 {
    let settings = kit_panel_settings { kind, option, own_window: 1, window, x, y, width, height, ..Default::default() };
    let mut panel = 0;
    check(unsafe { kit_panel_create(&settings, &mut panel) }, 0);
    panel
}

fn load_slice(path: &str, width: i32, height: i32) {
    let pixels = std::fs::read(path).expect("the slice cannot be read");
    assert_eq!(pixels.len(), (width * height) as usize, "the slice has another size");
    let settings = kit_volume_settings {
        pixel: KIT_PIXEL_UNSIGNED_8,
        width,
        height,
        slices: 1,
        pixels: pixels.as_ptr() as *const c_void, // copied
        name: b"Brain\0".as_ptr() as *const c_char,
        ..Default::default()
    };
    let mut volume = 0;
    check(unsafe { kit_volume_create(&settings, &mut volume) }, 0);
    check(unsafe { kit_volume_show(volume, 0) }, volume);
    check(unsafe { kit_volume_select(volume, 0, 1) }, volume);
}

fn print_peaks(histogram: u64) {
    let mut count = 0;
    check(unsafe { kit_histogram_fit(histogram, KIT_FIT_GAUSSIAN, 0) }, histogram);
    check(unsafe { kit_histogram_peaks(histogram, null_mut(), 0, &mut count) }, histogram);
    let mut peaks = vec![kit_peak::default(); count as usize];
    if count > 0 {
        check(unsafe { kit_histogram_peaks(histogram, peaks.as_mut_ptr(), count, &mut count) }, histogram);
    }
    for peak in peaks {
        println!("peak at {:.3}, height {:.1}, full width {:.3}, {:.0} pixels", peak.centre, peak.height,
            peak.full_width, peak.area_pixels);
    }
}

fn main() {
    let words: Vec<String> = std::env::args().collect();
    let is_staying = words.len() > 4;
    let settings = kit_settings { abi_version: KIT_ABI_VERSION, on_event: Some(on_event), ..Default::default() };
    check(unsafe { kit_start(&settings) }, 0);
    let class = b"STATIC\0".as_ptr() as *const c_char;
    let title = b"Panels\0".as_ptr() as *const c_char;
    let window = unsafe {
        CreateWindowExA(0, class, title, 0x10CF0000, 0, 0, 840, 760, null_mut(), null_mut(), null_mut(), null_mut())
    };
    let tags = make_panel(window, KIT_PANEL_TAG, 0, 0, 0, 400, 120);
    make_panel(window, KIT_PANEL_MARKER, 0, 0, 120, 400, 80);
    make_panel(window, KIT_PANEL_BRUSH, 0, 0, 200, 400, 50);
    make_panel(window, KIT_PANEL_PROPAGATE, 0, 0, 250, 400, 60);
    let histogram = make_panel(window, KIT_PANEL_HISTOGRAM, 0, 0, 310, 400, 400);
    make_panel(window, KIT_PANEL_CLASSES, 2, 400, 0, 420, 350);
    make_panel(window, KIT_PANEL_FILES, 0, 400, 350, 420, 360);
    if words.len() > 3 {
        load_slice(&words[1], words[2].parse().expect("a width"), words[3].parse().expect("a height"));
        check(unsafe { kit_panel_message(tags, 0x201, 1, 250 | (45 << 16), null_mut()) }, tags); // a click: TAG 2
        check(unsafe { kit_panel_message(tags, 0x202, 0, 250 | (45 << 16), null_mut()) }, tags);
        print_peaks(histogram);
    }
    let mut message: Message = unsafe { std::mem::zeroed() };
    unsafe {
        while if is_staying { IsWindow(window) != 0 && GetMessageA(&mut message, null_mut(), 0, 0) > 0 }
              else { PeekMessageA(&mut message, null_mut(), 0, 0, 1) != 0 } {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
    check(unsafe { kit_stop() }, 0);
}
