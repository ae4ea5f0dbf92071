/** The content of a file that may be gzip-compressed. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/byte_source.h"

namespace volumes {

/** How reading ended. */
enum class Decode_End {
    Not_Yet,         ///< more may follow
    Complete,        ///< the end of the file; for gzip: checksum and length were right
    Read_Error,      ///< the system could not read the file
    Cut_Off,         ///< the file ends inside its compressed data
    Damaged,         ///< the compressed data make no sense
    Wrong_Checksum,  ///< the compressed data decode, but to something else than was once stored
    No_Memory,       ///< no memory for decoding
};

/** The clause for an end of data that is not a proper one. @param present how far reading came */
std::string Decode_End_Text(Decode_End end, const std::string& present);

/** Passes plain bytes on and decodes gzip, which it recognises by content. Several gzip members in a row are one
 * content. Bytes after the last member that are no gzip are left alone (see Has_Garbage).
 */
class Decoded_Source {
  public:
    /** @param coded_source read from its beginning; must outlive this object */
    explicit Decoded_Source(Byte_Source& coded_source);
    ~Decoded_Source();
    Decoded_Source(const Decoded_Source&) = delete;
    Decoded_Source& operator=(const Decoded_Source&) = delete;

    /** Fills `buffer`. @return bytes read; fewer than asked for only when End() says why */
    std::size_t Read(std::span<std::uint8_t> buffer);
    /** Reads `count` bytes and forgets them. @return bytes passed over, fewer than asked for only when End() says why
     */
    std::uint64_t Skip(std::uint64_t count);

    Decode_End End() const { return end; }
    bool Compressed() const { return inflater != nullptr; }
    /** Foreign bytes follow the compressed data. */
    bool Has_Garbage() const { return garbage; }
    /** Bytes of content in all; only known for plain files of known size. */
    std::optional<std::uint64_t> Size() const;
    /** Bytes of the source, which are fewer than those of the content where it is compressed; not always known. */
    std::optional<std::uint64_t> Stored_Size() const { return source.Size(); }

  private:
    struct Inflater;
    std::size_t Read_Plain(std::span<std::uint8_t> buffer);
    std::size_t Read_Gzip(std::span<std::uint8_t> buffer);
    bool Refill();
    void Member_Finish();

    Byte_Source& source;
    std::vector<std::uint8_t> input;
    std::size_t input_begin = 0;
    std::size_t input_end = 0;
    std::unique_ptr<Inflater> inflater;  // only for gzip
    Decode_End end = Decode_End::Not_Yet;
    bool garbage = false;
};

}  // namespace volumes
