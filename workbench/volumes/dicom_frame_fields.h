/** What the data set of a DICOM image says of one frame: where it lies, how large its pixels are, what its values mean.
 *  What is missing or cannot be used leaves what was there. */
#pragma once

#include <array>
#include <string>

#include "workbench/volumes/dicom_frames.h"

namespace volumes {

/** What became of a file's real-world values. */
enum class Real_World { None, Shown, Beside_Scale, Unusable };

/** Where the size of pixels comes from. */
enum class Pixel_Source { None, Patient, Region, Detector, Proportion };

/** Reads position and orientation where the items have them; what they have not stays. */
void Place_Read(DcmItem& position_item, DcmItem* orientation_item, Slice_Place& place);
/** The functional group of one frame: its own, else the one that all frames share; null when there is neither. */
DcmItem* Group_Of(DcmItem* own, DcmItem* shared, const DcmTagKey& tag);
/** Rescale numbers, if they are usable. @return false: there is a slope that is not */
bool Scale_Read(DcmItem& item, const DcmTagKey& slope_tag, Frame_Facts& facts);
/** Real-world values where the file has no other scale: one straight line for all stored values. */
Real_World Real_World_Read(DcmItem& item, const Frame_Size& size, Frame_Facts& facts);
/** Whether something can be so many millimetres large, or so far away. */
bool Is_Length(double length);
/** Ultrasound says for parts of the picture how large pixels are. @return whether all flat ones agree */
bool Region_Read(DcmItem& data_set, std::array<double, 3>& spacing, bool& differs);
/** The proportion of pixels without a size: height, width. @return whether there is one */
bool Proportion_Read(DcmItem& data_set, std::array<double, 3>& spacing);
Pixel_Source Spacing_Read(DcmItem& item, std::array<double, 3>& spacing);
/** The normal of a slice whose sides are known, of length 1. */
std::array<double, 3> Unit_Normal(const Slice_Place& place);
/** For people, to follow where the places come from; empty: the size is that in the patient. */
std::string Pixel_Source_Text(Pixel_Source source);

}  // namespace volumes
