/** Small compressed frames of every codec, with what other programs decode them to. */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/workbench/volumes/dicom_bytes.h"

inline constexpr std::uint16_t CODED_WIDTH = 6;
inline constexpr std::uint16_t CODED_HEIGHT = 5;

/** One frame of CODED_WIDTH x CODED_HEIGHT pixels. */
struct Coded_Sample {
    std::string name;
    std::string syntax;  // transfer syntax
    std::string photometric;
    std::uint16_t bits_allocated = 8;
    std::uint16_t bits_stored = 8;
    Bytes stream;
    std::vector<std::int32_t> levels;  // colours: packed

    bool Is_Color() const { return photometric != "MONOCHROME2"; }
};

const std::vector<Coded_Sample>& Coded_Samples();
const Coded_Sample& Coded_Sample_Of(const std::string& name);

/** A file of the sample's kind. */
Dicom_Bytes Coded_File(const Coded_Sample& sample, const std::vector<Bytes>& fragments, int frames = 1);
