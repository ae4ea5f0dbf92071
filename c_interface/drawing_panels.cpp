// The histogram and database panels.
#include "c_interface/panel_work_of.h"
#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "histogram/tool_histo.h"

namespace c_interface {

namespace {

class Histogram_Work : public Work_Of<Tool_Histo> {
  public:
    void Update(unsigned __int64 flags) override {
        // A computation paints nothing, and a panel that has lost its counts keeps the old curve.
        const bool had_counts = Has_Counts();
        tool.Update(Has_Any(flags, UPDATE_HISTO_DATA | UPDATE_SELECTION) ? flags | UPDATE_HISTO_PAINT : flags);
        if (Has_Counts() != had_counts) {
            tool.Draw();
        }
    }
    Tool_Histo* Histogram() override { return &tool; }

  private:
    bool Has_Counts() const { return tool.data != nullptr && tool.data->Has_Counts(); }
};

}  // namespace

static_assert(KIT_DATABASE_EDIT == DB_MODE_EDIT && KIT_DATABASE_ADD == DB_MODE_ADD);

std::unique_ptr<Panel_Work> Histogram_Work_Make() {
    return std::make_unique<Histogram_Work>();
}

std::unique_ptr<Panel_Work> Classes_Work_Make(int mode) {
    return std::make_unique<Work_Of<Tool_DB_Class>>(mode);
}

std::unique_ptr<Panel_Work> Files_Work_Make(int mode) {
    return std::make_unique<Work_Of<Tool_DB_File>>(mode);
}

}  // namespace c_interface
