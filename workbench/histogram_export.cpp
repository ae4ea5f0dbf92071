#include "workbench/histogram_export.h"

#include <windows.h>

#include <commdlg.h>

#include <algorithm>

#include "histogram/histo_peak.h"
#include "workbench/file_dialog.h"
#include "workbench/model/text_file.h"
#include "workbench/volumes/message_text.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr std::size_t FILE_SIZE_MOST = 64U << 20U;  // bytes; 65,535 bins of 255 TAGs are less

}  // namespace

Export_Expected Histogram_Export::Wanted() const {
    Export_Expected wanted;
    const Histo_Data& data = *panel.data;
    const Histo_Record& record = *data.record;
    wanted.separator = variables.Separator();
    wanted.filler = variables.Filler();
    wanted.curve.counts = {record.counts, record.nb_bins};
    wanted.curve.origin = static_cast<double>(record.origin);
    wanted.curve.bin_width = static_cast<double>(record.bin_width);
    if (data.filtered != nullptr) {
        wanted.curve.filtered = {data.filtered, static_cast<std::size_t>(data.curve_nb)};
    }
    for (int tag = 1; tag < variables.Tag_Nb(); ++tag) {
        const auto at = static_cast<std::size_t>(tag);
        const char* label = variables.Tag_Labels()[at];
        const std::string number = std::to_string(tag);
        Export_Column column;
        column.name = label != nullptr ? label : "TAG " + std::string(3 - number.size(), ' ') + number;
        column.low = variables.Threshold_Min()[at];
        column.high = variables.Threshold_Max()[at];
        column.is_set = column.low != TAG_THRESHOLD_MIN_UNSET || column.high != TAG_THRESHOLD_MAX_UNSET;
        wanted.columns.push_back(std::move(column));
    }
    for (const Histo_Peak* peak = data.peak_first; peak != nullptr; peak = peak->next) {
        wanted.peaks.push_back({peak->type == PEAK_SEGMENT, (*peak->param)[PEAK_CENTRE], (*peak->param)[PEAK_AMPLITUDE],
                                (*peak->param)[PEAK_WIDTH]});
    }
    return wanted;
}

std::string Histogram_Export::Table_Source() const {
    std::string lines = "Histogram analysis\t1\n";
    if (work.session.Has_Volume()) {
        lines += "Volume\t" + work.volumes.Facts(work.volumes.Current()).title + "\n";
        lines += "File\t" + volumes::File_Name_Text(work.session.Path()) + "\n";
    }
    return lines + "Counted\t" + source();
}

void Histogram_Export::Table_Save(HWND owner, const std::string& text) {
    const std::optional<std::filesystem::path> chosen =
        Save_Ask(owner, L"Save the full table", L"Texts (*.txt)\0*.txt\0All files\0*.*\0", L"analysis.txt", L"txt");
    if (!chosen) {
        return;
    }
    const std::filesystem::path& file = *chosen;
    if (const std::string error = Text_File_Write(file, text); !error.empty()) {
        return dialogs.Warn("The table was not saved: " + volumes::File_Name_Text(file) + " " + error + ".");
    }
    dialogs.Tell("The full table was saved to " + volumes::File_Name_Text(file));
}

void Histogram_Export::Export_Histogram() {
    std::string path(FILE_NAME_SIZE, '\0');
    const char* filter =
        Fct_Create_szFilter(2, "CSV files", "$FILE_EXTENSION_EXCEL", "All files", "$FILE_EXTENSION_ALL");
    if (Fct_Save_FileName("Export histogram", filter, "histogram", "csv", path.data(), 0) == 0 ||
        panel.Write(path.c_str()) == 0) {
        return;
    }
    // What a disk or a network has made of it shows only when it is read back.
    Verify(std::filesystem::path(Wide_Of_Panel(path.c_str())), true);
}

void Histogram_Export::Verify(const std::filesystem::path& path, bool is_new) {
    if (panel.data == nullptr || !panel.data->Has_Counts()) {
        dialogs.Warn("There is no histogram that the file could be compared with.");
        return;
    }
    std::string text;
    const std::string name = volumes::File_Name_Text(path);
    if (const std::string error = Text_File_Read(path, FILE_SIZE_MOST, text); !error.empty()) {
        dialogs.Warn(name + ' ' + error + '.');
        return;
    }
    const Export_Check check = Export_Check_Text(text, Wanted());
    dialogs.Log("export_differences " + std::to_string(check.difference_nb));
    if (is_new && check.difference_nb == 0) {
        dialogs.Tell("Histogram exported; the file agrees with the panel");
        return;
    }
    dialogs.Text_Show("Export verified", variables.Utf8_Of(Export_Check_Report(check, name).c_str()), {});
}

void Histogram_Export::Export_Verify_Ask() {
    if (const auto path = dialogs.File_To_Open("Verify export", File_Kind::Histograms)) {
        Verify(*path, false);
    }
}

}  // namespace workbench
