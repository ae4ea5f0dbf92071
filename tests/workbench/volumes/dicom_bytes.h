/** Writes small DICOM files by hand: explicit value representations, little-endian. */
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/workbench/volumes/nifti_bytes.h"

/** Elements are written in the order of their tags. */
class Dicom_Bytes {
  public:
    static constexpr const char* UNCOMPRESSED = "1.2.840.10008.1.2.1";
    static constexpr const char* RUN_LENGTH = "1.2.840.10008.1.2.5";
    static constexpr const char* DEFLATED = "1.2.840.10008.1.2.1.99";

    /** A 3 x 2 grey image of 8 bits, values 10 .. 60, of series 1.2.3.4. */
    Dicom_Bytes();

    /** Sets or replaces an element. @param tag group in the high half */
    Dicom_Bytes& Text(std::uint32_t tag, const char* representation, const std::string& value);
    Dicom_Bytes& Short(std::uint32_t tag, std::uint16_t value);
    Dicom_Bytes& Shorts(std::uint32_t tag, const char* representation, const std::vector<std::uint16_t>& values);
    Dicom_Bytes& Raw(std::uint32_t tag, const char* representation, const Bytes& value);
    /** A sequence of items; each item is what Elements() of another object gives. */
    Dicom_Bytes& Sequence(std::uint32_t tag, const std::vector<Bytes>& items);
    Dicom_Bytes& Remove(std::uint32_t tag);
    /** Takes away everything. */
    Dicom_Bytes& Clear();
    Dicom_Bytes& Syntax(const std::string& uid);
    /** Position of the slice's corner, with axial direction, mm. */
    Dicom_Bytes& Place(double x, double y, double z);
    /** Pixel data as fragments after an empty offset table. */
    Dicom_Bytes& Fragments(const std::vector<Bytes>& fragments);
    Dicom_Bytes& Pixels_8(const std::vector<std::uint8_t>& values, int width, int height);
    Dicom_Bytes& Pixels_16(const std::vector<std::uint16_t>& values, int width, int height);

    /** The data set alone. */
    Bytes Elements() const;
    /** Preamble, file meta information and data set. */
    Bytes File() const;

  private:
    std::string syntax = UNCOMPRESSED;
    std::map<std::uint32_t, Bytes> elements;  // whole elements
};

/** A run-length segment table with one literal segment per byte plane of the samples. */
Bytes Run_Length_Of(const std::vector<Bytes>& segments);

inline constexpr std::uint32_t TAG_IMAGE_TYPE = 0x00080008;
inline constexpr std::uint32_t TAG_KIND = 0x00080016;  // SOP class
inline constexpr std::uint32_t TAG_INSTANCE = 0x00080018;
inline constexpr std::uint32_t TAG_MODALITY = 0x00080060;
inline constexpr std::uint32_t TAG_SERIES_TEXT = 0x0008103E;
inline constexpr std::uint32_t TAG_SLICE_THICKNESS = 0x00180050;
inline constexpr std::uint32_t TAG_FRAME_TIME = 0x00181063;
inline constexpr std::uint32_t TAG_STUDY = 0x0020000D;
inline constexpr std::uint32_t TAG_SERIES = 0x0020000E;
inline constexpr std::uint32_t TAG_SERIES_NUMBER = 0x00200011;
inline constexpr std::uint32_t TAG_INSTANCE_NUMBER = 0x00200013;
inline constexpr std::uint32_t TAG_PLACE = 0x00200032;
inline constexpr std::uint32_t TAG_DIRECTION = 0x00200037;
inline constexpr std::uint32_t TAG_TEMPORAL_POSITION = 0x00200100;
inline constexpr std::uint32_t TAG_SAMPLES = 0x00280002;
inline constexpr std::uint32_t TAG_PHOTOMETRIC = 0x00280004;
inline constexpr std::uint32_t TAG_PLANAR = 0x00280006;
inline constexpr std::uint32_t TAG_FRAMES = 0x00280008;
inline constexpr std::uint32_t TAG_ROWS = 0x00280010;
inline constexpr std::uint32_t TAG_COLUMNS = 0x00280011;
inline constexpr std::uint32_t TAG_PIXEL_SPACING = 0x00280030;
inline constexpr std::uint32_t TAG_BITS_ALLOCATED = 0x00280100;
inline constexpr std::uint32_t TAG_BITS_STORED = 0x00280101;
inline constexpr std::uint32_t TAG_HIGH_BIT = 0x00280102;
inline constexpr std::uint32_t TAG_SIGNED = 0x00280103;
inline constexpr std::uint32_t TAG_PADDING = 0x00280120;
inline constexpr std::uint32_t TAG_PADDING_LIMIT = 0x00280121;
inline constexpr std::uint32_t TAG_INTERCEPT = 0x00281052;
inline constexpr std::uint32_t TAG_SLOPE = 0x00281053;
inline constexpr std::uint32_t TAG_FRAMES_SHARED = 0x52009229;
inline constexpr std::uint32_t TAG_FRAMES_OWN = 0x52009230;
inline constexpr std::uint32_t TAG_FLOAT_PIXELS = 0x7FE00008;
inline constexpr std::uint32_t TAG_PIXELS = 0x7FE00010;
