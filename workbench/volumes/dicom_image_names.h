/** What a DICOM image is called: itself, its series, its study and its patient. */
#pragma once

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcitem.h"
#include "workbench/volumes/dicom_reader.h"

namespace volumes {

/** Fills instance, origin, moment and is_scout. */
void Names_Read(DcmItem& data_set, Dicom_Image& image);

}  // namespace volumes
