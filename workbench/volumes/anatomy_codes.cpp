#include "workbench/volumes/anatomy_codes.h"

#include <algorithm>
#include <array>

namespace volumes {

namespace {

constexpr const char* SCHEME = "SCT";  // SNOMED CT
constexpr const char* TISSUE = "85756007";
constexpr const char* TISSUE_MEANING = "Tissue";

constexpr auto CODES = std::to_array<Anatomy_Code>({
    {"123037004", "Anatomical Structure", "23451007", "Adrenal gland"},
    {"123037004", "Anatomical Structure", "15825003", "Aorta"},
    {"123037004", "Anatomical Structure", "51114001", "Artery"},
    {"123037004", "Anatomical Structure", "89837001", "Bladder"},
    {"123037004", "Anatomical Structure", "59820001", "Blood vessel"},
    {"123037004", "Anatomical Structure", "272673000", "Bone"},
    {"123037004", "Anatomical Structure", "12738006", "Brain"},
    {"123037004", "Anatomical Structure", "35764002", "Brain ventricle"},
    {"123037004", "Anatomical Structure", "11000004", "Caudate nucleus"},
    {"123037004", "Anatomical Structure", "113305005", "Cerebellum"},
    {"123037004", "Anatomical Structure", "40146001", "Cerebral cortex"},
    {TISSUE, TISSUE_MEANING, "68523003", "Cerebral White Matter"},
    {"91720002", "Body Substance", "65216001", "Cerebrospinal Fluid"},
    {"49755003", "Morphologically Abnormal Structure", "367643001", "Cyst"},
    {"49755003", "Morphologically Abnormal Structure", "79654002", "Edema"},
    {"123037004", "Anatomical Structure", "32849002", "Esophagus"},
    {"123037004", "Anatomical Structure", "35918002", "Fourth ventricle"},
    {"123037004", "Anatomical Structure", "28231008", "Gallbladder"},
    {TISSUE, TISSUE_MEANING, "389081007", "Gray Matter"},
    {"123037004", "Anatomical Structure", "80891009", "Heart"},
    {"49755003", "Morphologically Abnormal Structure", "50960005", "Hemorrhage"},
    {"123037004", "Anatomical Structure", "5366008", "Hippocampus"},
    {"123037004", "Anatomical Structure", "64033007", "Kidney"},
    {"123037004", "Anatomical Structure", "66720007", "Lateral ventricle"},
    {"49755003", "Morphologically Abnormal Structure", "52988006", "Lesion"},
    {"123037004", "Anatomical Structure", "10200004", "Liver"},
    {"123037004", "Anatomical Structure", "39607008", "Lung"},
    {"49755003", "Morphologically Abnormal Structure", "6574001", "Necrosis"},
    {"49755003", "Morphologically Abnormal Structure", "108369006", "Neoplasm"},
    {"49755003", "Morphologically Abnormal Structure", "86049000", "Neoplasm, Primary"},
    {"49755003", "Morphologically Abnormal Structure", "27925004", "Nodule"},
    {"123037004", "Anatomical Structure", "15776009", "Pancreas"},
    {"123037004", "Anatomical Structure", "41216001", "Prostate"},
    {"123037004", "Anatomical Structure", "89278009", "Putamen"},
    {TISSUE, TISSUE_MEANING, "127954009", "Skeletal muscle"},
    {"123037004", "Anatomical Structure", "39937001", "Skin"},
    {"123037004", "Anatomical Structure", "2748008", "Spinal cord"},
    {"123037004", "Anatomical Structure", "421060004", "Spine"},
    {"123037004", "Anatomical Structure", "78961009", "Spleen"},
    {"123037004", "Anatomical Structure", "69695003", "Stomach"},
    {"123037004", "Anatomical Structure", "42695009", "Thalamus"},
    {"123037004", "Anatomical Structure", "49841001", "Third ventricle"},
    {"123037004", "Anatomical Structure", "69748006", "Thyroid"},
    {TISSUE, TISSUE_MEANING, "85756007", "Tissue"},
    {"123037004", "Anatomical Structure", "44567001", "Trachea"},
    {"123037004", "Anatomical Structure", "35039007", "Uterus"},
    {"123037004", "Anatomical Structure", "29092000", "Vein"},
    {"123037004", "Anatomical Structure", "51282000", "Vertebra"},
    {TISSUE, TISSUE_MEANING, "389080008", "White Matter"},
});

char Small(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool Is_Same_Name(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, Small, Small);
}

}  // namespace

std::span<const Anatomy_Code> Anatomy_Codes() {
    return CODES;
}

void Anatomy_Code_Set(Segment& segment) {
    const auto* const found = std::ranges::find_if(
        CODES, [&](const Anatomy_Code& code) { return Is_Same_Name(code.meaning, segment.label); });
    const bool is_known = found != CODES.end();
    segment.category = {is_known ? found->category : TISSUE, SCHEME,
                        is_known ? found->category_meaning : TISSUE_MEANING};
    segment.type = {is_known ? found->type : TISSUE, SCHEME, is_known ? found->meaning : TISSUE_MEANING};
}

}  // namespace volumes
