/** The open images by patient, study and series. */
#pragma once

#include <functional>
#include <utility>

#include "workbench/database/leaf_view.h"
#include "workbench/volumes/file_origin.h"

namespace workbench {

/** Lists the frames of a file view below the series, study and patient that their files belong to. Patients are in the
 *  order of their names, studies in that of their dates, series and images in that of their numbers. Files that name no
 *  patient, study or series, as no NIfTI file does, come last, each a branch of its own. */
class Patient_View : public Leaf_View {
  public:
    /** Whose images a file holds, in the panels' letters; null: not known. @param record of the file (File_Record) */
    using Origin_Of = std::function<const volumes::File_Origin*(const void* record)>;

    explicit Patient_View(Origin_Of origin) : origin_of(std::move(origin)) {}

  protected:
    bool List_Rows(int* nb, DB_List** list_pt) override;

  private:
    class Lister;

    Origin_Of origin_of;
};

}  // namespace workbench
