#include "workbench/volumes/memory_share.h"

#include "workbench/volumes/message_text.h"

namespace volumes {

bool Memory_Share::Take(std::uint64_t bytes) {
    std::uint64_t now = left;
    while (bytes <= now) {
        if (left.compare_exchange_weak(now, now - bytes)) {
            return true;
        }
    }
    return false;
}

std::string Memory_Share::Refusal_Text() const {
    return "does not fit beside the other images: all together may take " + Size_Text(all);
}

Memory_Claim::~Memory_Claim() {
    if (share != nullptr) {
        share->Give_Back(taken);
    }
}

bool Memory_Claim::Grow_To(std::uint64_t bytes) {
    if (share == nullptr || bytes <= taken) {
        return true;
    }
    if (!share->Take(bytes - taken)) {
        return false;
    }
    taken = bytes;
    return true;
}

}  // namespace volumes
