#include "workbench/archive/stored_object.h"

#include <new>
#include <vector>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcmetinf.h"
#include "dcmtk/dcmdata/dcostrmb.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/file_operations.h"

namespace workbench::archive {

std::string Object_Parse(Stored_Object& object) {
    try {
        volumes::Data_Set_Read({reinterpret_cast<const std::uint8_t*>(object.bytes.data()), object.bytes.size()},
                               STORED_OBJECT_MOST, object.file, object.source);
    } catch (const volumes::Dicom_Refusal& refusal) {
        return refusal.text;
    }
    DcmDataset& data_set = object.Data_Set();
    object.sop_class = volumes::Field_Text(data_set, DCM_SOPClassUID);
    object.study = volumes::Field_Text(data_set, DCM_StudyInstanceUID);
    object.series = volumes::Field_Text(data_set, DCM_SeriesInstanceUID);
    object.identifier = volumes::Field_Text(data_set, DCM_SOPInstanceUID);
    object.syntax = DcmXfer(data_set.getOriginalXfer()).getXferID();
    return {};
}

std::string Object_Read(const std::filesystem::path& path, Stored_Object& object) {
    if (const std::error_code code = volumes::File_Operations_In_Use().read(path, STORED_OBJECT_MOST, object.bytes)) {
        return "cannot be read: " + code.message();
    }
    return Object_Parse(object);
}

std::string File_Head(const std::string& sop_class, const std::string& identifier, const std::string& syntax) {
    constexpr std::size_t most = 4096;  // bytes; its texts have 64 letters
    DcmMetaInfo meta;
    const auto put = [&](const DcmTagKey& tag, const char* text) {
        if (meta.putAndInsertString(tag, text).bad()) {
            throw std::bad_alloc();
        }
    };
    constexpr Uint8 version[] = {0, 1};
    if (meta.putAndInsertUint8Array(DCM_FileMetaInformationVersion, version, sizeof version).bad()) {
        throw std::bad_alloc();
    }
    put(DCM_MediaStorageSOPClassUID, sop_class.c_str());
    put(DCM_MediaStorageSOPInstanceUID, identifier.c_str());
    put(DCM_TransferSyntaxUID, syntax.c_str());
    put(DCM_ImplementationClassUID, OFFIS_IMPLEMENTATION_CLASS_UID);
    meta.computeGroupLengthAndPadding(EGL_withGL, EPD_withoutPadding, META_HEADER_DEFAULT_TRANSFERSYNTAX,
                                      EET_UndefinedLength);
    std::string bytes(most, '\0');
    DcmOutputBufferStream stream(bytes.data(), static_cast<offile_off_t>(bytes.size()));
    meta.transferInit();
    const OFCondition written = meta.write(stream, META_HEADER_DEFAULT_TRANSFERSYNTAX, EET_UndefinedLength, nullptr);
    meta.transferEnd();
    void* begin = nullptr;
    offile_off_t size = 0;
    stream.flushBuffer(begin, size);
    if (written.bad()) {
        throw std::bad_alloc();
    }
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

}  // namespace workbench::archive
