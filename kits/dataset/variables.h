/** The named variables. For the kit's own use. */
#pragma once

#include <cstddef>

#include "kits/dataset/dataset_host.h"

/** One name and its storage. Never freed and never moved, so that panels may keep addresses. */
struct Variable {
    enum class Form : unsigned char { Undefined, Scalar, Array, Text, Pointer };

    /** What panels get the address of; every member begins at the same address. */
    union Storage {
        std::uint8_t unsigned_8;
        std::int16_t signed_16;
        std::uint16_t unsigned_16;
        std::int32_t signed_32;
        std::uint32_t unsigned_32;
        float real;
        char* text;
        void* pointer = nullptr;
    };

    Storage storage;
    std::uint64_t hash = 0;
    const char* name = nullptr;
    std::size_t name_size = 0;
    int nb = 0;
    unsigned int look_ups = 0;
    Variable_Type type = VARIABLE_NONE;
    Form form = Form::Undefined;
    bool owned = false;  // the array belongs to the kit
};

/** The variable of a name that was defined at least once; not counted as a look-up. Null when there is none. */
Variable* Variable_Find(const char* name);
/** Frames that are destroyed must not stay in "$FRAME_CUR". Arrays of the application are its own business. */
void Variable_Forget_Frame(const Quorel_2D* frame);
/** Calls `visit` with every variable that exists. */
void Variables_Visit(void (*visit)(const Variable& variable));
