/** Which fragments of compressed pixel data make up which frame. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcpixseq.h"
#include "dcmtk/dcmdata/dcpxitem.h"
#include "workbench/volumes/dicom_codec.h"

namespace volumes {

/** Compressed frames of a pixel sequence. */
class Compressed_Frames {
  public:
    /** @param fragments not owned, outlives this
     *  @param frame_codec None: run-length
     *  @param segments of every run-length frame */
    Compressed_Frames(DcmPixelSequence& fragments, Frame_Codec frame_codec, std::size_t segments);

    std::size_t Fragment_Nb() const { return fragment_nb; }
    /** Bytes of all fragments together. */
    std::uint64_t Packed_Size() const { return packed_size; }
    /** How many frames there seem to be. */
    std::int32_t Frame_Nb() const;
    /** Decides which fragments are of which frame: one of each, or as the table of offsets says, or by their
     *  beginnings. @return false: there are too few, or they cannot be told apart */
    bool Share_Out(std::int32_t frame_nb);
    /** The bytes of a frame; empty when they cannot be read. After Share_Out callable on several threads at once.
     *  @param joined receives them where they are in several fragments: valid as long as it is unchanged */
    std::span<const std::uint8_t> Frame(std::int32_t frame, std::vector<std::uint8_t>& joined) const;

  private:
    std::span<const std::uint8_t> Fragment(std::size_t number) const;
    bool Begins_Frame(std::size_t number) const;
    std::vector<std::size_t> Table_Begins() const;

    std::vector<DcmPixelItem*> items;  // the table of offsets, and every fragment
    Frame_Codec codec;
    std::size_t segment_nb;
    std::size_t fragment_nb = 0;
    std::uint64_t packed_size = 0;
    std::vector<std::size_t> begins;  // the first fragment of every frame, and how many fragments there are
    std::vector<std::span<const std::uint8_t>> pieces;  // every fragment, when they are shared out
};

}  // namespace volumes
