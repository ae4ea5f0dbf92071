#include "workbench/volumes/dicom_head_scan.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "workbench/volumes/image_file_bytes.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/work_share.h"

namespace volumes {

bool Is_More_Than(std::span<const Wanted_File> files, std::uint64_t bytes) {
    std::uint64_t sum = 0;
    return std::ranges::any_of(files, [&](const Wanted_File& file) {
        std::error_code unknown;
        const std::uintmax_t size = std::filesystem::file_size(file.path, unknown);
        sum += unknown ? 0 : size;
        return sum > bytes;
    });
}

std::vector<Dicom_Head> Waiting_Heads(std::span<const Wanted_File> files,
                                      const std::function<bool(std::size_t)>& on_done) {
    std::vector<Dicom_Head> heads(files.size());
    Reading_Rooms rooms;
    const auto read = [&](std::size_t at) {
        if (!Is_Volume_Name(File_Name_Text(files[at].path))) {
            std::unique_ptr<Reading_Room> own = rooms.Take();
            heads[at] = Dicom_Head_Read(files[at].path, *own);
            rooms.Give_Back(std::move(own));
        }
    };
    if (!Work_Share(files.size(), Work_Thread_Nb(files.size()), read, on_done)) {
        return {};
    }
    std::unordered_map<std::string_view, int> nb_of;
    for (const Dicom_Head& head : heads) {
        if (head.image && !head.image->instance.empty()) {
            ++nb_of[head.image->instance];
        }
    }
    std::vector<bool> is_one_of_several;
    is_one_of_several.reserve(heads.size());
    for (const Dicom_Head& head : heads) {
        is_one_of_several.push_back(head.image && !head.image->instance.empty() && nb_of[head.image->instance] > 1);
    }
    for (std::size_t at = 0; at < heads.size(); ++at) {
        if (is_one_of_several[at]) {
            heads[at] = {};
        }
    }
    return heads;
}

}  // namespace volumes
