// Which arrays go with which counts, and how much of them panels show.
#include <string>

#include "kits/common/contract.h"
#include "kits/dataset/variables.h"

namespace {

struct Counted {
    const char* count;
    int most;              // that panels show
    const char* array[9];  // at least as long as the count
};

constexpr Counted COUNTED[] = {
    {"$TAG_NB",
     256,
     {"$TAG_RED", "$TAG_GRN", "$TAG_BLU", "$TAG_LABEL", "$TAG_ENABLE", "$TAG_SELECT", "$TAG_LOCK", "$TAG_THRESHOLD_MIN",
      "$TAG_THRESHOLD_MAX"}},
    {"$MARKER_NB", 64, {"$MARKER_COLOR", "$MARKER_ENABLE", "$MARKER_LABEL"}},
    {"$BRUSH_NB", 8, {"$BRUSH_SIZE", "$BRUSH_PT"}},
    {"$DB_2D_FILE_NB", 65535, {"$DB_2D_FILE_PT"}},
};

}  // namespace

int Contract_Check_Variables() {
    const int before = Contract_Report_Nb();
    for (const Counted& counted : COUNTED) {
        // What is missing altogether is reported when a panel asks for it.
        const auto count = static_cast<long long>(Variable_Number(counted.count, 0));
        if (count > counted.most) {
            Contract_Report(CONTRACT_COUNT_CAP, (std::string(counted.count) + " is " + std::to_string(count) +
                                                 ", panels show " + std::to_string(counted.most))
                                                    .c_str());
        }
        for (const char* name : counted.array) {
            const Variable* array = name != nullptr ? Variable_Find(name) : nullptr;
            if (array != nullptr && array->form == Variable::Form::Array && array->nb < count) {
                Contract_Report(CONTRACT_COUNT_CAP, (std::string(name) + " has " + std::to_string(array->nb) +
                                                     " elements, " + counted.count + " is " + std::to_string(count))
                                                        .c_str());
            }
        }
    }
    return Contract_Report_Nb() - before;
}

void Contract_Check_Update(unsigned __int64 flags) {
    if (Has_Any(flags, UPDATE_STRUCTURE | UPDATE_SELECTION) &&
        !Has_Any(flags, UPDATE_LEVEL_1D | UPDATE_LEVEL_2D | UPDATE_LEVEL_3D)) {
        Contract_Report(CONTRACT_FLAG_LEVEL,
                        Has_Any(flags, UPDATE_STRUCTURE) ? "UPDATE_STRUCTURE" : "UPDATE_SELECTION");
    }
}
