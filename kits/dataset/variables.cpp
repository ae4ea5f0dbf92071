#include "kits/dataset/variables.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "kits/common/contract.h"
#include "kits/dataset/variable_rules.h"
#include "kits/dataset/variable_table.h"

namespace {

using Form = Variable::Form;

/** Never destroyed: panels keep addresses until the very end of the process. */
constinit Variable_Table table;
unsigned int look_ups_together = 0;

bool Is_Number(Variable_Type type) {
    return type >= VARIABLE_UNSIGNED_8 && type <= VARIABLE_FLOAT;
}

std::size_t Element_Size(Variable_Type type) {
    switch (type) {
        case VARIABLE_UNSIGNED_8:
            return 1;
        case VARIABLE_SIGNED_16:
        case VARIABLE_UNSIGNED_16:
            return 2;
        case VARIABLE_SIGNED_32:
        case VARIABLE_UNSIGNED_32:
        case VARIABLE_FLOAT:
            return 4;
        case VARIABLE_TEXT:
        case VARIABLE_POINTER:
            return sizeof(void*);
        default:
            return 0;
    }
}

template <typename Number>
Number Nearest(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    constexpr auto lowest = static_cast<double>(std::numeric_limits<Number>::lowest());
    constexpr auto highest = static_cast<double>(std::numeric_limits<Number>::max());
    return static_cast<Number>(std::clamp(value, lowest, highest));
}

void Store_Number(Variable& variable, double value) {
    switch (variable.type) {
        case VARIABLE_UNSIGNED_8:
            variable.storage.unsigned_8 = Nearest<std::uint8_t>(value);
            break;
        case VARIABLE_SIGNED_16:
            variable.storage.signed_16 = Nearest<std::int16_t>(value);
            break;
        case VARIABLE_UNSIGNED_16:
            variable.storage.unsigned_16 = Nearest<std::uint16_t>(value);
            break;
        case VARIABLE_SIGNED_32:
            variable.storage.signed_32 = Nearest<std::int32_t>(value);
            break;
        case VARIABLE_UNSIGNED_32:
            variable.storage.unsigned_32 = Nearest<std::uint32_t>(value);
            break;
        case VARIABLE_FLOAT:
            variable.storage.real = std::isinf(value) ? static_cast<float>(value) : Nearest<float>(value);
            break;
        default:
            break;
    }
}

double Number_Of(const Variable& variable) {
    switch (variable.type) {
        case VARIABLE_UNSIGNED_8:
            return variable.storage.unsigned_8;
        case VARIABLE_SIGNED_16:
            return variable.storage.signed_16;
        case VARIABLE_UNSIGNED_16:
            return variable.storage.unsigned_16;
        case VARIABLE_SIGNED_32:
            return variable.storage.signed_32;
        case VARIABLE_UNSIGNED_32:
            return variable.storage.unsigned_32;
        case VARIABLE_FLOAT:
            return variable.storage.real;
        default:
            return 0.0;
    }
}

void* Widened(const Variable& variable) {
    std::intptr_t number = 0;
    switch (variable.type) {
        case VARIABLE_UNSIGNED_8:
            number = variable.storage.unsigned_8;
            break;
        case VARIABLE_SIGNED_16:
            number = variable.storage.signed_16;
            break;
        case VARIABLE_UNSIGNED_16:
            number = variable.storage.unsigned_16;
            break;
        case VARIABLE_SIGNED_32:
            number = variable.storage.signed_32;
            break;
        case VARIABLE_UNSIGNED_32:
            number = static_cast<std::intptr_t>(variable.storage.unsigned_32);
            break;
        case VARIABLE_FLOAT:
            number = Nearest<std::int32_t>(variable.storage.real);
            break;
        default:
            break;
    }
    return reinterpret_cast<void*>(number);
}

char* Text_Copy(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(std::malloc(size));
    if (copy != nullptr) {
        std::memcpy(copy, text, size);
    }
    return copy;
}

void Free_Texts(const Variable& variable, int from) {
    if (variable.form != Form::Array || !variable.owned || variable.type != VARIABLE_TEXT) {
        return;
    }
    auto** texts = static_cast<char**>(variable.storage.pointer);
    for (int i = from; i < variable.nb; ++i) {
        std::free(texts[i]);
        texts[i] = nullptr;
    }
}

/** Gives the value's memory back and leaves zeroed storage. */
void Release(Variable& variable) {
    if (variable.form == Form::Text) {
        std::free(variable.storage.text);
    } else if (variable.form == Form::Array && variable.owned) {
        Free_Texts(variable, 0);
        std::free(variable.storage.pointer);
    }
    variable.storage = {};
    variable.form = Form::Undefined;
    variable.type = VARIABLE_NONE;
    variable.nb = 0;
    variable.owned = false;
}

void Define(Variable& variable, Form form, Variable_Type type, int nb) {
    Release(variable);
    variable.form = form;
    variable.type = type;
    variable.nb = nb;
}

/** The record of a name that a panel asks for, counted; null when the variable does not exist. */
Variable* Look_Up(const char* name) {
    ++look_ups_together;
    Variable* variable = table.Find(name);
    if (variable == nullptr) {
        // Counted too, so that a host sees which variables its panels miss; a limit, because names may be made up
        // without end.
        constexpr std::size_t names_max = 4096;
        variable = table.Size() < names_max ? table.Find_Or_Make(name) : nullptr;
        if (variable == nullptr) {
            return nullptr;
        }
    }
    ++variable->look_ups;
    return variable->form != Form::Undefined ? variable : nullptr;
}

void Describe(const Variable* variable, int* nb, unsigned short* type, int (**fct)(void)) {
    if (nb != nullptr) {
        *nb = variable != nullptr ? variable->nb : 0;
    }
    if (type != nullptr) {
        *type = variable != nullptr ? variable->type : VARIABLE_NONE;
    }
    if (fct != nullptr) {
        *fct = nullptr;
    }
}

void Missing_Report(const char* name) {
    const Variable_Rule* rule = Contract_Checks() ? Variable_Rule_Find(name) : nullptr;
    if (rule == nullptr || !rule->is_optional) {
        Contract_Report(CONTRACT_VARIABLE_MISSING, name);
    }
}

}  // namespace

Variable* Variable_Find(const char* name) {
    return table.Find(name);
}

void Variables_Visit(void (*visit)(const Variable& variable)) {
    table.For_Each([visit](const Variable& variable) {
        if (variable.form != Form::Undefined) {
            visit(variable);
        }
    });
}

void Variable_Forget_Frame(const Quorel_2D* frame) {
    const Variable* variable = table.Find("$FRAME_CUR");
    if (variable == nullptr || variable->form != Form::Array || variable->type != VARIABLE_POINTER ||
        !variable->owned) {
        return;
    }
    auto** frames = static_cast<void**>(variable->storage.pointer);
    std::replace(frames, frames + variable->nb, const_cast<void*>(static_cast<const void*>(frame)),
                 static_cast<void*>(nullptr));
}

void* Fct_Variable_Value(const char* name, int* nb, unsigned short* type, int (**fct)(void)) {
    const Variable* variable = Look_Up(name);
    Describe(variable, nb, type, fct);
    if (variable == nullptr) {
        Missing_Report(name);
        return nullptr;
    }
    return variable->form == Form::Scalar ? Widened(*variable) : variable->storage.pointer;
}

void* Fct_Variable_Get(const char* name, int* nb, unsigned short* type, int (**fct)(void), char /*flag*/) {
    Variable* variable = Look_Up(name);
    Describe(variable, nb, type, fct);
    if (variable == nullptr) {
        Missing_Report(name);
        return nullptr;
    }
    return &variable->storage;
}

int Variable_Define_Scalar(const char* name, Variable_Type type, double value) {
    Variable* variable = Is_Number(type) ? table.Find_Or_Make(name) : nullptr;
    if (variable == nullptr) {
        return 0;
    }
    Define(*variable, Form::Scalar, type, 1);
    Store_Number(*variable, value);
    return 1;
}

void* Variable_Define_Array(const char* name, Variable_Type type, int nb) {
    const std::size_t element_size = Element_Size(type);
    Variable* variable = element_size > 0 && nb >= 0 ? table.Find_Or_Make(name) : nullptr;
    if (variable == nullptr) {
        return nullptr;
    }
    void* first = std::calloc(static_cast<std::size_t>(std::max(nb, 1)), element_size);
    if (first == nullptr) {
        return nullptr;
    }
    if (variable->form == Form::Array && variable->type == type && variable->owned) {
        const int kept = std::min(nb, variable->nb);
        std::memcpy(first, variable->storage.pointer, static_cast<std::size_t>(kept) * element_size);
        Free_Texts(*variable, kept);
        variable->nb = 0;  // the kept texts have moved
    }
    Define(*variable, Form::Array, type, nb);
    variable->storage.pointer = first;
    variable->owned = true;
    return first;
}

int Variable_Define_Array_At(const char* name, Variable_Type type, int nb, void* first) {
    Variable* variable = Element_Size(type) > 0 && nb >= 0 ? table.Find_Or_Make(name) : nullptr;
    if (variable == nullptr) {
        return 0;
    }
    Define(*variable, Form::Array, type, nb);
    variable->storage.pointer = first;
    return 1;
}

int Variable_Define_Text(const char* name, const char* text) {
    Variable* variable = table.Find_Or_Make(name);
    char* copy = variable != nullptr && text != nullptr ? Text_Copy(text) : nullptr;
    if (variable == nullptr || (text != nullptr && copy == nullptr)) {
        return 0;
    }
    Define(*variable, Form::Text, VARIABLE_TEXT, 1);
    variable->storage.text = copy;
    return 1;
}

int Variable_Define_Pointer(const char* name, void* object) {
    Variable* variable = table.Find_Or_Make(name);
    if (variable == nullptr) {
        return 0;
    }
    Define(*variable, Form::Pointer, VARIABLE_POINTER, 1);
    variable->storage.pointer = object;
    return 1;
}

int Variable_Undefine(const char* name) {
    Variable* variable = table.Find(name);
    if (variable == nullptr || variable->form == Form::Undefined) {
        return 0;
    }
    Release(*variable);
    return 1;
}

int Variable_Set(const char* name, double value) {
    Variable* variable = table.Find(name);
    if (variable == nullptr || variable->form != Form::Scalar) {
        return 0;
    }
    Store_Number(*variable, value);
    return 1;
}

double Variable_Number(const char* name, double missing) {
    const Variable* variable = table.Find(name);
    return variable != nullptr && variable->form == Form::Scalar ? Number_Of(*variable) : missing;
}

void* Variable_Array(const char* name, Variable_Type type, int* nb) {
    const Variable* variable = table.Find(name);
    const bool found = variable != nullptr && variable->form == Form::Array && variable->type == type;
    if (nb != nullptr) {
        *nb = found ? variable->nb : 0;
    }
    return found ? variable->storage.pointer : nullptr;
}

int Variable_Set_Array_Text(const char* name, int index, const char* text) {
    int nb = 0;
    auto** texts = static_cast<char**>(Variable_Array(name, VARIABLE_TEXT, &nb));
    if (texts == nullptr || index < 0 || index >= nb) {
        return 0;
    }
    char* copy = text != nullptr ? Text_Copy(text) : nullptr;
    if (text != nullptr && copy == nullptr) {
        return 0;
    }
    std::free(texts[index]);
    texts[index] = copy;
    return 1;
}

unsigned int Variable_Look_Ups(const char* name) {
    if (name == nullptr) {
        return look_ups_together;
    }
    const Variable* variable = table.Find(name);
    return variable != nullptr ? variable->look_ups : 0;
}

void Variable_Look_Ups_Reset() {
    look_ups_together = 0;
    table.For_Each([](Variable& variable) { variable.look_ups = 0; });
}
