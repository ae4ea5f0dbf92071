// Whether the host's variables are what the table of rules says.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

#include "kits/common/contract.h"
#include "kits/dataset/contract_frames.h"
#include "kits/dataset/variable_rules.h"
#include "kits/dataset/variables.h"

namespace {

using Form = Variable::Form;

const Variable* Defined(const char* name) {
    const Variable* variable = Variable_Find(name);
    return variable != nullptr && variable->form != Form::Undefined ? variable : nullptr;
}

long long Count(const char* name) {
    return static_cast<long long>(Variable_Number(name, 0));
}

Variable_Shape Shape_Of(const Variable& variable) {
    switch (variable.form) {
        case Form::Array:
            return Variable_Shape::Array;
        case Form::Text:
            return Variable_Shape::Text;
        case Form::Pointer:
            return Variable_Shape::Object;
        default:
            return Variable_Shape::Scalar;
    }
}

const char* Shape_Text(Variable_Shape shape) {
    switch (shape) {
        case Variable_Shape::Array:
            return "an array";
        case Variable_Shape::Text:
            return "a text";
        case Variable_Shape::Object:
            return "an object pointer";
        case Variable_Shape::Scalar:
            return "a scalar";
    }
    return "";
}

/** Numbers of one width read alike, whatever their sign. */
bool Is_Read_As(Variable_Type type, Variable_Type expected) {
    const auto unsigned_of = [](Variable_Type of) {
        return of == VARIABLE_SIGNED_16 ? VARIABLE_UNSIGNED_16 : of == VARIABLE_SIGNED_32 ? VARIABLE_UNSIGNED_32 : of;
    };
    return unsigned_of(type) == unsigned_of(expected);
}

/** @return false when the variable is something else, so that nothing more can be said of it */
bool Form_Check(const Variable_Rule& rule, const Variable& variable) {
    const std::string name = rule.name;
    if (const Variable_Shape shape = Shape_Of(variable); shape != rule.shape) {
        Contract_Report(CONTRACT_SHAPE, name + " is " + Shape_Text(shape) + ", panels read " + Shape_Text(rule.shape));
        return false;
    }
    if (!Is_Read_As(variable.type, rule.type)) {
        Contract_Report(CONTRACT_TYPE, name + " is " + Variable_Type_Text(variable.type) + ", panels read " +
                                           Variable_Type_Text(rule.type));
        return false;
    }
    return true;
}

void Count_Check(const Variable_Rule& rule) {
    const long long count = Count(rule.name);
    const std::string told = std::string(rule.name) + " is " + std::to_string(count);
    if (rule.most != 0 && count > rule.most) {
        Contract_Report(CONTRACT_COUNT_CAP, told + ", panels show " + std::to_string(rule.most));
    }
    if (rule.multiple != 0 && count % rule.multiple != 0) {
        Contract_Report(CONTRACT_MULTIPLE, told + ", panels show complete rows of " + std::to_string(rule.multiple));
    }
}

void Length_Check(const Variable_Rule& rule, const Variable& array) {
    const bool follows_count = *rule.length == '$';
    const long long least = follows_count ? Count(rule.length) : std::strtol(rule.length, nullptr, 10);
    if (array.nb < least) {
        Contract_Report(CONTRACT_COUNT_CAP, std::string(rule.name) + " has " + std::to_string(array.nb) +
                                                " elements, " +
                                                (follows_count ? std::string(rule.length) + " is " : "panels read ") +
                                                std::to_string(least));
    }
}

void Rules_Check() {
    int nb = 0;
    const Variable_Rule* rules = Variable_Rules(&nb);
    for (const Variable_Rule* rule = rules; rule != rules + nb; ++rule) {
        // What is missing altogether is reported when a panel asks for it.
        const Variable* variable = Defined(rule->name);
        if (variable == nullptr || !Form_Check(*rule, *variable)) {
            continue;
        }
        if (rule->shape == Variable_Shape::Scalar) {
            Count_Check(*rule);
        } else if (rule->shape == Variable_Shape::Array && std::strcmp(rule->name, "$FRAME_CUR") != 0) {
            Length_Check(*rule, *variable);
        }
    }
}

void Currents_Check() {
    for (const char* kind : {"$TAG", "$MARKER", "$BRUSH"}) {
        const std::string current = std::string(kind) + "_CUR";
        const std::string count = std::string(kind) + "_NB";
        if (const long long nb = Count(count.c_str()); nb > 0 && Count(current.c_str()) >= nb) {
            std::string told = current;
            told.append(" is ").append(std::to_string(Count(current.c_str())));
            told.append(", ").append(count).append(" is ").append(std::to_string(nb));
            Contract_Report(CONTRACT_CURRENT, told);
        }
    }
}

void Name_Check(const Variable& variable) {
    const std::string name = variable.name;
    for (const char* family :
         {"$TAG_", "$MARKER_", "$BRUSH_", "$INTERFACE_", "$GLI_", "$HISTO_", "$DB_", "$REGIONAL_"}) {
        if (name.starts_with(family) && Variable_Rule_Find(variable.name) == nullptr) {
            Contract_Report(CONTRACT_UNKNOWN, name);
        }
    }
}

void Masks_Check() {
    int mask_nb = 0;
    int size_nb = 0;
    auto** masks = static_cast<void**>(Variable_Array("$BRUSH_PT", VARIABLE_POINTER, &mask_nb));
    const auto* sizes = static_cast<std::uint16_t*>(Variable_Array("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, &size_nb));
    const auto brush_nb = static_cast<int>(std::clamp<long long>(Count("$BRUSH_NB"), 0, mask_nb));
    const auto radius = static_cast<long long>(Variable_Number("$BRUSH_RADIUS", -1));
    if (radius < 0) {
        return;  // how many rows there are is not known
    }
    for (int brush = 0; brush < brush_nb; ++brush) {
        const std::string told = "$BRUSH_PT element " + std::to_string(brush);
        auto** rows = static_cast<unsigned char**>(masks[brush]);
        if (rows == nullptr) {
            Contract_Report(CONTRACT_MASK, told + " is null");
        } else if (std::any_of(rows, rows + 2 * radius + 1, [](const unsigned char* row) { return row == nullptr; })) {
            Contract_Report(CONTRACT_MASK, told + " has a row that is null");
        }
        // A brush of size s reaches s - 1 pixels from its centre.
        if (sizes != nullptr && brush < size_nb && sizes[brush] > radius + 1) {
            Contract_Report(CONTRACT_MASK, "brush " + std::to_string(brush) + " of size " +
                                               std::to_string(sizes[brush]) + " is cut, $BRUSH_RADIUS is " +
                                               std::to_string(radius) + " and should be " +
                                               std::to_string(sizes[brush] - 1));
        }
    }
}

void Files_Check() {
    int nb = 0;
    auto** files = static_cast<void**>(Variable_Array("$DB_2D_FILE_PT", VARIABLE_POINTER, &nb));
    for (int file = 0; file < std::min<long long>(nb, Count("$DB_2D_FILE_NB")); ++file) {
        if (files[file] == nullptr) {
            Contract_Report(CONTRACT_FILE, "$DB_2D_FILE_PT element " + std::to_string(file) + " is null");
        }
    }
    const Variable* folder = Defined("$DEFAULT_FILE_PATH");
    if (folder != nullptr && folder->form == Form::Text && folder->storage.text != nullptr) {
        const std::string path = folder->storage.text;
        if (!path.empty() && path.back() != '/' && path.back() != '\\') {
            Contract_Report(CONTRACT_FOLDER, "$DEFAULT_FILE_PATH is " + path);
        }
    }
}

}  // namespace

int Contract_Check_Variables() {
    if (!Contract_Checks()) {
        return 0;
    }
    const int before = Contract_Report_Nb();
    Rules_Check();
    Currents_Check();
    Variables_Visit(Name_Check);
    Masks_Check();
    Files_Check();
    Contract_Check_Frames();
    return Contract_Report_Nb() - before;
}

void Contract_Check_Update(unsigned __int64 flags) {
    if (Has_Any(flags, UPDATE_STRUCTURE | UPDATE_SELECTION) &&
        !Has_Any(flags, UPDATE_LEVEL_1D | UPDATE_LEVEL_2D | UPDATE_LEVEL_3D)) {
        Contract_Report(CONTRACT_FLAG_LEVEL,
                        Has_Any(flags, UPDATE_STRUCTURE) ? "UPDATE_STRUCTURE" : "UPDATE_SELECTION");
    }
}
