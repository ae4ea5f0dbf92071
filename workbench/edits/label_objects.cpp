#include "workbench/edits/label_objects.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <system_error>
#include <utility>

#include "workbench/volumes/anatomy_codes.h"
#include "workbench/volumes/byte_source.h"
#include "workbench/volumes/dicom_reader.h"
#include "workbench/volumes/message_text.h"

namespace workbench {

namespace {

constexpr const char* SAVE_TITLE = "Labels as a DICOM object";

/** The name that is offered: beside the image, under its name. */
std::filesystem::path Object_Path_Proposed(const std::filesystem::path& image, const std::string& title) {
    const std::filesystem::path labels = Label_Path_Proposed(image, title);
    std::string name = volumes::File_Name_Text(labels);
    constexpr std::string_view ending = "_labels.nii.gz";
    if (name.ends_with(ending)) {
        name.resize(name.size() - ending.size());
    }
    return labels.parent_path() / volumes::Path_From_Utf8(name + "_seg.dcm");
}

volumes::Segment Segment_Of(const Tag_Description& tag) {
    volumes::Segment segment;
    segment.tag = tag.number;
    segment.label = tag.name.value_or("");
    segment.color = tag.color;
    volumes::Anatomy_Code_Set(segment);
    return segment;
}

/** The bytes of a file; no value: they cannot be read, and `error` says why. */
std::optional<std::vector<std::uint8_t>> Bytes_Read(const std::filesystem::path& file, std::uint64_t most,
                                                    std::string& error) {
    volumes::File_Source source(file);
    if (!source.Error().empty() || source.Size().value_or(0) > most) {
        error = source.Error().empty() ? "is larger than the limit of " + volumes::Size_Text(most) : source.Error();
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(source.Size().value_or(0)));
    if (source.Read(bytes) != bytes.size()) {
        error = "cannot be read to its end";
        return std::nullopt;
    }
    return bytes;
}

}  // namespace

bool Label_Objects::Is_Object_File(const std::filesystem::path& file) {
    volumes::File_Source source(file);
    std::vector<std::uint8_t> head(volumes::DICOM_HEAD_SIZE);
    head.resize(source.Read(head));
    return volumes::Dicom_Is_Likely(head);
}

bool Label_Objects::Is_Image_File(const std::filesystem::path& file) const {
    return std::ranges::any_of(host.Slices().files, [&](const std::filesystem::path& one) {
        std::error_code unknown;
        return std::filesystem::equivalent(one, file, unknown);
    });
}

void Label_Objects::Object_Save() {
    const Session& work = host.Work();
    if (!work.Has_Volume()) {
        return host.Warn("Open an image first; labels lie on an image.");
    }
    const int way =
        host.Way_Ask(SAVE_TITLE,
                     "Every TAG that a voxel has becomes a segment, with its name and colour.\n\n"
                     "Markers and thresholds have no place in it: they are kept by Save labels.",
                     {"&Plain: every system reads it", "&Deflated: smaller, but not every system reads it", "&Cancel"});
    if (way != 0 && way != 1) {
        return;
    }
    const auto path = host.Object_File_Ask(Object_Path_Proposed(work.Path(), host.Volume_Title()));
    if (!path) {
        return;
    }
    if (Is_Image_File(*path)) {
        return host.Warn(volumes::File_Name_Text(*path) + " is one of the images; choose another name.");
    }
    if (const std::string error = Object_Write(*path, way == 1); !error.empty()) {
        return host.Warn(error);
    }
    host.Tell("Segmentation object saved to " + volumes::File_Name_Text(*path));
}

std::string Label_Objects::Object_Write(const std::filesystem::path& path, bool is_deflated) {
    const Session& work = host.Work();
    volumes::Segmentation_Content content;
    const std::vector<std::uint8_t> tags = work.Tags_In_File_Order();
    content.tags = tags;
    for (const Tag_Description& tag : host.Description().tags) {
        content.segments.push_back(Segment_Of(tag));
    }
    content.program_version = host.Program_Version();
    content.creator = host.User_Name();
    content.is_deflated = is_deflated;
    std::string error;
    host.Run("Writing " + volumes::File_Name_Text(path), [&](const volumes::Load_Progress& progress) {
        error = volumes::Dicom_Segmentation_Write(path, work.Image(), host.Slices(), content, progress);
    });
    return error;
}

void Label_Objects::Tag_Meaning_Ask() {
    const int tag = host.Current_Tag();
    if (tag == 0) {
        return host.Warn("TAG 0 is the background; choose another TAG first.");
    }
    const std::vector<Tag_Description> tags = host.Description().tags;
    const auto known = std::ranges::find(tags, tag, &Tag_Description::number);
    const volumes::Segment now = known != tags.end() ? Segment_Of(*known) : volumes::Segment{};
    std::vector<std::string> lines;
    int current = 0;
    for (const volumes::Anatomy_Code& code : volumes::Anatomy_Codes()) {
        if (now.type.value == code.type) {
            current = static_cast<int>(lines.size());
        }
        lines.push_back(std::string(code.meaning) + "   (SNOMED CT " + code.type + ")");
    }
    const int chosen = host.Line_Ask("Name by anatomy", "TAG " + std::to_string(tag) + " is:", lines, current);
    if (chosen >= 0) {
        host.Tag_Name_Set(tag, volumes::Anatomy_Codes()[static_cast<std::size_t>(chosen)].meaning);
    }
}

std::optional<double> Label_Objects::Threshold_Ask() {
    const auto answer = host.Text_Ask("Shares of voxels",
                                      "The object says to which share each voxel is of a segment.\n"
                                      "A voxel gets the TAG from this share on (0 to 1):",
                                      "0.5");
    if (!answer) {
        return std::nullopt;
    }
    double share = 0.0;
    const char* const end = answer->data() + answer->size();
    const auto [stopped, failure] = std::from_chars(answer->data(), end, share);
    if (failure != std::errc() || stopped != end || !(share >= 0.0 && share <= 1.0)) {
        host.Warn("A number from 0 to 1 is needed, such as 0.5; the labels were not loaded.");
        return std::nullopt;
    }
    return share;
}

bool Label_Objects::May_Load(const std::string& name, const volumes::Object_Owner& owner) {
    const volumes::Slice_Files slices = host.Slices();
    if (slices.file_of_slice.empty()) {
        return true;
    }
    const auto first = static_cast<std::size_t>(slices.file_of_slice.front());
    const volumes::Object_Owner of_image =
        volumes::Object_Owner_Read(slices.files[first], volumes::Limits_Beside(host.Work().Image()));
    if (!owner.Is_Other(of_image)) {
        return true;
    }
    const bool is_patient = owner.patient != of_image.patient && !owner.patient.empty() && !of_image.patient.empty();
    const std::string what = is_patient ? "another patient (" + owner.patient + " instead of " + of_image.patient + ")"
                                        : std::string("another frame of reference");
    return host.Way_Ask("Labels of another image",
                        name + " is of " + what +
                            " than the image. Its places mean nothing here unless the images "
                            "were brought onto one another.",
                        {"&Cancel", "&Load all the same"}) == 1;
}

std::optional<Object_Labels> Label_Objects::Load(const std::filesystem::path& file) {
    const std::string name = volumes::File_Name_Text(file);
    if (!host.Work().Has_Volume()) {
        host.Warn("Open an image first; labels lie on an image.");
        return std::nullopt;
    }
    std::optional<std::vector<std::uint8_t>> bytes;
    std::optional<double> threshold;
    volumes::Segmentation_Result read;
    const volumes::Load_Limits limits = volumes::Limits_Beside(host.Work().Image());
    for (bool is_asked = false;; is_asked = true) {
        host.Run("Loading " + name, [&](const volumes::Load_Progress& progress) {
            if (!bytes) {
                bytes = Bytes_Read(file, limits.decoded_bytes, read.error);
            }
            if (bytes) {
                read = volumes::Dicom_Segmentation_Read(*bytes, host.Work().Image(), threshold, limits, progress);
                if (read.is_other_object) {
                    read = volumes::Dicom_Structure_Set_Read(*bytes, host.Work().Image(), limits, progress);
                }
            }
        });
        if (!read.needs_threshold || is_asked) {
            break;
        }
        threshold = Threshold_Ask();
        if (!threshold) {
            return std::nullopt;
        }
    }
    if (read.is_cancelled) {
        host.Tell("Loading was given up");
        return std::nullopt;
    }
    const auto said_of_it = [&](const std::string& what) {
        std::string text = name;
        return text.append(" ").append(what).append(".");
    };
    if (!read.labels) {
        host.Warn(said_of_it(read.error));
        return std::nullopt;
    }
    if (!May_Load(name, read.owner)) {
        return std::nullopt;
    }
    for (const std::string& warning : read.warnings) {
        host.Warn(said_of_it(warning));
    }
    Object_Labels loaded{std::move(*read.labels), {}};
    // What an object does not say of a TAG stays as it is.
    const std::vector<Tag_Description> known = host.Description().tags;
    for (const volumes::Segment& segment : read.segments) {
        const auto at = std::ranges::find(known, segment.tag, &Tag_Description::number);
        Tag_Description tag = at != known.end() ? *at : Tag_Description{};
        tag.number = segment.tag;
        tag.name = segment.label.empty() ? tag.name : std::optional(segment.label);
        tag.color = segment.color.value_or(tag.color);
        loaded.description.tags.push_back(std::move(tag));
    }
    return loaded;
}

}  // namespace workbench
