/** Bytes in memory as an input of DCMTK that reads values when they are asked for. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcistrma.h"

namespace volumes {

/** Gives out bytes, and nothing more once it is called from too deep: sequences may be nested without end, and reading
 * them is recursive. */
class Memory_Producer final : public DcmProducer {
  public:
    Memory_Producer(std::span<const std::uint8_t> memory, std::size_t begin);
    OFBool good() const override { return condition.good(); }
    OFCondition status() const override { return condition; }
    OFBool eos() override { return position >= bytes.size(); }
    offile_off_t avail() override;
    offile_off_t read(void* buffer, offile_off_t length) override;
    offile_off_t skip(offile_off_t length) override;
    void putback(offile_off_t count) override;

  private:
    void Depth_Check();

    std::span<const std::uint8_t> bytes;
    std::size_t position;
    std::uintptr_t stack_start = 0;  // where the stack was when the first byte was read
    OFCondition condition;
};

/** The bytes are not owned; they must outlive the stream and every data set that was read from it. */
class Memory_Stream final : public DcmInputStream {
  public:
    explicit Memory_Stream(std::span<const std::uint8_t> memory, std::size_t begin = 0);
    DcmInputStreamFactory* newFactory() const override;

  private:
    std::span<const std::uint8_t> bytes;
    std::size_t start;
    Memory_Producer producer;
};

}  // namespace volumes
