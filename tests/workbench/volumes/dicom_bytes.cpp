#include "tests/workbench/volumes/dicom_bytes.h"

#include <string_view>

namespace {

void Put_16(Bytes& bytes, unsigned value) {
    bytes.push_back(static_cast<std::uint8_t>(value & 0xFFU));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8U & 0xFFU));
}

void Put_32(Bytes& bytes, std::uint32_t value) {
    Put_16(bytes, value & 0xFFFFU);
    Put_16(bytes, value >> 16U);
}

void Put_Tag(Bytes& bytes, std::uint32_t tag) {
    Put_16(bytes, tag >> 16U);
    Put_16(bytes, tag & 0xFFFFU);
}

bool Is_Long(std::string_view representation) {
    return representation == "OB" || representation == "OW" || representation == "OF" || representation == "OD" ||
           representation == "SQ" || representation == "UN" || representation == "UT";
}

void Put_Head(Bytes& bytes, std::uint32_t tag, std::string_view representation, std::uint32_t length) {
    Put_Tag(bytes, tag);
    bytes.insert(bytes.end(), representation.begin(), representation.end());
    if (Is_Long(representation)) {
        Put_16(bytes, 0);
        Put_32(bytes, length);
    } else {
        Put_16(bytes, length);
    }
}

Bytes Element(std::uint32_t tag, std::string_view representation, Bytes value, std::uint8_t padding) {
    if (value.size() % 2 != 0) {
        value.push_back(padding);
    }
    Bytes bytes;
    Put_Head(bytes, tag, representation, static_cast<std::uint32_t>(value.size()));
    bytes.insert(bytes.end(), value.begin(), value.end());
    return bytes;
}

Bytes Bytes_Of(std::string_view text) {
    return {text.begin(), text.end()};
}

constexpr std::uint32_t TAG_ITEM = 0xFFFEE000;
constexpr std::uint32_t TAG_SEQUENCE_END = 0xFFFEE0DD;
constexpr std::uint32_t LENGTH_OPEN = 0xFFFFFFFF;

}  // namespace

Dicom_Bytes::Dicom_Bytes() {
    Text(TAG_KIND, "UI", "1.2.840.10008.5.1.4.1.1.7");
    Text(TAG_INSTANCE, "UI", "1.2.3.4.5");
    Text(TAG_MODALITY, "CS", "MR");
    Text(TAG_STUDY, "UI", "1.2.3");
    Text(TAG_SERIES, "UI", "1.2.3.4");
    Text(TAG_SERIES_NUMBER, "IS", "7");
    Short(TAG_SAMPLES, 1);
    Text(TAG_PHOTOMETRIC, "CS", "MONOCHROME2");
    Pixels_8({10, 20, 30, 40, 50, 60}, 3, 2);
}

Dicom_Bytes& Dicom_Bytes::Text(std::uint32_t tag, const char* representation, const std::string& value) {
    const bool is_uid = std::string_view(representation) == "UI";
    elements[tag] = Element(tag, representation, Bytes_Of(value), is_uid ? 0 : ' ');
    return *this;
}

Dicom_Bytes& Dicom_Bytes::Short(std::uint32_t tag, std::uint16_t value) {
    return Shorts(tag, "US", {value});
}

Dicom_Bytes& Dicom_Bytes::Shorts(std::uint32_t tag, const char* representation,
                                 const std::vector<std::uint16_t>& values) {
    Bytes bytes;
    for (const std::uint16_t value : values) {
        Put_16(bytes, value);
    }
    return Raw(tag, representation, bytes);
}

Dicom_Bytes& Dicom_Bytes::Raw(std::uint32_t tag, const char* representation, const Bytes& value) {
    elements[tag] = Element(tag, representation, value, 0);
    return *this;
}

Dicom_Bytes& Dicom_Bytes::Sequence(std::uint32_t tag, const std::vector<Bytes>& items) {
    Bytes content;
    for (const Bytes& item : items) {
        Put_Tag(content, TAG_ITEM);
        Put_32(content, static_cast<std::uint32_t>(item.size()));
        content.insert(content.end(), item.begin(), item.end());
    }
    return Raw(tag, "SQ", content);
}

Dicom_Bytes& Dicom_Bytes::Remove(std::uint32_t tag) {
    elements.erase(tag);
    return *this;
}

Dicom_Bytes& Dicom_Bytes::Clear() {
    elements.clear();
    return *this;
}

Dicom_Bytes& Dicom_Bytes::Syntax(const std::string& uid) {
    syntax = uid;
    return *this;
}

Dicom_Bytes& Dicom_Bytes::Place(double x, double y, double z) {
    Text(TAG_PLACE, "DS", std::to_string(x) + '\\' + std::to_string(y) + '\\' + std::to_string(z));
    return Text(TAG_DIRECTION, "DS", "1\\0\\0\\0\\1\\0");
}

Dicom_Bytes& Dicom_Bytes::Fragments(const std::vector<Bytes>& fragments) {
    Bytes bytes;
    Put_Head(bytes, TAG_PIXELS, "OB", LENGTH_OPEN);
    Put_Tag(bytes, TAG_ITEM);
    Put_32(bytes, 0);
    for (Bytes fragment : fragments) {
        if (fragment.size() % 2 != 0) {
            fragment.push_back(0);
        }
        Put_Tag(bytes, TAG_ITEM);
        Put_32(bytes, static_cast<std::uint32_t>(fragment.size()));
        bytes.insert(bytes.end(), fragment.begin(), fragment.end());
    }
    Put_Tag(bytes, TAG_SEQUENCE_END);
    Put_32(bytes, 0);
    elements[TAG_PIXELS] = bytes;
    return *this;
}

Dicom_Bytes& Dicom_Bytes::Pixels_8(const std::vector<std::uint8_t>& values, int width, int height) {
    Short(TAG_COLUMNS, static_cast<std::uint16_t>(width)).Short(TAG_ROWS, static_cast<std::uint16_t>(height));
    Short(TAG_BITS_ALLOCATED, 8).Short(TAG_BITS_STORED, 8).Short(TAG_HIGH_BIT, 7).Short(TAG_SIGNED, 0);
    return Raw(TAG_PIXELS, "OB", values);
}

Dicom_Bytes& Dicom_Bytes::Pixels_16(const std::vector<std::uint16_t>& values, int width, int height) {
    Short(TAG_COLUMNS, static_cast<std::uint16_t>(width)).Short(TAG_ROWS, static_cast<std::uint16_t>(height));
    Short(TAG_BITS_ALLOCATED, 16).Short(TAG_BITS_STORED, 16).Short(TAG_HIGH_BIT, 15).Short(TAG_SIGNED, 0);
    return Shorts(TAG_PIXELS, "OW", values);
}

Bytes Dicom_Bytes::Elements() const {
    Bytes bytes;
    for (const auto& [tag, element] : elements) {
        bytes.insert(bytes.end(), element.begin(), element.end());
    }
    return bytes;
}

Bytes Dicom_Bytes::File() const {
    constexpr std::size_t preamble_size = 128;
    Bytes meta;
    for (const Bytes& element :
         {Element(0x00020001, "OB", {0, 1}, 0), Element(0x00020002, "UI", Bytes_Of("1.2.840.10008.5.1.4.1.1.7"), 0),
          Element(0x00020003, "UI", Bytes_Of("1.2.3.4.5"), 0), Element(0x00020010, "UI", Bytes_Of(syntax), 0)}) {
        meta.insert(meta.end(), element.begin(), element.end());
    }
    Bytes bytes(preamble_size, 0);
    for (const char letter : std::string_view("DICM")) {
        bytes.push_back(static_cast<std::uint8_t>(letter));
    }
    Bytes length;
    Put_32(length, static_cast<std::uint32_t>(meta.size()));
    for (const Bytes& part : {Element(0x00020000, "UL", length, 0), meta, Elements()}) {
        bytes.insert(bytes.end(), part.begin(), part.end());
    }
    return bytes;
}

Bytes Run_Length_Of(const std::vector<Bytes>& segments) {
    constexpr std::size_t header_size = 64;
    constexpr std::size_t literal_most = 128;
    Bytes bytes;
    Put_32(bytes, static_cast<std::uint32_t>(segments.size()));
    Bytes content;
    for (const Bytes& segment : segments) {
        Put_32(bytes, static_cast<std::uint32_t>(header_size + content.size()));
        for (std::size_t at = 0; at < segment.size(); at += literal_most) {
            const std::size_t count = std::min(literal_most, segment.size() - at);
            content.push_back(static_cast<std::uint8_t>(count - 1));
            content.insert(content.end(), segment.begin() + static_cast<std::ptrdiff_t>(at),
                           segment.begin() + static_cast<std::ptrdiff_t>(at + count));
        }
        content.resize(content.size() + content.size() % 2, 0x80);
    }
    bytes.resize(header_size, 0);
    bytes.insert(bytes.end(), content.begin(), content.end());
    return bytes;
}
