// Variables by name.
#include <cmath>
#include <cstring>

#include "c_interface/code_page_text.h"
#include "c_interface/default_variables.h"
#include "c_interface/session.h"
#include "kits/dataset/dataset_host.h"

using namespace c_interface;

namespace {

struct Known {
    std::string name;
    Variable_Type type = VARIABLE_NONE;
    int nb = 0;
};

Known Known_Variable(const char* name) {
    Known known;
    known.name = Page_Text(name);
    unsigned short type = 0;
    const void* const storage = Fct_Variable_Get(known.name.c_str(), &known.nb, &type, nullptr, 0);
    Require(storage != nullptr, KIT_ERROR_MISSING, "there is no such variable");
    known.type = static_cast<Variable_Type>(type);
    return known;
}

bool Is_Array(const Known& known) {
    return Variable_Array(known.name.c_str(), known.type, nullptr) != nullptr;
}

std::size_t Element_Size(std::uint32_t type) {
    switch (type) {
        case KIT_VARIABLE_UNSIGNED_8:
            return 1;
        case KIT_VARIABLE_SIGNED_16:
        case KIT_VARIABLE_UNSIGNED_16:
            return 2;
        case KIT_VARIABLE_SIGNED_32:
        case KIT_VARIABLE_UNSIGNED_32:
        case KIT_VARIABLE_FLOAT:
            return 4;
        default:
            throw Failure{KIT_ERROR_ARGUMENT, "no such type of numbers"};
    }
}

void* Numbers(const Known& known, std::uint32_t type, int* nb) {
    void* const first = Variable_Array(known.name.c_str(), static_cast<Variable_Type>(type), nb);
    Require(first != nullptr, KIT_ERROR_MISSING, "the variable is no array of that type");
    return first;
}

void Own_Check(const Known& known) {
    Require(!Is_Kept_By_Tables(known.name), KIT_ERROR_ARGUMENT, "the functions of the tables set this variable");
}

}  // namespace

static_assert(KIT_VARIABLE_UNSIGNED_8 == VARIABLE_UNSIGNED_8 && KIT_VARIABLE_SIGNED_16 == VARIABLE_SIGNED_16 &&
              KIT_VARIABLE_UNSIGNED_16 == VARIABLE_UNSIGNED_16 && KIT_VARIABLE_SIGNED_32 == VARIABLE_SIGNED_32 &&
              KIT_VARIABLE_UNSIGNED_32 == VARIABLE_UNSIGNED_32 && KIT_VARIABLE_FLOAT == VARIABLE_FLOAT &&
              KIT_VARIABLE_TEXT == VARIABLE_TEXT && KIT_VARIABLE_OBJECT == VARIABLE_POINTER);

extern "C" {

kit_status kit_variable_type(const char* name, uint32_t* type, uint32_t* count) {
    return Call("kit_variable_type", 0, [&] {
        const Known known = Known_Variable(name);
        int nb = 0;
        const bool is_array = Variable_Array(known.name.c_str(), known.type, &nb) != nullptr;
        Write_To<std::uint32_t>(type, known.type);
        if (count != nullptr) {
            *count = is_array ? static_cast<std::uint32_t>(nb) : 0;
        }
    });
}

kit_status kit_variable_set_number(const char* name, double value) {
    return Call("kit_variable_set_number", 0, [&] {
        const Known known = Known_Variable(name);
        Own_Check(known);
        Require(std::isfinite(value), KIT_ERROR_ARGUMENT, "the value is no number");
        Require(Variable_Set(known.name.c_str(), value) != 0, KIT_ERROR_MISSING, "the variable is no number");
    });
}

kit_status kit_variable_number(const char* name, double* value) {
    return Call("kit_variable_number", 0, [&] {
        const Known known = Known_Variable(name);
        const double number = Variable_Number(known.name.c_str(), std::nan(""));
        Require(!std::isnan(number), KIT_ERROR_MISSING, "the variable is no number");
        Write_To(value, number);
    });
}

kit_status kit_variable_set_text(const char* name, const char* text) {
    return Call("kit_variable_set_text", 0, [&] {
        const Known known = Known_Variable(name);
        Require(known.type == VARIABLE_TEXT && !Is_Array(known), KIT_ERROR_MISSING, "the variable is no text");
        Require(Variable_Define_Text(known.name.c_str(), Page_Text(text).c_str()) != 0, KIT_ERROR_MEMORY, "no memory");
    });
}

kit_status kit_variable_text(const char* name, char* out, uint32_t room, uint32_t* needed) {
    return Call("kit_variable_text", 0, [&] {
        const Known known = Known_Variable(name);
        Require(known.type == VARIABLE_TEXT && !Is_Array(known), KIT_ERROR_MISSING, "the variable is no text");
        Text_Out(static_cast<const char*>(Fct_Variable_Value(known.name.c_str(), nullptr, nullptr, nullptr)), out, room,
                 needed);
    });
}

kit_status kit_variable_set_array(const char* name, uint32_t type, const void* values, uint32_t count) {
    return Call("kit_variable_set_array", 0, [&] {
        const std::size_t size = Element_Size(type);
        const Known known = Known_Variable(name);
        Own_Check(known);
        int nb = 0;
        void* const first = Numbers(known, type, &nb);
        Require(values != nullptr || count == 0, KIT_ERROR_ARGUMENT, "values is null");
        Require(count <= static_cast<std::uint32_t>(nb), KIT_ERROR_ROOM, "the array is shorter");
        if (count != 0) {
            std::memcpy(first, values, count * size);
        }
    });
}

kit_status kit_variable_array(const char* name, uint32_t type, void* out, uint32_t room, uint32_t* needed) {
    return Call("kit_variable_array", 0, [&] {
        const std::size_t size = Element_Size(type);
        const Known known = Known_Variable(name);
        int nb = 0;
        const auto* const first = static_cast<const unsigned char*>(Numbers(known, type, &nb));
        const auto count = static_cast<std::uint32_t>(nb);
        if (needed != nullptr) {
            *needed = count;
        }
        if (out == nullptr) {
            Require(room == 0 && needed != nullptr, KIT_ERROR_ARGUMENT, "there is no place to write to");
            return;
        }
        Require(room >= count, KIT_ERROR_ROOM, "too little room");
        if (count != 0) {
            std::memcpy(out, first, count * size);
        }
    });
}

}  // extern "C"
