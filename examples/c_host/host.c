/* A host in plain C: all panels in one window, an image slice, a TAG picked and renamed, the peaks of its histogram.
 *
 *   c_host SLICE WIDTH HEIGHT    SLICE: a file of WIDTH x HEIGHT bytes, one grey level each
 *
 * It needs kit_panels.h and an import library, nothing of the panels' compiler. A fourth word: it stays open. */
#ifdef HOST_WITHOUT_SDK
#include "without_sdk.h"
#else
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>
#endif

#include "kit_panels.h"

static int failures = 0;
static void Check(kit_status status, kit_handle handle, const char* what) {
    char text[300] = "";
    if (status != KIT_OK) {
        kit_error_text(handle, text, sizeof text, NULL);
        printf("%s: %s (%s)\n", what, kit_status_text(status), text);
        ++failures;
    }
}

static int32_t On_Event(void* context, const kit_event* event) {
    (void)context;
    if (event->kind == KIT_EVENT_PICKED) {
        printf("picked %d\n", (int)event->index);
    } else if (event->kind == KIT_EVENT_UPDATE && (event->flags & KIT_UPDATE_TAG_LABEL) != 0) {
        char text[80] = "";
        Check(kit_tag_text(2, text, sizeof text, NULL), 0, "kit_tag_text");
        printf("TAG 2 is called %s\n", text);
    } else if (event->kind == KIT_EVENT_MESSAGE && event->level <= 2) {
        printf("message: %s\n", event->text);
    }
    return 0;
}

static kit_handle Make_Panel(HWND window, uint32_t kind, int32_t option, int32_t x, int32_t y, int32_t width,
                             int32_t height) {
    kit_panel_settings settings;
    kit_handle panel = 0;
    memset(&settings, 0, sizeof settings);
    settings.size = sizeof settings;
    settings.kind = kind;
    settings.option = option;
    settings.own_window = 1;
    settings.window = window;
    settings.x = x, settings.y = y;
    settings.width = width, settings.height = height;
    Check(kit_panel_create(&settings, &panel), 0, "kit_panel_create");
    return panel;
}

static kit_handle Load_Slice(const char* path, int32_t width, int32_t height) {
    const size_t size = (size_t)width * (size_t)height;
    unsigned char* pixels = malloc(size);
    FILE* file = fopen(path, "rb");
    kit_volume_settings settings;
    kit_handle volume = 0;
    kit_handle entry = 0;
    if (pixels == NULL || file == NULL || fread(pixels, 1, size, file) != size) {
        printf("%s cannot be read\n", path);
        ++failures;
    } else {
        memset(&settings, 0, sizeof settings);
        settings.size = sizeof settings;
        settings.pixel = KIT_PIXEL_UNSIGNED_8;
        settings.width = width;
        settings.height = height;
        settings.slices = 1;
        settings.pixels = pixels;
        settings.name = "Brain";
        Check(kit_volume_create(&settings, &volume), 0, "kit_volume_create");
        Check(kit_file_create(path, volume, &entry), volume, "kit_file_create");
        Check(kit_volume_show(volume, 0), volume, "kit_volume_show");
        Check(kit_volume_select(volume, 0, 1), volume, "kit_volume_select");
    }
    if (file != NULL)
        fclose(file);
    free(pixels); /* the volume has a copy */
    return volume;
}

static void Print_Peaks(kit_handle histogram) {
    kit_peak peaks[32];
    uint32_t nb = 0;
    peaks[0].size = sizeof peaks[0];
    Check(kit_histogram_fit(histogram, KIT_FIT_GAUSSIAN, 0), histogram, "kit_histogram_fit");
    Check(kit_histogram_peaks(histogram, peaks, 32, &nb), histogram, "kit_histogram_peaks");
    for (uint32_t at = 0; at < nb && at < 32; ++at) {
        printf("peak at %.3f, height %.1f, full width %.3f, %.0f pixels\n", peaks[at].centre, peaks[at].height,
               peaks[at].full_width, peaks[at].area_pixels);
    }
}

/* Picks and renames TAG 2 as a user does, by messages to the panel's window. */
static void Use_Tag_Panel(kit_handle tags) {
    static const char name[] = "Grey matter\r";
    void* window = NULL;
    Check(kit_panel_window(tags, &window), tags, "kit_panel_window");
    const LPARAM place = 250 | (45 << 16);
    SendMessageA(window, WM_LBUTTONDOWN, MK_LBUTTON, place);
    SendMessageA(window, WM_LBUTTONUP, 0, place);
    SendMessageA(window, WM_RBUTTONDOWN, MK_RBUTTON, place);
    SendMessageA(window, WM_RBUTTONUP, 0, place);
    for (const char* key = name; *key != 0; ++key) {
        SendMessageA(window, WM_CHAR, (WPARAM)*key, 0);
    }
}

int main(int argc, char** argv) {
    const int is_staying = argc > 4;
    kit_settings settings;
    MSG message;
    if (argc < 4 || kit_panels_abi_version() >> 16 != KIT_ABI_VERSION >> 16) {
        return 2;
    }
    memset(&settings, 0, sizeof settings);
    settings.size = sizeof settings;
    settings.abi_version = KIT_ABI_VERSION;
    settings.on_event = On_Event;
    Check(kit_start(&settings), 0, "kit_start");
    HWND window = CreateWindowExA(0, "STATIC", "Panels", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 840, 760, NULL, NULL,
                                  NULL, NULL);
    const kit_handle tags = Make_Panel(window, KIT_PANEL_TAG, 0, 0, 0, 400, 120);
    Make_Panel(window, KIT_PANEL_MARKER, 0, 0, 120, 400, 80);
    Make_Panel(window, KIT_PANEL_BRUSH, 0, 0, 200, 400, 50);
    Make_Panel(window, KIT_PANEL_PROPAGATE, 0, 0, 250, 400, 60);
    const kit_handle histogram = Make_Panel(window, KIT_PANEL_HISTOGRAM, 0, 0, 310, 400, 400);
    Make_Panel(window, KIT_PANEL_CLASSES, 2, 400, 0, 420, 350);
    Make_Panel(window, KIT_PANEL_FILES, 0, 400, 350, 420, 360);
    const kit_handle volume = Load_Slice(argv[1], atoi(argv[2]), atoi(argv[3]));
    while (is_staying ? IsWindow(window) && GetMessageA(&message, NULL, 0, 0) > 0
                      : PeekMessageA(&message, NULL, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    if (volume != 0 && !is_staying) {
        Use_Tag_Panel(tags);
        Print_Peaks(histogram);
    }
    Check(kit_stop(), 0, "kit_stop");
    printf("%d failures\n", failures);
    return failures == 0 ? 0 : 1;
}
