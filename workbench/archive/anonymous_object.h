/** Takes the patient's identity out of an image before it leaves. */
#pragma once

#include <string>
#include <string_view>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcitem.h"

namespace workbench::archive {

/** All that is made up follows from a secret, so that what was sent at different times still belongs together, and
 *  nobody without the secret can tell what it was made of. */
class Anonymiser {
  public:
    explicit Anonymiser(std::string its_secret) : secret(std::move(its_secret)) {}

    /** Changes a data set in place (see anonymous_rules.h), and marks it as without identity.
     *  @return empty, or why it cannot be, to follow a name; the data set is not to be sent then */
    std::string Anonymise(DcmItem& data_set) const;

    /** What stands for a unique identifier; those of the standard itself stay. */
    std::string Identifier(std::string_view identifier) const;
    /** Days by which a patient's dates move back: 1 to 3650. */
    int Days(std::string_view patient) const;
    /** What a patient is called: "ANON" and ten hexadecimal digits. */
    std::string Patient_Name(std::string_view patient) const;

  private:
    std::string secret;
};

/** A date, or a date with time, some days earlier: "20240131", "20240131101500.5+0100"; empty: it is none. */
std::string Date_Shifted(std::string_view date, int days);

/** Why the picture itself may show who the patient is: "they are ultrasound"; empty: nothing says so. */
std::string Burnt_In_Doubt(DcmItem& data_set);

}  // namespace workbench::archive
