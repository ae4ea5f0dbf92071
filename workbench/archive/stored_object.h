/** A file of an image in memory, and what it says that it is. */
#pragma once

#include <filesystem>
#include <string>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "workbench/volumes/dicom_data_set.h"

namespace workbench::archive {

/** Most bytes of a file, and of what a deflated one inflates to. */
inline constexpr std::size_t STORED_OBJECT_MOST = std::size_t{2} << 30U;

struct Stored_Object {
    std::string bytes;  ///< long values of the data set may still stand in here only
    volumes::Data_Set_Source source;
    DcmFileFormat file;
    std::string sop_class;
    std::string study;  ///< identifiers, whatever is in them
    std::string series;
    std::string identifier;
    std::string syntax;

    DcmDataset& Data_Set() { return *file.getDataset(); }
};

/** @param object receives all of it but what it is given in `bytes` @return empty, or what is wrong, to follow a name
 */
std::string Object_Parse(Stored_Object& object);
/** Reads a file of the disk. @return as above */
std::string Object_Read(const std::filesystem::path& path, Stored_Object& object);

/** What stands before a data set in a file. */
std::string File_Head(const std::string& sop_class, const std::string& identifier, const std::string& syntax);

}  // namespace workbench::archive
