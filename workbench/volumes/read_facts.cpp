#include "workbench/volumes/read_facts.h"

#include <cmath>

#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

std::string Scale_Text(const Volume& volume) {
    if (volume.color) {
        return "colours of 8 bits";
    }
    if (volume.slope == 1 && volume.intercept == 0) {
        return "the stored values are the greys";
    }
    return "grey = level * " + Value_Text(volume.slope) + (volume.intercept < 0 ? " - " : " + ") +
           Value_Text(volume.intercept < 0 ? -volume.intercept : volume.intercept);
}

std::string Outside_Text(const Volume& volume) {
    std::string text;
    if (volume.nonfinite_nb > 0) {
        const bool may_be_padding = !volume.place_source.empty();  // DICOM
        text = Count_Text(volume.nonfinite_nb) +
               (may_be_padding ? " that only fill the picture up or have no usable scale" : " that are no number");
    }
    if (volume.outlier_nb > 0) {
        text += (text.empty() ? "" : ", ") + Count_Text(volume.outlier_nb) + " far from all others (" +
                Value_Text(volume.outlier_lowest);
        text +=
            volume.outlier_lowest == volume.outlier_highest ? ")" : " to " + Value_Text(volume.outlier_highest) + ")";
    }
    return text.empty() ? "none" : text;
}

/** The steps of the file's sform where they are not the voxel sizes, as after a registration that scaled the head. */
std::string Sform_Steps_Text(const Volume& volume) {
    constexpr double same = 0.01;  // share
    std::string steps;
    bool differs = false;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double step = std::hypot(volume.affine[0][axis], volume.affine[1][axis], volume.affine[2][axis]);
        differs = differs || std::fabs(step - volume.spacing[axis]) > same * volume.spacing[axis];
        steps += (axis > 0 ? " x " : "") + Value_Text(step);
    }
    return differs ? ", in which voxels lie " + steps + " mm apart" : "";
}

std::string Orientation_Text(const Volume& volume, const std::string& orientation) {
    if (!orientation.empty()) {
        return "chosen by the user: columns, rows and slices run towards " + orientation;
    }
    switch (volume.affine_source) {
        case Affine_Source::Sform:
            return "the file's sform (code " + std::to_string(volume.stored.sform_code) + ")" +
                   Sform_Steps_Text(volume);
        case Affine_Source::Qform:
            return volume.stored.present ? "the file's qform (code " + std::to_string(volume.stored.qform_code) + ")"
                                         : "positions and directions in the files";
        default:
            return "not known: the file does not say which side is which";
    }
}

}  // namespace

std::string Read_Facts_Text(const std::string& title, const Volume& volume, std::span<const std::string> warnings,
                            const std::string& orientation) {
    std::string text = title + "\n\n";
    const auto line = [&](const char* name, const std::string& what) {
        text += std::string(name) + ": " + what + '\n';
    };
    const auto side = [](std::int32_t size) { return Count_Text(static_cast<std::uint64_t>(size)); };
    line("Size", side(volume.nx) + " x " + side(volume.ny) + " x " + side(volume.nz) + " voxels of " +
                     Value_Text(volume.spacing[0]) + " x " + Value_Text(volume.spacing[1]) + " x " +
                     Value_Text(volume.spacing[2]) + " mm");
    line("File", volume.encoding.empty() ? "not known" : volume.encoding);
    line("Type", volume.scalar_type);
    line("Scale", Scale_Text(volume));
    line("Largest error", volume.max_error > 0 ? Value_Text(volume.max_error) : "none, every value is exact");
    line("Values outside the scale", Outside_Text(volume));
    line("Orientation", Orientation_Text(volume, orientation));
    text += warnings.empty() ? "Warnings: none\n" : "Warnings:\n";
    for (const std::string& warning : warnings) {
        text += "- " + warning + '\n';
    }
    return text;
}

std::string Read_Losses_Text(const Volume& volume) {
    std::string text = volume.max_error > 0 ? "largest error " + Value_Text(volume.max_error) : "";
    const std::uint64_t outside_nb = volume.nonfinite_nb + volume.outlier_nb;
    if (outside_nb > 0) {
        text +=
            (text.empty() ? "" : ", ") + Count_Text(outside_nb) + (outside_nb == 1 ? " value" : " values") + " outside";
    }
    return text;
}

}  // namespace volumes
