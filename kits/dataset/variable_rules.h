/** @file
 *  The host variables that panels and kits read: what each is, what a host gives it first, and what follows a change.
 *  One table: the contract checks go by it, and docs/host_variables.md shows it. */
#pragma once

#include "host/kit_dataset.h"

/** How a variable is defined. */
enum class Variable_Shape : unsigned char {
    Scalar,  ///< Variable_Define_Scalar
    Array,   ///< Variable_Define_Array, Variable_Define_Array_At
    Text,    ///< Variable_Define_Text
    Object,  ///< Variable_Define_Pointer
};

/** One variable. No text is null; those that do not apply are empty. */
struct Variable_Rule {
    const char* name;          ///< with its "$"
    Variable_Type type;        ///< of the scalar or of an element
    Variable_Shape shape;      ///< see above
    const char* length;        ///< of an array: the variable with the least number of elements, or that number
    int most;                  ///< of a count: largest number that panels show; 0: no limit
    int multiple;              ///< of a count: it is a multiple of this; 0: any
    const char* recommended;   ///< first value, of every element: a number at 96 dots per inch, a text, or "null"
    const char* unit;          ///< "pixels", "GLI" (grey levels) ...
    const char* writer;        ///< who changes it after the first definition
    const char* reader;        ///< which panels look at it
    const char* change;        ///< what the host sends after a change
    bool is_optional = false;  ///< panels do without: its absence is no mistake
};

/** The table. @param nb receives the number of rules; may be null. @return the first one, static */
KIT_DATASET_API const Variable_Rule* Variable_Rules(int* nb);
/** The rule of a name, null when no panel knows it. */
KIT_DATASET_API const Variable_Rule* Variable_Rule_Find(const char* name);
/** Defines every variable of the table that does not exist yet with its recommended value, so that a host defines only
 *  what is its own. Arrays that follow a count get as many elements as panels show at most, the table of files as many
 *  as its count says (0 when the host has not defined it); objects are null.
 *  @param scale multiplies what is in pixels: 1 for 96 dots per inch. @return number of variables defined */
KIT_DATASET_API int Variable_Define_Recommended(float scale);
///@{
/** The sizes, fonts and the lock of the interface ("$INTERFACE_...") get their recommended values, also those that
 *  exist. Variable_Scale gives them to what is in pixels only: for hosts whose window comes to a screen of another
 *  scale.
 *  @param scale multiplies what is in pixels, in single precision, to the nearest pixel, halves away from zero
 *  @return number of variables defined */
KIT_DATASET_API int Variable_Define_Interface(float scale);
KIT_DATASET_API int Variable_Scale(float scale);
///@}
/** "unsigned 16-bit" and the like. @param type any. @return static */
KIT_DATASET_API const char* Variable_Type_Text(Variable_Type type);
