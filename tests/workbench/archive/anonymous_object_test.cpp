// What is left of a patient in an image that leaves without identity: element by element.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcdicent.h"
#include "dcmtk/dcmdata/dcdict.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "dcmtk/dcmdata/dcvrobow.h"
#include "workbench/archive/anonymous_object.h"
#include "workbench/archive/secret_hash.h"
#include "workbench/volumes/dicom_fields.h"

using namespace workbench::archive;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using volumes::Field_Text;

namespace {

const std::string SECRET(64, '7');

std::string Hex(const Hash_Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += "0123456789abcdef"[byte >> 4U];
        text += "0123456789abcdef"[byte & 15U];
    }
    return text;
}

void Put(DcmItem& item, const DcmTag& tag, const std::string& value) {
    ASSERT_TRUE(item.putAndInsertString(tag, value.c_str()).good()) << tag.toString().c_str();
}

void Pixels_Put(DcmItem& item) {
    constexpr Uint16 pixels[] = {1, 2, 3, 4};
    ASSERT_TRUE(item.putAndInsertUint16Array(DCM_PixelData, pixels, 4).good());
}

/** What is written of an image, without its pixels. */
std::set<std::string> Values_In(DcmItem& item, const std::string& value) {
    std::set<std::string> found;
    for (unsigned long at = 0; at < item.card(); ++at) {
        DcmElement& element = *item.getElement(at);
        OFString text;
        if (element.getOFStringArray(text).good() &&
            std::string(text.c_str(), text.size()).find(value) != std::string::npos) {
            found.insert(element.getTag().toString().c_str());
        }
    }
    return found;
}

/** Every element of the toolkit's dictionary that has one of the forms. */
std::vector<DcmTag> Dictionary_Of(const std::vector<DcmEVR>& forms) {
    std::vector<DcmTag> tags;
    DcmDataDictionary& dictionary = dcmDataDict.wrlock();
    for (DcmHashDictIterator at = dictionary.normalBegin(); at != dictionary.normalEnd(); ++at) {
        const DcmDictEntry& entry = **at;
        const bool is_wanted = std::ranges::find(forms, entry.getEVR()) != forms.end();
        if (is_wanted && entry.getPrivateCreator() == nullptr && entry.getGroup() > 0x0007 && entry.getElement() > 0) {
            tags.emplace_back(entry.getGroup(), entry.getElement(), entry.getVR());
        }
    }
    dcmDataDict.wrunlock();
    return tags;
}

/** An image that has a value in every element of some forms. @return what has it still when it is anonymous */
std::set<std::string> Left_Of(const std::vector<DcmEVR>& forms, const std::string& value) {
    DcmDataset image;
    Pixels_Put(image);
    DcmItem* inside = nullptr;
    EXPECT_TRUE(image.findOrCreateSequenceItem(DCM_ReferencedImageSequence, inside, 0).good());
    const std::vector<DcmTag> tags = Dictionary_Of(forms);
    EXPECT_GT(tags.size(), 20U) << "no dictionary";
    for (const DcmTag& tag : tags) {
        Put(image, tag, value);
        Put(*inside, tag, value);
    }
    EXPECT_EQ(Values_In(image, value).size(), tags.size());
    EXPECT_EQ(Anonymiser(SECRET).Anonymise(image), "");
    std::set<std::string> left = Values_In(image, value);
    EXPECT_TRUE(image.findAndGetSequenceItem(DCM_ReferencedImageSequence, inside, 0).good());
    EXPECT_EQ(Values_In(*inside, value), left) << "inside a sequence";
    return left;
}

DcmDataset& Image(DcmFileFormat& file) {
    DcmDataset& image = *file.getDataset();
    Pixels_Put(image);
    Put(image, DCM_SOPClassUID, UID_MRImageStorage);
    Put(image, DCM_SOPInstanceUID, "1.2.3.4");
    Put(image, DCM_PatientID, "P1");
    Put(image, DCM_PatientName, "Doe^Jane");
    Put(image, DCM_StudyDate, "20240131");
    return image;
}

}  // namespace

TEST(Secret_Hash, is_the_standard_one) {
    EXPECT_EQ(Hex(Hash_Of("")), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(Hex(Hash_Of("abc")), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(Hex(Hash_Of("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(Hex(Hash_Of(std::string(1'000'000, 'a'))),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
    EXPECT_EQ(Hex(Secret_Hash_Of(std::string(20, '\x0b'), "Hi There")),
              "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7");
    EXPECT_EQ(Hex(Secret_Hash_Of("Jefe", "what do ya want for nothing?")),
              "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843");
    EXPECT_EQ(Hex(Secret_Hash_Of(std::string(131, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First")),
              "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54");
}

TEST(Secret_Hash, has_a_new_secret_every_time) {
    const std::string one = Secret_New();
    EXPECT_TRUE(Is_Secret(one)) << one;
    EXPECT_NE(one, Secret_New());
    EXPECT_FALSE(Is_Secret(one.substr(1)));
    EXPECT_FALSE(Is_Secret(std::string(64, 'G')));
}

TEST(Anonymous_Object, keeps_no_text_of_the_dictionary_but_those_that_devices_write) {
    EXPECT_THAT(Left_Of({EVR_AE, EVR_LO, EVR_LT, EVR_PN, EVR_SH, EVR_ST, EVR_UC, EVR_UR, EVR_UT}, "SECRET"),
                ElementsAre("(0008,0070)", "(0008,0100)", "(0008,0102)", "(0008,0103)", "(0008,0104)", "(0008,0119)",
                            "(0008,1090)", "(0018,0024)", "(0018,0031)", "(0018,0085)", "(0018,1016)", "(0018,1018)",
                            "(0018,1019)", "(0018,1020)", "(0018,1160)", "(0018,1210)", "(0018,1250)", "(0018,1251)",
                            "(0018,9005)", "(0020,1040)", "(0020,9056)", "(0020,9421)", "(0028,1054)", "(0028,1055)",
                            "(0028,3003)", "(0040,9210)", "(0054,0018)", "(0054,1101)", "(0054,1103)", "(0054,1104)",
                            "(0054,1105)", "(0062,0005)", "(0062,0006)", "(0062,0009)", "(0066,0031)", "(0066,0036)"));
}

TEST(Anonymous_Object, replaces_every_identifier_that_is_not_a_kind_of_object) {
    EXPECT_THAT(Left_Of({EVR_UI}, "1.2.3.99"),
                ElementsAre("(0008,0016)", "(0008,010c)", "(0008,0117)", "(0008,0118)", "(0008,1150)", "(0008,115a)"));
}

TEST(Anonymous_Object, moves_every_date_and_tells_no_age) {
    EXPECT_THAT(Left_Of({EVR_DA, EVR_DT}, "20200229"), ElementsAre("(0008,0106)", "(0008,0107)"));
    DcmFileFormat file;
    DcmDataset& image = Image(file);
    Put(image, DCM_PatientAge, "042Y");
    Put(image, DCM_PatientWeight, "71.5");
    Put(image, DCM_PatientBirthDate, "19700131");
    Put(image, DCM_PatientSex, "F");
    Put(image, DCM_AcquisitionDateTime, "20240131101500.250+0100");
    Put(image, DCM_StudyTime, "101500");
    const Anonymiser anonymiser(SECRET);
    EXPECT_EQ(anonymiser.Anonymise(image), "");
    EXPECT_FALSE(image.tagExists(DCM_PatientAge));
    EXPECT_FALSE(image.tagExists(DCM_PatientWeight));
    EXPECT_TRUE(image.tagExists(DCM_PatientBirthDate));
    EXPECT_EQ(Field_Text(image, DCM_PatientBirthDate), "");
    EXPECT_TRUE(image.tagExists(DCM_PatientSex));
    EXPECT_EQ(Field_Text(image, DCM_PatientSex), "");
    const std::string day = Date_Shifted("20240131", anonymiser.Days("P1"));
    EXPECT_EQ(Field_Text(image, DCM_StudyDate), day);
    EXPECT_EQ(Field_Text(image, DCM_AcquisitionDateTime), day + "101500.250+0100");
    EXPECT_EQ(Field_Text(image, DCM_StudyTime), "101500");
}

TEST(Anonymous_Object, says_that_it_is_one_and_how) {
    DcmFileFormat file;
    DcmDataset& image = Image(file);
    EXPECT_EQ(Anonymiser(SECRET).Anonymise(image), "");
    EXPECT_EQ(Field_Text(image, DCM_PatientIdentityRemoved), "YES");
    EXPECT_NE(Field_Text(image, DCM_DeidentificationMethod), "");
    EXPECT_EQ(Field_Text(image, DCM_LongitudinalTemporalInformationModified), "MODIFIED");
    std::vector<std::string> codes;
    for (DcmItem* const item : volumes::Field_Items(image, DCM_DeidentificationMethodCodeSequence)) {
        codes.push_back(Field_Text(*item, DCM_CodingSchemeDesignator) + Field_Text(*item, DCM_CodeValue));
    }
    EXPECT_THAT(codes, ElementsAre("DCM113100", "DCM113107"));
    EXPECT_EQ(Field_Text(image, DCM_SOPClassUID), UID_MRImageStorage);
    EXPECT_TRUE(image.tagExists(DCM_PixelData));
}

TEST(Anonymous_Object, has_no_private_elements_overlays_and_signatures_at_any_depth) {
    DcmFileFormat file;
    DcmDataset& image = Image(file);
    DcmItem* inside = nullptr;
    DcmItem* deep = nullptr;
    ASSERT_TRUE(image.findOrCreateSequenceItem(DCM_PerFrameFunctionalGroupsSequence, inside, 0).good());
    ASSERT_TRUE(inside->findOrCreateSequenceItem(DCM_DerivationImageSequence, deep, 0).good());
    for (DcmItem* const item : {static_cast<DcmItem*>(&image), inside, deep}) {
        Put(*item, DcmTag(0x0009, 0x0010, EVR_LO), "MAKER");
        Put(*item, DcmTag(0x0009, 0x1001, EVR_LO), "Doe Jane");
        Put(*item, DcmTag(0x0009, 0x1002, EVR_DS), "71.5");
        Put(*item, DCM_OperatorsName, "Nurse^Ann");
        Put(*item, DcmTag(0x6000, 0x4000, EVR_LT), "Doe Jane");
        DcmItem* signature = nullptr;
        ASSERT_TRUE(item->findOrCreateSequenceItem(DCM_DigitalSignaturesSequence, signature, 0).good());
    }
    Put(*deep, DCM_SOPInstanceUID, "1.2.3.4");
    EXPECT_EQ(Anonymiser(SECRET).Anonymise(image), "");
    ASSERT_TRUE(image.findAndGetSequenceItem(DCM_PerFrameFunctionalGroupsSequence, inside, 0).good());
    ASSERT_TRUE(inside->findAndGetSequenceItem(DCM_DerivationImageSequence, deep, 0).good());
    EXPECT_EQ(inside->card(), 1U) << "the sequence alone";
    EXPECT_EQ(deep->card(), 1U) << "the identifier alone";
    EXPECT_EQ(Field_Text(*deep, DCM_SOPInstanceUID), Field_Text(image, DCM_SOPInstanceUID));
    EXPECT_FALSE(image.tagExists(DcmTagKey(0x0009, 0x0010)));
    EXPECT_FALSE(image.tagExists(DcmTagKey(0x0009, 0x1001)));
    EXPECT_FALSE(image.tagExists(DcmTagKey(0x0009, 0x1002)));
    EXPECT_FALSE(image.tagExists(DcmTagKey(0x6000, 0x4000)));
    EXPECT_FALSE(image.tagExists(DCM_OperatorsName));
    EXPECT_FALSE(image.tagExists(DCM_DigitalSignaturesSequence));
}

TEST(Anonymous_Object, is_not_deceived_by_a_value_in_another_form) {
    DcmFileFormat file;
    DcmDataset& image = Image(file);
    constexpr Uint8 name[] = {'D', 'o', 'e', '^', 'J', 'a', 'n', 'e'};
    for (const DcmTagKey& tag : {DCM_PatientName, DCM_StudyDescription, DCM_Manufacturer, DCM_StudyDate}) {
        ASSERT_TRUE(image.putAndInsertUint8Array(DcmTag(tag, EVR_OB), name, sizeof name).good());
    }
    Put(image, DcmTag(DCM_InstitutionName, EVR_CS), "CLINIC");
    EXPECT_EQ(Anonymiser(SECRET).Anonymise(image), "");
    for (const DcmTagKey& tag :
         {DCM_PatientName, DCM_StudyDescription, DCM_StudyDate, DCM_InstitutionName, DCM_Manufacturer}) {
        EXPECT_FALSE(image.tagExists(tag)) << tag.toString().c_str();
    }
}

TEST(Anonymous_Object, has_no_sequence_that_is_not_written_as_one) {
    constexpr Uint8 name[] = {'D', 'o', 'e', '^', 'J', 'a', 'n', 'e'};
    constexpr Uint16 words[] = {0x6F44, 0x5E65, 0x614A, 0x656E};
    for (const DcmEVR form : {EVR_OB, EVR_OW, EVR_UN}) {
        DcmFileFormat file;
        DcmDataset& image = Image(file);
        DcmItem* inside = nullptr;
        ASSERT_TRUE(image.findOrCreateSequenceItem(DCM_SharedFunctionalGroupsSequence, inside, 0).good());
        const std::vector<DcmTagKey> tags = {DCM_ReferencedImageSequence, DCM_SegmentSequence,
                                             DCM_PerFrameFunctionalGroupsSequence};
        for (const DcmTagKey& tag : tags) {
            for (DcmItem* const item : {static_cast<DcmItem*>(&image), inside}) {
                auto* const hidden = new DcmOtherByteOtherWord(DcmTag(tag, form));
                const OFCondition put =
                    form == EVR_OW ? hidden->putUint16Array(words, 4) : hidden->putUint8Array(name, sizeof name);
                ASSERT_TRUE(put.good());
                ASSERT_TRUE(item->insert(hidden, OFTrue).good());
            }
        }
        EXPECT_EQ(Anonymiser(SECRET).Anonymise(image), "");
        for (const DcmTagKey& tag : tags) {
            EXPECT_FALSE(image.tagExists(tag, OFTrue)) << DcmVR(form).getVRName() << " " << tag.toString().c_str();
        }
    }
}

TEST(Anonymous_Object, belongs_together_with_others_of_the_patient_and_tells_nobody_without_the_secret) {
    const Anonymiser anonymiser(SECRET);
    const Anonymiser other(std::string(64, '8'));
    EXPECT_EQ(anonymiser.Identifier("1.2.3"), Anonymiser(SECRET).Identifier("1.2.3"));
    EXPECT_THAT(anonymiser.Identifier("1.2.3"), StartsWith("2.25."));
    EXPECT_LE(anonymiser.Identifier("1.2.3").size(), 44U);
    EXPECT_NE(anonymiser.Identifier("1.2.3"), anonymiser.Identifier("1.2.4"));
    EXPECT_NE(anonymiser.Identifier("1.2.3"), other.Identifier("1.2.3"));
    EXPECT_EQ(anonymiser.Identifier(UID_CTImageStorage), UID_CTImageStorage);
    EXPECT_EQ(anonymiser.Identifier(""), "");
    EXPECT_THAT(anonymiser.Identifier("1.2.840.10008.99.1"), StartsWith("2.25.")) << "none of the standard's";
    EXPECT_NE(anonymiser.Patient_Name("P1"), anonymiser.Patient_Name("P2"));
    EXPECT_NE(anonymiser.Patient_Name("P1"), other.Patient_Name("P1"));
    EXPECT_EQ(anonymiser.Patient_Name("P1").size(), 14U);
    std::set<int> days;
    for (int patient = 0; patient < 200; ++patient) {
        days.insert(anonymiser.Days(std::to_string(patient)));
    }
    EXPECT_GT(days.size(), 150U);
    EXPECT_GE(*days.begin(), 1);
    EXPECT_LE(*days.rbegin(), 3650);
}

TEST(Anonymous_Object, does_not_tell_by_the_day_of_its_making_how_far_dates_were_moved) {
    const std::string today = "20261123";
    DcmFileFormat file;
    DcmDataset& labels = Image(file);
    Put(labels, DCM_Modality, "SEG");
    Put(labels, DCM_StudyDate, "20240131");
    Put(labels, DCM_StudyTime, "101500");
    for (const DcmTagKey& tag : {DCM_SeriesDate, DCM_ContentDate, DCM_InstanceCreationDate}) {
        Put(labels, tag, today);
    }
    Put(labels, DCM_ContentTime, "170000");
    const Anonymiser anonymiser(SECRET);
    EXPECT_EQ(anonymiser.Anonymise(labels), "");
    const std::string study = Field_Text(labels, DCM_StudyDate);
    EXPECT_NE(study, "20240131");
    for (const DcmTagKey& tag : {DCM_SeriesDate, DCM_ContentDate, DCM_InstanceCreationDate}) {
        EXPECT_EQ(Field_Text(labels, tag), study) << tag.toString().c_str();
    }
    EXPECT_EQ(Field_Text(labels, DCM_ContentTime), "101500");
}

TEST(Anonymous_Object, is_of_the_same_patient_whatever_its_letters_and_of_another_in_another_hospital) {
    const auto name_of = [](const std::function<void(DcmDataset&)>& fill) {
        DcmFileFormat file;
        DcmDataset& image = Image(file);
        for (const DcmTagKey& tag : {DCM_PatientID, DCM_PatientName, DCM_IssuerOfPatientID}) {
            image.findAndDeleteElement(tag);
        }
        Put(image, DCM_PatientName, "");  // it is there, and gets a name
        fill(image);
        EXPECT_EQ(Anonymiser(SECRET).Anonymise(image), "");
        return Field_Text(image, DCM_PatientName);
    };
    const std::string latin = name_of([](DcmDataset& image) {
        Put(image, DCM_SpecificCharacterSet, "ISO_IR 100");
        Put(image, DCM_PatientName, "M\xFCller^Eva");
    });
    EXPECT_EQ(latin, name_of([](DcmDataset& image) {
                  Put(image, DCM_SpecificCharacterSet, "ISO_IR 192");
                  Put(image, DCM_PatientName, "M\xC3\xBCller^Eva");
              }));
    const auto of_hospital = [&](const char* issuer) {
        return name_of([issuer](DcmDataset& image) {
            Put(image, DCM_PatientID, "1");
            Put(image, DCM_IssuerOfPatientID, issuer);
        });
    };
    EXPECT_NE(of_hospital("A"), of_hospital("B"));
    const auto of_study = [&](const char* study) {
        return name_of([study](DcmDataset& image) { Put(image, DCM_StudyInstanceUID, study); });
    };
    EXPECT_NE(of_study("1.2.3"), of_study("1.2.4")) << "nobody knows whether they are one patient";
    EXPECT_EQ(of_study("1.2.3"), of_study("1.2.3"));
}

TEST(Anonymous_Object, has_what_enhanced_objects_must_have) {
    DcmFileFormat file;
    DcmDataset& image = Image(file);
    Put(image, DCM_DeviceSerialNumber, "SN 4711");
    EXPECT_EQ(Anonymiser(SECRET).Anonymise(image), "");
    EXPECT_EQ(Field_Text(image, DCM_DeviceSerialNumber), "ANONYMOUS");
}

TEST(Anonymous_Object, is_an_image) {
    DcmDataset report;
    Put(report, DCM_PatientName, "Doe^Jane");
    EXPECT_THAT(Anonymiser(SECRET).Anonymise(report), HasSubstr("is no image"));
    EXPECT_EQ(Field_Text(report, DCM_PatientName), "Doe^Jane");
}

TEST(Date_Shifted, goes_over_months_years_and_leap_days) {
    EXPECT_EQ(Date_Shifted("20240301", 1), "20240229");
    EXPECT_EQ(Date_Shifted("20230301", 1), "20230228");
    EXPECT_EQ(Date_Shifted("20240101", 366), "20221231");
    EXPECT_EQ(Date_Shifted("20240131101500.5+0100", 31), "20231231101500.5+0100");
}

TEST(Date_Shifted, makes_nothing_of_what_is_no_day) {
    for (const char* const date : {"", "2024", "202401", "20240230", "20241301", "2024013x", "2024-01-31", "00000000",
                                   "-2024013", "20240131 Jane", "00010101"}) {
        EXPECT_EQ(Date_Shifted(date, 400), "") << date;
    }
}

TEST(Burnt_In, texts_are_expected_in_pictures_of_screens_and_of_some_modalities) {
    const auto doubt = [](const char* modality, const char* told, const char* type, const char* kind) {
        DcmDataset image;
        Put(image, DCM_Modality, modality);
        Put(image, DCM_BurnedInAnnotation, told);
        Put(image, DCM_ImageType, type);
        Put(image, DCM_SOPClassUID, kind);
        return Burnt_In_Doubt(image);
    };
    EXPECT_EQ(doubt("MR", "", "ORIGINAL\\PRIMARY", UID_MRImageStorage), "");
    EXPECT_EQ(doubt("US", "NO", "ORIGINAL\\PRIMARY", UID_UltrasoundImageStorage), "");
    EXPECT_EQ(doubt("US", "", "ORIGINAL\\PRIMARY", UID_UltrasoundImageStorage), "they are ultrasound");
    EXPECT_EQ(doubt("MR", "YES", "ORIGINAL\\PRIMARY", UID_MRImageStorage), "they say that texts are burnt into them");
    EXPECT_EQ(doubt("CT", "NO", "DERIVED\\SECONDARY\\SCREEN SAVE", UID_CTImageStorage),
              "they are pictures of a screen");
    EXPECT_EQ(doubt("CT", "", "DERIVED\\SECONDARY", UID_SecondaryCaptureImageStorage), "they are secondary captures");
    EXPECT_EQ(doubt("SM", "", "ORIGINAL\\PRIMARY\\VOLUME", UID_VLWholeSlideMicroscopyImageStorage),
              "they are microscopy");
    EXPECT_EQ(doubt("SM", "NO", "ORIGINAL\\PRIMARY\\LABEL\\NONE", UID_VLWholeSlideMicroscopyImageStorage),
              "they show the label of a slide");
}

TEST(Burnt_In, an_overlay_in_the_bits_of_the_pixels_is_noticed) {
    DcmDataset image;
    Put(image, DCM_Modality, "CT");
    Put(image, DCM_BurnedInAnnotation, "NO");
    ASSERT_TRUE(image.putAndInsertUint16(DcmTag(0x6000, 0x0010, EVR_US), 512).good());
    ASSERT_TRUE(image.putAndInsertUint16(DcmTag(0x6000, 0x0102, EVR_US), 12).good());
    EXPECT_EQ(Burnt_In_Doubt(image), "they have an overlay in the unused bits of their pixels");
    constexpr Uint16 bits[] = {0};
    ASSERT_TRUE(image.putAndInsertUint16Array(DcmTag(0x6000, 0x3000, EVR_OW), bits, 1).good());
    EXPECT_EQ(Burnt_In_Doubt(image), "") << "goes with its group";
}
