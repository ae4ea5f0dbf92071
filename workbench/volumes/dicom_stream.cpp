#include "workbench/volumes/dicom_stream.h"

#include <algorithm>
#include <cstring>

#include "dcmtk/dcmdata/dcerror.h"

#include "host/platform.h"

namespace volumes {

namespace {

// Bytes of stack that reading may take: a fraction of the smallest stack of a thread, and many times what real files
// need.
constexpr std::uintptr_t STACK_MOST = 384U * 1024U;

class Memory_Factory final : public DcmInputStreamFactory {
  public:
    Memory_Factory(std::span<const std::uint8_t> memory, std::size_t begin) : bytes(memory), start(begin) {}
    DcmInputStream* create() const override { return new Memory_Stream(bytes, start); }
    DcmInputStreamFactory* clone() const override { return new Memory_Factory(bytes, start); }
    DcmInputStreamFactoryType ident() const override { return DFT_DcmInputFileStreamFactory; }

  private:
    std::span<const std::uint8_t> bytes;
    std::size_t start;
};

}  // namespace

Memory_Producer::Memory_Producer(std::span<const std::uint8_t> memory, std::size_t begin)
    : bytes(memory), position(std::min(begin, memory.size())), condition(EC_Normal) {}

void Memory_Producer::Depth_Check() {
    const auto at = reinterpret_cast<std::uintptr_t>(KIT_FRAME_ADDRESS());
    if (stack_start == 0) {
        stack_start = at;
    }
    if (std::max(at, stack_start) - std::min(at, stack_start) > STACK_MOST) {
        condition = EC_SequEnd;
    }
}

offile_off_t Memory_Producer::avail() {
    return good() ? static_cast<offile_off_t>(bytes.size() - position) : 0;
}

offile_off_t Memory_Producer::read(void* buffer, offile_off_t length) {
    Depth_Check();
    if (!good() || length <= 0 || buffer == nullptr) {
        return 0;
    }
    const std::size_t count = std::min(static_cast<std::size_t>(length), bytes.size() - position);
    if (count > 0) {
        std::memcpy(buffer, bytes.data() + position, count);
    }
    position += count;
    return static_cast<offile_off_t>(count);
}

offile_off_t Memory_Producer::skip(offile_off_t length) {
    if (!good() || length <= 0) {
        return 0;
    }
    const std::size_t count = std::min(static_cast<std::size_t>(length), bytes.size() - position);
    position += count;
    return static_cast<offile_off_t>(count);
}

void Memory_Producer::putback(offile_off_t count) {
    if (count < 0 || static_cast<std::size_t>(count) > position) {
        condition = EC_PutbackFailed;
        return;
    }
    position -= static_cast<std::size_t>(count);
}

Memory_Stream::Memory_Stream(std::span<const std::uint8_t> memory, std::size_t begin)
    : DcmInputStream(&producer), bytes(memory), start(begin), producer(memory, begin) {}

DcmInputStreamFactory* Memory_Stream::newFactory() const {
    return new Memory_Factory(bytes, start + static_cast<std::size_t>(tell()));
}

}  // namespace volumes
