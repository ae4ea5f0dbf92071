// The C interface for C#. Written by scripts/lints/c_description from kit_panels.h: do not change it here.
using System;
using System.Runtime.InteropServices;

public static class KitPanels
{
    const string Library = "kit_panels_c.dll";

    public const uint KIT_ABI_VERSION = 0x00010001;
    public const int KIT_OK = 0;
    public const int KIT_ERROR_ARGUMENT = -1;
    public const int KIT_ERROR_HANDLE = -2;
    public const int KIT_ERROR_KIND = -3;
    public const int KIT_ERROR_SIZE = -4;
    public const int KIT_ERROR_MEMORY = -5;
    public const int KIT_ERROR_STATE = -6;
    public const int KIT_ERROR_THREAD = -7;
    public const int KIT_ERROR_MISSING = -8;
    public const int KIT_ERROR_ROOM = -9;
    public const int KIT_ERROR_SYSTEM = -10;
    public const int KIT_ERROR_TEXT = -11;
    public const int KIT_ERROR_INTERNAL = -12;
    public const uint KIT_EVENT_MESSAGE = 1;
    public const uint KIT_EVENT_UPDATE = 2;
    public const uint KIT_EVENT_REDRAW = 3;
    public const uint KIT_EVENT_FRAME = 4;
    public const uint KIT_EVENT_PICKED = 5;
    public const uint KIT_EVENT_PROPAGATE = 6;
    public const int KIT_THEME_DARK = 0;
    public const int KIT_THEME_LIGHT = 1;
    public const uint KIT_PANEL_TAG = 1;
    public const uint KIT_PANEL_MARKER = 2;
    public const uint KIT_PANEL_BRUSH = 3;
    public const uint KIT_PANEL_PROPAGATE = 4;
    public const uint KIT_PANEL_HISTOGRAM = 5;
    public const uint KIT_PANEL_CLASSES = 6;
    public const uint KIT_PANEL_FILES = 7;
    public const int KIT_TAG_CHECK_SELECT = 0x0001;
    public const int KIT_TAG_CHECK_LOCK = 0x0010;
    public const int KIT_TAG_GREY_SELECTION = 0x0020;
    public const int KIT_TAG_CHECK_ENABLE = 0x0100;
    public const int KIT_TAG_GREY_DISABLED = 0x0200;
    public const int KIT_TAG_THRESHOLDS = 0x1000;
    public const int KIT_DATABASE_EDIT = 0x10;
    public const int KIT_DATABASE_ADD = 0x20;
    public const uint KIT_INPUT_PRESS = 1;
    public const uint KIT_INPUT_RELEASE = 2;
    public const uint KIT_INPUT_MOTION = 3;
    public const uint KIT_INPUT_WHEEL = 4;
    public const uint KIT_INPUT_KEY = 5;
    public const uint KIT_INPUT_LEAVE = 6;
    public const uint KIT_BUTTON_LEFT = 0x10;
    public const uint KIT_BUTTON_MIDDLE = 0x20;
    public const uint KIT_BUTTON_RIGHT = 0x40;
    public const int KIT_KEY_SPECIAL = 0x800;
    public const ulong KIT_UPDATE_ALL = 0x1000000000000000;
    public const ulong KIT_UPDATE_TAG_LABEL = 0x0000800000000000;
    public const ulong KIT_UPDATE_TAG_SELECT = 0x0000400000000000;
    public const ulong KIT_UPDATE_TAG_ENABLE = 0x0000200000000000;
    public const ulong KIT_UPDATE_TAG_LOCK = 0x0000100000000000;
    public const ulong KIT_UPDATE_COLOR_COMPONENT = 0x0000008000000000;
    public const ulong KIT_UPDATE_TAG_TABLE = 0x0000004000000000;
    public const ulong KIT_UPDATE_WINDOW = 0x0000000100110000;
    public const ulong KIT_UPDATE_HISTOGRAM_PAINT = 0x0000000080000000;
    public const ulong KIT_UPDATE_HISTOGRAM_DATA = 0x0000000001000000;
    public const ulong KIT_UPDATE_BRUSH = 0x0000000000800000;
    public const ulong KIT_UPDATE_TAG_CURRENT = 0x0000000000400000;
    public const ulong KIT_UPDATE_FRAME = 0x0000000000200000;
    public const ulong KIT_UPDATE_MOUSE = 0x0000000000040000;
    public const ulong KIT_UPDATE_STRUCTURE = 0x0000000000000400;
    public const ulong KIT_UPDATE_SELECTION = 0x0000000000000100;
    public const ulong KIT_UPDATE_LEVEL_3D = 0x0000000000000004;
    public const ulong KIT_UPDATE_LEVEL_2D = 0x0000000000000002;
    public const ulong KIT_UPDATE_LEVEL_1D = 0x0000000000000001;
    public const uint KIT_LABEL_ENABLED = 0x1;
    public const uint KIT_LABEL_SELECTED = 0x2;
    public const uint KIT_LABEL_LOCKED = 0x4;
    public const uint KIT_VARIABLE_UNSIGNED_8 = 1;
    public const uint KIT_VARIABLE_SIGNED_16 = 2;
    public const uint KIT_VARIABLE_UNSIGNED_16 = 3;
    public const uint KIT_VARIABLE_SIGNED_32 = 4;
    public const uint KIT_VARIABLE_UNSIGNED_32 = 5;
    public const uint KIT_VARIABLE_FLOAT = 6;
    public const uint KIT_VARIABLE_TEXT = 7;
    public const uint KIT_VARIABLE_OBJECT = 8;
    public const uint KIT_PIXEL_UNSIGNED_8 = 1;
    public const uint KIT_PIXEL_SIGNED_16 = 2;
    public const uint KIT_PIXEL_UNSIGNED_16 = 3;
    public const uint KIT_PIXEL_SIGNED_32 = 4;
    public const uint KIT_PIXEL_COLOR = 5;
    public const uint KIT_FIT_GAUSSIAN = 1;
    public const uint KIT_FIT_SEGMENTS = 2;
    public const uint KIT_FIT_GAUSSIAN_NEXT = 3;
    public const uint KIT_PEAK_GAUSSIAN = 2;
    public const uint KIT_PEAK_SEGMENT = 4;
    public const uint KIT_DOUBT_HEIGHT = 1;
    public const uint KIT_DOUBT_WIDTH = 2;
    public const uint KIT_DOUBT_CENTRE = 4;

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate int kit_event_function(IntPtr context, ref kit_event @event);

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate int kit_row_function(IntPtr context, int slice, int row, IntPtr @out);

    [StructLayout(LayoutKind.Sequential)]
    public struct kit_event
    {
        public uint size;
        public uint kind;
        public ulong panel;
        public ulong @object;
        public ulong flags;
        public int level;
        public int index;
        public int from;
        public int reserved;
        public IntPtr text;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct kit_settings
    {
        public uint size;
        public uint abi_version;
        public kit_event_function on_event;
        public IntPtr context;
        public IntPtr icon_folder;
        public float scale;
        public int theme;
        public int contract_checks;
        public int traces;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct kit_panel_settings
    {
        public uint size;
        public uint kind;
        public int option;
        public int own_window;
        public IntPtr window;
        public int x;
        public int y;
        public int width;
        public int height;
        public int axis_up;
        public byte red;
        public byte green;
        public byte blue;
        public byte border;
        public int font_height;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct kit_input
    {
        public uint size;
        public uint kind;
        public int x;
        public int y;
        public uint buttons;
        public int value;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct kit_label
    {
        public uint size;
        public uint flags;
        public IntPtr text;
        public float threshold_min;
        public float threshold_max;
        public byte red;
        public byte green;
        public byte blue;
        public byte reserved;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct kit_volume_settings
    {
        public uint size;
        public uint pixel;
        public int width;
        public int height;
        public int slices;
        public float slope;
        public float intercept;
        public uint modality;
        public IntPtr pixels;
        public long row_stride;
        public long slice_stride;
        public kit_row_function on_row;
        public IntPtr context;
        public IntPtr name;
        public IntPtr descriptor;
        public int times;
        public int reserved;
        public long time_stride;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct kit_histogram
    {
        public uint size;
        public uint bins;
        public float origin;
        public float bin_width;
        public uint most;
        public uint reserved;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct kit_peak
    {
        public uint size;
        public uint kind;
        public uint doubt;
        public uint has_errors;
        public int first;
        public int last;
        public double centre;
        public double height;
        public double full_width;
        public double area_pixels;
        public double area_levels;
        public double centre_error;
        public double height_error;
        public double full_width_error;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct kit_range
    {
        public uint size;
        public uint tag;
        public float lowest;
        public float highest;
    }

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern uint kit_panels_abi_version();

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern IntPtr kit_status_text(int status);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_error_text(ulong handle, byte[] @out, uint room, out uint needed);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_module_version(byte[] @out, uint room, out uint needed);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_start(ref kit_settings settings);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_stop();

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_answer_text([MarshalAs(UnmanagedType.LPUTF8Str)] string path);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_deliver();

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_panel_create(ref kit_panel_settings settings, out ulong panel);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_panel_destroy(ulong panel);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_panel_place(ulong panel, int x, int y, int width, int height);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_panel_height(ulong panel, uint rows, out int height);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_panel_draw(ulong panel);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_panel_window(ulong panel, out IntPtr window);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_panel_kind(ulong panel, out uint kind);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_panel_input(ulong panel, ref kit_input input, out int used);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_panel_message(ulong panel, uint message, ulong wparam, long lparam, out int used);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_panel_update(ulong panel, ulong flags);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_tags_set(kit_label[] labels, uint count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_tags_count(out uint count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_tag_set(uint index, ref kit_label label);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_tag_get(uint index, ref kit_label label);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_tag_text(uint index, byte[] @out, uint room, out uint needed);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_tag_pick(uint index);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_tag_picked(out uint index);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_markers_set(kit_label[] labels, uint count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_markers_count(out uint count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_marker_set(uint index, ref kit_label label);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_marker_get(uint index, ref kit_label label);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_marker_text(uint index, byte[] @out, uint room, out uint needed);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_marker_pick(uint index);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_marker_picked(out uint index);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_brushes_set(ushort[] sizes, uint count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_brushes_count(out uint count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_brush_size(uint index, out ushort size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_brush_pick(uint index);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_brush_picked(out uint index);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_brush_mask(uint index, [In, Out] byte[] @out, uint room, out uint needed, out uint side);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_variable_type([MarshalAs(UnmanagedType.LPUTF8Str)] string name, out uint type, out uint count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_variable_set_number([MarshalAs(UnmanagedType.LPUTF8Str)] string name, double value);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_variable_number([MarshalAs(UnmanagedType.LPUTF8Str)] string name, out double value);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_variable_set_text([MarshalAs(UnmanagedType.LPUTF8Str)] string name, [MarshalAs(UnmanagedType.LPUTF8Str)] string text);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_variable_text([MarshalAs(UnmanagedType.LPUTF8Str)] string name, byte[] @out, uint room, out uint needed);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_variable_set_array([MarshalAs(UnmanagedType.LPUTF8Str)] string name, uint type, IntPtr values, uint count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_variable_array([MarshalAs(UnmanagedType.LPUTF8Str)] string name, uint type, IntPtr @out, uint room, out uint needed);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_create(ref kit_volume_settings settings, out ulong volume);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_destroy(ulong volume);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_show(ulong volume, int slice);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_shown(out ulong volume, out int slice);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_select(ulong volume, int slice, int selected);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_selected(ulong volume, int slice, out int selected);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_slices(ulong volume, out int slices);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_times(ulong volume, out int times);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_time_show(ulong volume, int time);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_time_shown(ulong volume, out int time);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_mask_set(ulong volume, int slice, byte[] mask, long row_stride);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_pointer(ulong volume, int slice, float x, float y);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_volume_histogram(ulong volume, int slice, ref kit_histogram histogram, [In, Out] uint[] counts, uint room, out uint needed);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_histogram_read(ulong panel, ref kit_histogram histogram, [In, Out] uint[] counts, uint room, out uint needed);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_histogram_fit(ulong panel, uint method, uint most);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_histogram_peaks(ulong panel, [In, Out] kit_peak[] peaks, uint room, out uint needed);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_histogram_export(ulong panel, [MarshalAs(UnmanagedType.LPUTF8Str)] string path);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_histogram_ranges(ulong panel, kit_range[] ranges, uint count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_class_create(uint dimension, [MarshalAs(UnmanagedType.LPUTF8Str)] string title, [MarshalAs(UnmanagedType.LPUTF8Str)] string name, [MarshalAs(UnmanagedType.LPUTF8Str)] string icon, ulong parent, out ulong made);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_class_destroy(ulong handle);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_class_move(ulong handle, ulong parent, int position);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_class_place(ulong handle, out ulong parent, out int position);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_class_name(ulong handle, byte[] @out, uint room, out uint needed);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_class_select(ulong handle, int selected);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_class_selected(ulong handle, out int selected);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_file_create([MarshalAs(UnmanagedType.LPUTF8Str)] string path, ulong volume, out ulong file);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_file_destroy(ulong file);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_file_access(ulong file, int slice, int allowed);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_contract_check(out uint count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int kit_contract_text(uint index, byte[] @out, uint room, out uint needed);
}
