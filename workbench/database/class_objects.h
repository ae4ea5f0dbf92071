/** The 1D and 3D class trees of the application: curves and anatomical structures that work is sorted by. */
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kits/dataset/dataset_host.h"

namespace workbench {

/** Owns the objects; the kit owns how they hang together. Named in "$DB_1D_ROOT_PT" and "$DB_3D_ROOT_PT" for as long as
 *  it lives. */
class Class_Objects {
  public:
    Class_Objects();
    ~Class_Objects();
    Class_Objects(const Class_Objects&) = delete;
    Class_Objects& operator=(const Class_Objects&) = delete;

    Quorel_1D* Root_1D() const { return curves.front().get(); }
    Quorel_3D* Root_3D() const { return structures.front().get(); }

  private:
    std::vector<std::unique_ptr<Quorel_1D>> curves;  // the root first
    std::vector<std::unique_ptr<Quorel_3D>> structures;
};

}  // namespace workbench
