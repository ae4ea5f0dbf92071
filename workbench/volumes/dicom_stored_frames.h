/** The bytes of a file's frames, whatever way they are stored. */
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcfcache.h"
#include "dcmtk/dcmdata/dcpixel.h"
#include "workbench/volumes/dicom_codec.h"
#include "workbench/volumes/dicom_fragments.h"
#include "workbench/volumes/dicom_pixels.h"

namespace volumes {

/** Room for one frame: every thread that decodes has one. */
struct Frame_Room {
    std::vector<std::uint8_t> bytes;   ///< Pixel_Format::Frame_Size(), little-endian samples
    std::vector<std::uint8_t> joined;  ///< a compressed frame of several fragments
    bool has_warnings = false;         ///< of the frame in `bytes`: it was decoded with errors
};

class Stored_Frames {
  public:
    /** Looks for the pixel data. Throws Dicom_Refusal: there are none, or stored in a way that is not decoded. */
    Stored_Frames(DcmItem& data_set, E_TransferSyntax transfer_syntax);

    bool Is_Compressed() const { return is_compressed; }
    /** Floating-point pixels: 0, 32 or 64 bits. */
    std::int32_t Real_Bits() const { return real_bits; }
    /** Frame may be called on several threads at once. */
    bool Is_Shared() const { return is_compressed; }
    /** Finds the frames, and brings the format to what Frame gives: codecs have a say in depth, sign and colours.
     *  Throws Dicom_Refusal. @param told frames that the file says it has; 0: it is to be found out @return how many */
    std::int32_t Open(std::int32_t told, Pixel_Format& pixel_format);
    /** Whether the data are long enough for the frames; throws Dicom_Refusal where they are not. Decodes nothing. */
    void Length_Check() const;
    /** Fills the room with a frame. Throws Dicom_Refusal. */
    void Frame(std::int32_t frame, Frame_Room& room);

  private:
    void Fragments_Open(const Pixel_Format& pixel_format);
    void Codec_Format_Take(Pixel_Format& pixel_format);
    void Plain_Frame(std::int32_t frame, Frame_Room& room);
    void Bits_Frame(std::int32_t frame, Frame_Room& room);
    void Bytes_Take(std::uint64_t start, std::int32_t frame, std::vector<std::uint8_t>& bytes);

    DcmElement* element = nullptr;  // owned by the data set
    E_TransferSyntax syntax;
    Frame_Codec codec;
    bool is_compressed;
    std::int32_t real_bits = 0;
    bool is_ybr = false;  // as the file says; the codec makes red, green, blue of it
    std::int32_t frame_nb = 1;
    Pixel_Format format;
    std::optional<Coded_Format> coded;
    std::optional<Compressed_Frames> fragments;
    DcmFileCache cache;
};

}  // namespace volumes
