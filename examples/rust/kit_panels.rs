// The C interface for Rust. Written by scripts/lints/c_description from kit_panels.h: do not change it here.
#![allow(non_camel_case_types, dead_code)]
use std::ffi::c_void;
use std::os::raw::c_char;

pub const KIT_ABI_VERSION: u32 = 0x00010001;
pub const KIT_OK: i32 = 0;
pub const KIT_ERROR_ARGUMENT: i32 = -1;
pub const KIT_ERROR_HANDLE: i32 = -2;
pub const KIT_ERROR_KIND: i32 = -3;
pub const KIT_ERROR_SIZE: i32 = -4;
pub const KIT_ERROR_MEMORY: i32 = -5;
pub const KIT_ERROR_STATE: i32 = -6;
pub const KIT_ERROR_THREAD: i32 = -7;
pub const KIT_ERROR_MISSING: i32 = -8;
pub const KIT_ERROR_ROOM: i32 = -9;
pub const KIT_ERROR_SYSTEM: i32 = -10;
pub const KIT_ERROR_TEXT: i32 = -11;
pub const KIT_ERROR_INTERNAL: i32 = -12;
pub const KIT_EVENT_MESSAGE: u32 = 1;
pub const KIT_EVENT_UPDATE: u32 = 2;
pub const KIT_EVENT_REDRAW: u32 = 3;
pub const KIT_EVENT_FRAME: u32 = 4;
pub const KIT_EVENT_PICKED: u32 = 5;
pub const KIT_EVENT_PROPAGATE: u32 = 6;
pub const KIT_THEME_DARK: i32 = 0;
pub const KIT_THEME_LIGHT: i32 = 1;
pub const KIT_PANEL_TAG: u32 = 1;
pub const KIT_PANEL_MARKER: u32 = 2;
pub const KIT_PANEL_BRUSH: u32 = 3;
pub const KIT_PANEL_PROPAGATE: u32 = 4;
pub const KIT_PANEL_HISTOGRAM: u32 = 5;
pub const KIT_PANEL_CLASSES: u32 = 6;
pub const KIT_PANEL_FILES: u32 = 7;
pub const KIT_TAG_CHECK_SELECT: i32 = 0x0001;
pub const KIT_TAG_CHECK_LOCK: i32 = 0x0010;
pub const KIT_TAG_GREY_SELECTION: i32 = 0x0020;
pub const KIT_TAG_CHECK_ENABLE: i32 = 0x0100;
pub const KIT_TAG_GREY_DISABLED: i32 = 0x0200;
pub const KIT_TAG_THRESHOLDS: i32 = 0x1000;
pub const KIT_DATABASE_EDIT: i32 = 0x10;
pub const KIT_DATABASE_ADD: i32 = 0x20;
pub const KIT_INPUT_PRESS: u32 = 1;
pub const KIT_INPUT_RELEASE: u32 = 2;
pub const KIT_INPUT_MOTION: u32 = 3;
pub const KIT_INPUT_WHEEL: u32 = 4;
pub const KIT_INPUT_KEY: u32 = 5;
pub const KIT_INPUT_LEAVE: u32 = 6;
pub const KIT_BUTTON_LEFT: u32 = 0x10;
pub const KIT_BUTTON_MIDDLE: u32 = 0x20;
pub const KIT_BUTTON_RIGHT: u32 = 0x40;
pub const KIT_KEY_SPECIAL: i32 = 0x800;
pub const KIT_UPDATE_ALL: u64 = 0x1000000000000000;
pub const KIT_UPDATE_TAG_LABEL: u64 = 0x0000800000000000;
pub const KIT_UPDATE_TAG_SELECT: u64 = 0x0000400000000000;
pub const KIT_UPDATE_TAG_ENABLE: u64 = 0x0000200000000000;
pub const KIT_UPDATE_TAG_LOCK: u64 = 0x0000100000000000;
pub const KIT_UPDATE_COLOR_COMPONENT: u64 = 0x0000008000000000;
pub const KIT_UPDATE_TAG_TABLE: u64 = 0x0000004000000000;
pub const KIT_UPDATE_WINDOW: u64 = 0x0000000100110000;
pub const KIT_UPDATE_HISTOGRAM_PAINT: u64 = 0x0000000080000000;
pub const KIT_UPDATE_HISTOGRAM_DATA: u64 = 0x0000000001000000;
pub const KIT_UPDATE_BRUSH: u64 = 0x0000000000800000;
pub const KIT_UPDATE_TAG_CURRENT: u64 = 0x0000000000400000;
pub const KIT_UPDATE_FRAME: u64 = 0x0000000000200000;
pub const KIT_UPDATE_MOUSE: u64 = 0x0000000000040000;
pub const KIT_UPDATE_STRUCTURE: u64 = 0x0000000000000400;
pub const KIT_UPDATE_SELECTION: u64 = 0x0000000000000100;
pub const KIT_UPDATE_LEVEL_3D: u64 = 0x0000000000000004;
pub const KIT_UPDATE_LEVEL_2D: u64 = 0x0000000000000002;
pub const KIT_UPDATE_LEVEL_1D: u64 = 0x0000000000000001;
pub const KIT_LABEL_ENABLED: u32 = 0x1;
pub const KIT_LABEL_SELECTED: u32 = 0x2;
pub const KIT_LABEL_LOCKED: u32 = 0x4;
pub const KIT_VARIABLE_UNSIGNED_8: u32 = 1;
pub const KIT_VARIABLE_SIGNED_16: u32 = 2;
pub const KIT_VARIABLE_UNSIGNED_16: u32 = 3;
pub const KIT_VARIABLE_SIGNED_32: u32 = 4;
pub const KIT_VARIABLE_UNSIGNED_32: u32 = 5;
pub const KIT_VARIABLE_FLOAT: u32 = 6;
pub const KIT_VARIABLE_TEXT: u32 = 7;
pub const KIT_VARIABLE_OBJECT: u32 = 8;
pub const KIT_PIXEL_UNSIGNED_8: u32 = 1;
pub const KIT_PIXEL_SIGNED_16: u32 = 2;
pub const KIT_PIXEL_UNSIGNED_16: u32 = 3;
pub const KIT_PIXEL_SIGNED_32: u32 = 4;
pub const KIT_PIXEL_COLOR: u32 = 5;
pub const KIT_FIT_GAUSSIAN: u32 = 1;
pub const KIT_FIT_SEGMENTS: u32 = 2;
pub const KIT_FIT_GAUSSIAN_NEXT: u32 = 3;
pub const KIT_PEAK_GAUSSIAN: u32 = 2;
pub const KIT_PEAK_SEGMENT: u32 = 4;
pub const KIT_DOUBT_HEIGHT: u32 = 1;
pub const KIT_DOUBT_WIDTH: u32 = 2;
pub const KIT_DOUBT_CENTRE: u32 = 4;

/// Must not unwind.
pub type kit_event_function = unsafe extern "C" fn(context: *mut c_void, event: *const kit_event) -> i32;

/// Must not unwind.
pub type kit_row_function = unsafe extern "C" fn(context: *mut c_void, slice: i32, row: i32, out: *mut c_void) -> i32;

#[repr(C)]
#[derive(Clone, Copy)]
pub struct kit_event {
    pub size: u32,
    pub kind: u32,
    pub panel: u64,
    pub object: u64,
    pub flags: u64,
    pub level: i32,
    pub index: i32,
    pub from: i32,
    pub reserved: i32,
    pub text: *const c_char,
}

impl Default for kit_event {
    /// All zero but the size.
    fn default() -> Self {
        let mut made: Self = unsafe { std::mem::zeroed() };
        made.size = std::mem::size_of::<Self>() as u32;
        made
    }
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct kit_settings {
    pub size: u32,
    pub abi_version: u32,
    pub on_event: Option<kit_event_function>,
    pub context: *mut c_void,
    pub icon_folder: *const c_char,
    pub scale: f32,
    pub theme: i32,
    pub contract_checks: i32,
    pub traces: i32,
}

impl Default for kit_settings {
    /// All zero but the size.
    fn default() -> Self {
        let mut made: Self = unsafe { std::mem::zeroed() };
        made.size = std::mem::size_of::<Self>() as u32;
        made
    }
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct kit_panel_settings {
    pub size: u32,
    pub kind: u32,
    pub option: i32,
    pub own_window: i32,
    pub window: *mut c_void,
    pub x: i32,
    pub y: i32,
    pub width: i32,
    pub height: i32,
    pub axis_up: i32,
    pub red: u8,
    pub green: u8,
    pub blue: u8,
    pub border: u8,
    pub font_height: i32,
}

impl Default for kit_panel_settings {
    /// All zero but the size.
    fn default() -> Self {
        let mut made: Self = unsafe { std::mem::zeroed() };
        made.size = std::mem::size_of::<Self>() as u32;
        made
    }
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct kit_input {
    pub size: u32,
    pub kind: u32,
    pub x: i32,
    pub y: i32,
    pub buttons: u32,
    pub value: i32,
}

impl Default for kit_input {
    /// All zero but the size.
    fn default() -> Self {
        let mut made: Self = unsafe { std::mem::zeroed() };
        made.size = std::mem::size_of::<Self>() as u32;
        made
    }
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct kit_label {
    pub size: u32,
    pub flags: u32,
    pub text: *const c_char,
    pub threshold_min: f32,
    pub threshold_max: f32,
    pub red: u8,
    pub green: u8,
    pub blue: u8,
    pub reserved: u8,
}

impl Default for kit_label {
    /// All zero but the size.
    fn default() -> Self {
        let mut made: Self = unsafe { std::mem::zeroed() };
        made.size = std::mem::size_of::<Self>() as u32;
        made
    }
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct kit_volume_settings {
    pub size: u32,
    pub pixel: u32,
    pub width: i32,
    pub height: i32,
    pub slices: i32,
    pub slope: f32,
    pub intercept: f32,
    pub modality: u32,
    pub pixels: *const c_void,
    pub row_stride: i64,
    pub slice_stride: i64,
    pub on_row: Option<kit_row_function>,
    pub context: *mut c_void,
    pub name: *const c_char,
    pub descriptor: *const c_char,
    pub times: i32,
    pub reserved: i32,
    pub time_stride: i64,
}

impl Default for kit_volume_settings {
    /// All zero but the size.
    fn default() -> Self {
        let mut made: Self = unsafe { std::mem::zeroed() };
        made.size = std::mem::size_of::<Self>() as u32;
        made
    }
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct kit_histogram {
    pub size: u32,
    pub bins: u32,
    pub origin: f32,
    pub bin_width: f32,
    pub most: u32,
    pub reserved: u32,
}

impl Default for kit_histogram {
    /// All zero but the size.
    fn default() -> Self {
        let mut made: Self = unsafe { std::mem::zeroed() };
        made.size = std::mem::size_of::<Self>() as u32;
        made
    }
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct kit_peak {
    pub size: u32,
    pub kind: u32,
    pub doubt: u32,
    pub has_errors: u32,
    pub first: i32,
    pub last: i32,
    pub centre: f64,
    pub height: f64,
    pub full_width: f64,
    pub area_pixels: f64,
    pub area_levels: f64,
    pub centre_error: f64,
    pub height_error: f64,
    pub full_width_error: f64,
}

impl Default for kit_peak {
    /// All zero but the size.
    fn default() -> Self {
        let mut made: Self = unsafe { std::mem::zeroed() };
        made.size = std::mem::size_of::<Self>() as u32;
        made
    }
}

#[repr(C)]
#[derive(Clone, Copy)]
pub struct kit_range {
    pub size: u32,
    pub tag: u32,
    pub lowest: f32,
    pub highest: f32,
}

impl Default for kit_range {
    /// All zero but the size.
    fn default() -> Self {
        let mut made: Self = unsafe { std::mem::zeroed() };
        made.size = std::mem::size_of::<Self>() as u32;
        made
    }
}

#[link(name = "kit_panels_c")]
extern "C" {
    pub fn kit_panels_abi_version() -> u32;
    pub fn kit_status_text(status: i32) -> *const c_char;
    pub fn kit_error_text(handle: u64, out: *mut c_char, room: u32, needed: *mut u32) -> i32;
    pub fn kit_module_version(out: *mut c_char, room: u32, needed: *mut u32) -> i32;
    pub fn kit_start(settings: *const kit_settings) -> i32;
    pub fn kit_stop() -> i32;
    pub fn kit_answer_text(path: *const c_char) -> i32;
    pub fn kit_deliver() -> i32;
    pub fn kit_panel_create(settings: *const kit_panel_settings, panel: *mut u64) -> i32;
    pub fn kit_panel_destroy(panel: u64) -> i32;
    pub fn kit_panel_place(panel: u64, x: i32, y: i32, width: i32, height: i32) -> i32;
    pub fn kit_panel_height(panel: u64, rows: u32, height: *mut i32) -> i32;
    pub fn kit_panel_draw(panel: u64) -> i32;
    pub fn kit_panel_window(panel: u64, window: *mut *mut c_void) -> i32;
    pub fn kit_panel_kind(panel: u64, kind: *mut u32) -> i32;
    pub fn kit_panel_input(panel: u64, input: *const kit_input, used: *mut i32) -> i32;
    pub fn kit_panel_message(panel: u64, message: u32, wparam: u64, lparam: i64, used: *mut i32) -> i32;
    pub fn kit_panel_update(panel: u64, flags: u64) -> i32;
    pub fn kit_tags_set(labels: *const kit_label, count: u32) -> i32;
    pub fn kit_tags_count(count: *mut u32) -> i32;
    pub fn kit_tag_set(index: u32, label: *const kit_label) -> i32;
    pub fn kit_tag_get(index: u32, label: *mut kit_label) -> i32;
    pub fn kit_tag_text(index: u32, out: *mut c_char, room: u32, needed: *mut u32) -> i32;
    pub fn kit_tag_pick(index: u32) -> i32;
    pub fn kit_tag_picked(index: *mut u32) -> i32;
    pub fn kit_markers_set(labels: *const kit_label, count: u32) -> i32;
    pub fn kit_markers_count(count: *mut u32) -> i32;
    pub fn kit_marker_set(index: u32, label: *const kit_label) -> i32;
    pub fn kit_marker_get(index: u32, label: *mut kit_label) -> i32;
    pub fn kit_marker_text(index: u32, out: *mut c_char, room: u32, needed: *mut u32) -> i32;
    pub fn kit_marker_pick(index: u32) -> i32;
    pub fn kit_marker_picked(index: *mut u32) -> i32;
    pub fn kit_brushes_set(sizes: *const u16, count: u32) -> i32;
    pub fn kit_brushes_count(count: *mut u32) -> i32;
    pub fn kit_brush_size(index: u32, size: *mut u16) -> i32;
    pub fn kit_brush_pick(index: u32) -> i32;
    pub fn kit_brush_picked(index: *mut u32) -> i32;
    pub fn kit_brush_mask(index: u32, out: *mut u8, room: u32, needed: *mut u32, side: *mut u32) -> i32;
    pub fn kit_variable_type(name: *const c_char, r#type: *mut u32, count: *mut u32) -> i32;
    pub fn kit_variable_set_number(name: *const c_char, value: f64) -> i32;
    pub fn kit_variable_number(name: *const c_char, value: *mut f64) -> i32;
    pub fn kit_variable_set_text(name: *const c_char, text: *const c_char) -> i32;
    pub fn kit_variable_text(name: *const c_char, out: *mut c_char, room: u32, needed: *mut u32) -> i32;
    pub fn kit_variable_set_array(name: *const c_char, r#type: u32, values: *const c_void, count: u32) -> i32;
    pub fn kit_variable_array(name: *const c_char, r#type: u32, out: *mut c_void, room: u32, needed: *mut u32) -> i32;
    pub fn kit_volume_create(settings: *const kit_volume_settings, volume: *mut u64) -> i32;
    pub fn kit_volume_destroy(volume: u64) -> i32;
    pub fn kit_volume_show(volume: u64, slice: i32) -> i32;
    pub fn kit_volume_shown(volume: *mut u64, slice: *mut i32) -> i32;
    pub fn kit_volume_select(volume: u64, slice: i32, selected: i32) -> i32;
    pub fn kit_volume_selected(volume: u64, slice: i32, selected: *mut i32) -> i32;
    pub fn kit_volume_slices(volume: u64, slices: *mut i32) -> i32;
    pub fn kit_volume_times(volume: u64, times: *mut i32) -> i32;
    pub fn kit_volume_time_show(volume: u64, time: i32) -> i32;
    pub fn kit_volume_time_shown(volume: u64, time: *mut i32) -> i32;
    pub fn kit_volume_mask_set(volume: u64, slice: i32, mask: *const u8, row_stride: i64) -> i32;
    pub fn kit_volume_pointer(volume: u64, slice: i32, x: f32, y: f32) -> i32;
    pub fn kit_volume_histogram(volume: u64, slice: i32, histogram: *mut kit_histogram, counts: *mut u32, room: u32, needed: *mut u32) -> i32;
    pub fn kit_histogram_read(panel: u64, histogram: *mut kit_histogram, counts: *mut u32, room: u32, needed: *mut u32) -> i32;
    pub fn kit_histogram_fit(panel: u64, method: u32, most: u32) -> i32;
    pub fn kit_histogram_peaks(panel: u64, peaks: *mut kit_peak, room: u32, needed: *mut u32) -> i32;
    pub fn kit_histogram_export(panel: u64, path: *const c_char) -> i32;
    pub fn kit_histogram_ranges(panel: u64, ranges: *const kit_range, count: u32) -> i32;
    pub fn kit_class_create(dimension: u32, title: *const c_char, name: *const c_char, icon: *const c_char, parent: u64, made: *mut u64) -> i32;
    pub fn kit_class_destroy(handle: u64) -> i32;
    pub fn kit_class_move(handle: u64, parent: u64, position: i32) -> i32;
    pub fn kit_class_place(handle: u64, parent: *mut u64, position: *mut i32) -> i32;
    pub fn kit_class_name(handle: u64, out: *mut c_char, room: u32, needed: *mut u32) -> i32;
    pub fn kit_class_select(handle: u64, selected: i32) -> i32;
    pub fn kit_class_selected(handle: u64, selected: *mut i32) -> i32;
    pub fn kit_file_create(path: *const c_char, volume: u64, file: *mut u64) -> i32;
    pub fn kit_file_destroy(file: u64) -> i32;
    pub fn kit_file_access(file: u64, slice: i32, allowed: i32) -> i32;
    pub fn kit_contract_check(count: *mut u32) -> i32;
    pub fn kit_contract_text(index: u32, out: *mut c_char, room: u32, needed: *mut u32) -> i32;
}
