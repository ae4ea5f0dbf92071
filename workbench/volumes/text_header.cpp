#include "workbench/volumes/text_header.h"

#include <utility>

#include "workbench/volumes/message_text.h"
#include "workbench/volumes/meta_image_header.h"
#include "workbench/volumes/nrrd_header.h"
#include "workbench/volumes/text_header_fields.h"

namespace volumes {

const char* Text_Header_Kind_Name(Text_Header_Kind kind) {
    return kind == Text_Header_Kind::Nrrd ? "NRRD" : "MetaImage";
}

std::optional<Text_Header_Kind> Text_Header_Recognise(std::span<const std::uint8_t> first) {
    const std::string_view text(reinterpret_cast<const char*>(first.data()), first.size());
    if (text.starts_with("NRRD000")) {
        return Text_Header_Kind::Nrrd;
    }
    // The other has no mark: its fields may come in any order, but the first is one of these.
    for (const char* const name : {"objecttype", "ndims", "comment", "binarydata"}) {
        const std::size_t sign = text.find('=');
        if (sign < FIELD_SHOWN_MOST && Header_Lower(Header_Trimmed(text.substr(0, sign))) == name) {
            return Text_Header_Kind::Meta_Image;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> Text_Header_Size(Text_Header_Kind kind, std::string_view text, bool is_whole) {
    std::string_view rest = text;
    while (!rest.empty()) {
        const bool has_end = rest.find('\n') != std::string_view::npos;
        const std::string_view line = Header_Line_Take(rest);
        const bool is_last = kind == Text_Header_Kind::Nrrd
                                 ? Header_Trimmed(line).empty()
                                 : Header_Lower(Header_Trimmed(line.substr(0, line.find('=')))) == "elementdatafile";
        if (is_last && (has_end || is_whole)) {
            return text.size() - rest.size();
        }
    }
    // Voxels in a file of their own need no empty line.
    return is_whole && kind == Text_Header_Kind::Nrrd ? std::optional(text.size()) : std::nullopt;
}

Text_Header_Result Text_Header_Decode(Text_Header_Kind kind, std::string_view text) {
    Text_Header_Result result;
    try {
        result.header = kind == Text_Header_Kind::Nrrd ? Nrrd_Decode(text) : Meta_Image_Decode(text);
        const Text_Header& header = result.header;
        if (header.skip_lines < 0 || header.skip_bytes < -1 ||
            (header.skip_bytes == -1 && header.coding != Voxel_Coding::Plain)) {
            result.error = "says that voxels begin at a place that cannot be";
        }
        if (header.data_file.find('%') != std::string::npos || Header_Lower(header.data_file).starts_with("list")) {
            result.error = "has its voxels in several files, which cannot be read";
        }
    } catch (Header_Fault& fault) {
        result.error = std::move(fault.what);
    }
    return result;
}

std::string Text_Header_Make(Text_Header_Kind kind, const Text_Header& header, std::uint64_t coded_size) {
    return kind == Text_Header_Kind::Nrrd ? Nrrd_Make(header) : Meta_Image_Make(header, coded_size);
}

}  // namespace volumes
