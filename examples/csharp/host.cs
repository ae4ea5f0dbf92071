// A host in C#: a window with all panels, an image slice, the TAG that the user picks, the peaks of its histogram.
//
//   host SLICE WIDTH HEIGHT    SLICE: a file of WIDTH x HEIGHT bytes, one grey level each
//
// Built by the compiler of .NET or of the .NET Framework, as a program of 64 bits:
//   csc /platform:x64 host.cs KitPanels.cs        (the DLLs of FOLDER\bin stand beside the program)
// The project's tests do not build it.
using System;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;
using System.Windows.Forms;
using static KitPanels;

static class Host
{
    // The DLL keeps the function, not the delegate: without a field the collector would take it.
    static readonly kit_event_function onEvent = OnEvent;

    static void Check(int status, ulong handle)
    {
        if (status == KIT_OK)
            return;
        byte[] text = new byte[400];
        uint needed;
        kit_error_text(handle, text, (uint)text.Length, out needed);
        throw new InvalidOperationException(Text(text, needed));
    }

    // A text that was asked for: `needed` counts the zero at its end.
    static string Text(byte[] bytes, uint needed)
    {
        return Encoding.UTF8.GetString(bytes, 0, Math.Max(0, Math.Min((int)needed, bytes.Length) - 1));
    }

    // A text of an event: it ends with a zero. (.NET 5 and later have Marshal.PtrToStringUTF8.)
    static string Utf8(IntPtr text)
    {
        int length = 0;
        while (text != IntPtr.Zero && Marshal.ReadByte(text, length) != 0)
            ++length;
        byte[] bytes = new byte[length];
        if (length > 0)
            Marshal.Copy(text, bytes, 0, length);
        return Encoding.UTF8.GetString(bytes);
    }

    // Exceptions must not leave it: the DLL is no .NET.
    static int OnEvent(IntPtr context, ref kit_event told)
    {
        if (told.kind == KIT_EVENT_PICKED)
            Console.WriteLine("picked " + told.index);
        if (told.kind == KIT_EVENT_MESSAGE && told.level <= 2)
            Console.WriteLine("message: " + Utf8(told.text));
        return 0;
    }

    static ulong MakePanel(Control window, uint kind, int option, int x, int y, int width, int height)
    {
        kit_panel_settings settings = new kit_panel_settings();
        settings.size = (uint)Marshal.SizeOf(typeof(kit_panel_settings));
        settings.kind = kind;
        settings.option = option;
        settings.own_window = 1;
        settings.window = window.Handle;
        settings.x = x;
        settings.y = y;
        settings.width = width;
        settings.height = height;
        ulong panel;
        Check(kit_panel_create(ref settings, out panel), 0);
        return panel;
    }

    static void LoadSlice(string path, int width, int height)
    {
        // The volume has a copy: the array is pinned for the call only.
        GCHandle pixels = GCHandle.Alloc(File.ReadAllBytes(path), GCHandleType.Pinned);
        kit_volume_settings settings = new kit_volume_settings();
        settings.size = (uint)Marshal.SizeOf(typeof(kit_volume_settings));
        settings.pixel = KIT_PIXEL_UNSIGNED_8;
        settings.width = width;
        settings.height = height;
        settings.slices = 1;
        settings.pixels = pixels.AddrOfPinnedObject();
        ulong volume;
        Check(kit_volume_create(ref settings, out volume), 0);
        pixels.Free();
        Check(kit_volume_show(volume, 0), volume);
        Check(kit_volume_select(volume, 0, 1), volume);
    }

    static void PrintPeaks(ulong histogram)
    {
        uint count;
        Check(kit_histogram_fit(histogram, KIT_FIT_GAUSSIAN, 0), histogram);
        Check(kit_histogram_peaks(histogram, null, 0, out count), histogram);
        if (count == 0)
            return;
        kit_peak[] peaks = new kit_peak[count];
        peaks[0].size = (uint)Marshal.SizeOf(typeof(kit_peak));
        Check(kit_histogram_peaks(histogram, peaks, count, out count), histogram);
        foreach (kit_peak peak in peaks)
            Console.WriteLine("peak at {0:F3}, height {1:F1}, full width {2:F3}", peak.centre, peak.height, peak.full_width);
    }

    [STAThread]
    static void Main(string[] words)
    {
        kit_settings settings = new kit_settings();
        settings.size = (uint)Marshal.SizeOf(typeof(kit_settings));
        settings.abi_version = KIT_ABI_VERSION;
        settings.on_event = onEvent;
        Check(kit_start(ref settings), 0);
        Form window = new Form { Text = "Panels", Width = 840, Height = 760 };
        MakePanel(window, KIT_PANEL_TAG, 0, 0, 0, 400, 120);
        MakePanel(window, KIT_PANEL_MARKER, 0, 0, 120, 400, 80);
        MakePanel(window, KIT_PANEL_BRUSH, 0, 0, 200, 400, 50);
        MakePanel(window, KIT_PANEL_PROPAGATE, 0, 0, 250, 400, 60);
        ulong histogram = MakePanel(window, KIT_PANEL_HISTOGRAM, 0, 0, 310, 400, 400);
        MakePanel(window, KIT_PANEL_CLASSES, 2, 400, 0, 420, 350);
        MakePanel(window, KIT_PANEL_FILES, 0, 400, 350, 420, 360);
        if (words.Length == 3)
        {
            LoadSlice(words[0], int.Parse(words[1]), int.Parse(words[2]));
            PrintPeaks(histogram);
        }
        Application.Run(window);
        Check(kit_stop(), 0);
    }
}
