#include "workbench/volumes/dicom_fragments.h"

#include <algorithm>

#include "workbench/volumes/byte_order.h"

namespace volumes {

namespace {

constexpr std::size_t WORD_SIZE = sizeof(std::uint32_t);
constexpr std::size_t HEADER_SIZE = 64;  // of a run-length frame: a count and 15 offsets
constexpr std::size_t ITEM_HEAD_SIZE = 8;

std::uint32_t Word(std::span<const std::uint8_t> bytes, std::size_t number) {
    return Value_Read<std::uint32_t>(bytes.data() + number * WORD_SIZE, Byte_Order::Little);
}

}  // namespace

Compressed_Frames::Compressed_Frames(DcmPixelSequence& fragments, Frame_Codec frame_codec, std::size_t segments)
    : codec(frame_codec), segment_nb(segments) {
    // The toolkit keeps a list: a look at its n-th item goes through all before.
    for (DcmObject* object = fragments.nextInContainer(nullptr); object != nullptr;
         object = fragments.nextInContainer(object)) {
        items.push_back(dynamic_cast<DcmPixelItem*>(object));
    }
    fragment_nb = items.empty() ? 0 : items.size() - 1;  // the first one is the table of offsets
    for (std::size_t number = 0; number < fragment_nb; ++number) {
        DcmPixelItem* const item = items[number + 1];
        packed_size += item != nullptr ? item->getLength() : 0;
    }
}

std::span<const std::uint8_t> Compressed_Frames::Fragment(std::size_t number) const {
    DcmPixelItem* const item = items[number + 1];
    Uint8* bytes = nullptr;
    if (item == nullptr || item->getUint8Array(bytes).bad() || bytes == nullptr) {
        return {};
    }
    return {bytes, item->getLength()};
}

bool Compressed_Frames::Begins_Frame(std::size_t number) const {
    const std::span<const std::uint8_t> bytes = Fragment(number);
    if (codec != Frame_Codec::None) {
        return Is_Coded_Frame(codec, bytes);
    }
    constexpr std::size_t segment_most = HEADER_SIZE / WORD_SIZE - 1;
    if (bytes.size() < HEADER_SIZE || segment_nb > segment_most || Word(bytes, 0) != segment_nb ||
        Word(bytes, 1) != HEADER_SIZE) {
        return false;
    }
    for (std::size_t segment = 1; segment < segment_most; ++segment) {
        const std::uint32_t offset = Word(bytes, segment + 1);
        if (segment < segment_nb ? offset <= Word(bytes, segment) : offset != 0) {
            return false;
        }
    }
    return true;
}

std::vector<std::size_t> Compressed_Frames::Table_Begins() const {
    DcmPixelItem* const item = items.empty() ? nullptr : items.front();
    Uint8* bytes = nullptr;
    if (item == nullptr || item->getLength() == 0 || item->getUint8Array(bytes).bad() || bytes == nullptr) {
        return {};
    }
    const std::span<const std::uint8_t> table(bytes, item->getLength());
    std::vector<std::size_t> found;
    std::uint64_t offset = 0;
    for (std::size_t number = 0; number < fragment_nb && found.size() < table.size() / WORD_SIZE; ++number) {
        if (Word(table, found.size()) == offset) {
            found.push_back(number);
        }
        DcmPixelItem* const fragment = items[number + 1];
        if (fragment == nullptr) {
            return {};
        }
        offset += ITEM_HEAD_SIZE + fragment->getLength();
    }
    return found;
}

std::int32_t Compressed_Frames::Frame_Nb() const {
    std::int32_t begun = 0;
    for (std::size_t number = 0; number < fragment_nb; ++number) {
        begun += Begins_Frame(number) ? 1 : 0;
    }
    return begun;
}

bool Compressed_Frames::Share_Out(std::int32_t frame_nb) {
    const auto frames = static_cast<std::size_t>(frame_nb);
    begins.clear();
    pieces.clear();
    if (fragment_nb < frames) {
        return false;
    }
    if (frames == 1) {
        begins = {0};
    } else if (fragment_nb == frames) {
        for (std::size_t number = 0; number < frames; ++number) {
            begins.push_back(number);
        }
    } else {
        begins = Table_Begins();
        if (begins.size() != frames || begins.front() != 0) {
            begins.clear();
            for (std::size_t number = 0; number < fragment_nb; ++number) {
                if (Begins_Frame(number)) {
                    begins.push_back(number);
                }
            }
        }
        if (begins.size() != frames || begins.front() != 0) {
            return false;
        }
    }
    begins.push_back(fragment_nb);
    for (std::size_t number = 0; number < fragment_nb; ++number) {
        pieces.push_back(Fragment(number));  // the toolkit may read a fragment now, and that on one thread only
    }
    return true;
}

std::span<const std::uint8_t> Compressed_Frames::Frame(std::int32_t frame, std::vector<std::uint8_t>& joined) const {
    const std::size_t first = begins[static_cast<std::size_t>(frame)];
    const std::size_t end = begins[static_cast<std::size_t>(frame) + 1];
    if (end - first == 1) {
        return pieces[first];
    }
    joined.clear();
    for (std::size_t number = first; number < end; ++number) {
        joined.insert(joined.end(), pieces[number].begin(), pieces[number].end());
    }
    return joined;
}

}  // namespace volumes
