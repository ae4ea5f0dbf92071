/** Brushes, TAGs and masks as a host has them, for tests of the brush panel. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/panel_stage.h"

constexpr int BRUSH_SPACE = 3;
constexpr int BRUSH_LIST_DIM = 18;
constexpr int BRUSH_PRESS = 0x12;

/** The masks that the host hands out, with guard bytes around every row. */
class Brush_Masks {
  public:
    static constexpr unsigned char GUARD = 0xCD;
    static constexpr unsigned char DIRT = 7;

    Brush_Masks(int nb, int in_radius)
        : radius(in_radius), side(static_cast<std::size_t>(2 * in_radius + 1)), bytes(static_cast<std::size_t>(nb)) {
        for (auto& one : bytes) {
            one.assign(side * (side + 2), GUARD);
            std::vector<unsigned char*> rows;
            for (std::size_t y = 0; y < side; y++) {
                rows.push_back(one.data() + y * (side + 2) + 1);
                std::fill_n(rows.back(), side, DIRT);
            }
            row.push_back(rows);
        }
        for (auto& rows : row) {
            table.push_back(rows.data());
        }
        Variable_Define_Array_At("$BRUSH_PT", VARIABLE_POINTER, nb, table.data());
        Variable_Define_Scalar("$BRUSH_RADIUS", VARIABLE_UNSIGNED_16, radius);
    }
    ~Brush_Masks() { Variable_Undefine("$BRUSH_PT"); }
    Brush_Masks(const Brush_Masks&) = delete;
    Brush_Masks& operator=(const Brush_Masks&) = delete;

    /** Pixels that are not as the definition of a brush of this size says; rows that were overrun count too. */
    int Wrong(int brush, int size) const {
        const auto& rows = row[static_cast<std::size_t>(brush)];
        long bound = static_cast<long>(size) * size % 65536;
        bound -= bound >= 32768 ? 65536 : 0;
        int wrong = 0;
        for (int y = 0; y < static_cast<int>(side); y++) {
            const unsigned char* one = rows[static_cast<std::size_t>(y)];
            wrong += one[-1] != GUARD || one[side] != GUARD ? 1 : 0;
            for (int x = 0; x < static_cast<int>(side); x++) {
                const int square = (x - radius) * (x - radius) + (y - radius) * (y - radius);
                wrong += one[x] != ((size < 2 ? square == 0 : square < bound) ? 1 : 0) ? 1 : 0;
            }
        }
        return wrong;
    }
    bool Untouched(int brush) const {
        for (const unsigned char* one : row[static_cast<std::size_t>(brush)]) {
            if (one != nullptr && std::any_of(one, one + side, [](unsigned char byte) { return byte != DIRT; })) {
                return false;
            }
        }
        return true;
    }
    void Dirty() {
        for (auto& rows : row) {
            for (unsigned char* one : rows) {
                std::fill_n(one, side, DIRT);
            }
        }
    }

    int radius;
    std::size_t side;
    std::vector<std::vector<unsigned char>> bytes;
    std::vector<std::vector<unsigned char*>> row;
    std::vector<unsigned char**> table;
};

/** The host's variables that the panel reads. */
struct Brush_Host {
    Brush_Host() {
        Variable_Define_Scalar("$INTERFACE_SPACE_DIM", VARIABLE_SIGNED_16, BRUSH_SPACE);
        Variable_Define_Scalar("$INTERFACE_LIST_DIM_SML", VARIABLE_SIGNED_16, BRUSH_LIST_DIM);
        Variable_Define_Scalar("$BRUSH_CUR", VARIABLE_UNSIGNED_16, 0);
        Variable_Define_Scalar("$TAG_CUR", VARIABLE_UNSIGNED_16, 1);
        for (const char* name : {"$TAG_RED", "$TAG_GRN", "$TAG_BLU"}) {
            Variable_Define_Array(name, VARIABLE_UNSIGNED_16, 3);
        }
        Tag_Color(0, 0x1111, 0x2222, 0x3333);
        Tag_Color(1, 0xC0FF, 0x8001, 0x40AA);
        Tag_Color(2, 0x10FF, 0xE0FF, 0x20FF);
        Sizes({2, 3, 9, 20});
    }
    static void Sizes(const std::vector<int>& size) {
        Variable_Define_Scalar("$BRUSH_NB", VARIABLE_UNSIGNED_16, static_cast<double>(size.size()));
        auto* array = static_cast<unsigned short*>(
            Variable_Define_Array("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, std::max(1, static_cast<int>(size.size()))));
        std::transform(size.begin(), size.end(), array, [](int one) { return static_cast<unsigned short>(one); });
    }
    static void Tag_Color(int tag, int red, int green, int blue) {
        static_cast<unsigned short*>(Variable_Array("$TAG_RED", VARIABLE_UNSIGNED_16, nullptr))[tag] =
            static_cast<unsigned short>(red);
        static_cast<unsigned short*>(Variable_Array("$TAG_GRN", VARIABLE_UNSIGNED_16, nullptr))[tag] =
            static_cast<unsigned short>(green);
        static_cast<unsigned short*>(Variable_Array("$TAG_BLU", VARIABLE_UNSIGNED_16, nullptr))[tag] =
            static_cast<unsigned short>(blue);
    }
};
