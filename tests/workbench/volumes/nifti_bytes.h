/** Builds NIfTI files in memory for the tests, with field positions of its own, independent of the code under test. */
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

/** Every field is in here so that a test can make any of them wrong. */
struct Nifti_Bytes {
    int version = 1;  // 1, 2; 0: Analyze 7.5
    bool big = false;
    bool pair = false;
    std::array<std::int64_t, 8> dim{3, 3, 2, 2, 1, 1, 1, 1};
    int datatype = 2;
    int bitpix = 8;
    std::array<double, 8> pixdim{1, 1, 1, 1, 1, 1, 1, 1};
    double vox_offset = -1;  // -1: the right one
    double slope = 0;
    double intercept = 0;
    int units = 2;
    int qform_code = 0;
    int sform_code = 0;
    std::array<double, 3> quatern{};
    std::array<double, 3> qoffset{};
    std::array<double, 12> srow{};
    Bytes extension;  // bytes between the header's first 348 or 540 and the voxels; empty: four zeros (single files)
    Bytes voxels;

    Bytes Header() const;
    /** Header, extension and voxels of a single file. */
    Bytes File() const;

    /** Appends a number in the file's byte order. */
    template <class Value>
    void Add(Value value) {
        Append(voxels, value);
    }

  private:
    template <class Value>
    void Append(Bytes& bytes, Value value) const {
        std::array<std::uint8_t, sizeof(Value)> raw;
        std::memcpy(raw.data(), &value, sizeof(Value));  // the tests run on little-endian machines
        for (std::size_t i = 0; i < sizeof(Value); ++i) {
            bytes.push_back(raw[big ? sizeof(Value) - 1 - i : i]);
        }
    }
    template <class Value>
    void Put(Bytes& bytes, std::size_t at, Value value) const {
        Bytes raw;
        Append(raw, value);
        std::copy(raw.begin(), raw.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    }
};

/** One gzip member of `content`. */
Bytes Gzip(std::span<const std::uint8_t> content);
/** The content of a gzip file, by zlib's simplest means; throws std::runtime_error. */
Bytes Gunzip(std::span<const std::uint8_t> coded);

/** An empty folder of its own, removed with its content at the end. */
class Temporary_Folder {
  public:
    Temporary_Folder();
    ~Temporary_Folder();
    Temporary_Folder(const Temporary_Folder&) = delete;
    Temporary_Folder& operator=(const Temporary_Folder&) = delete;
    std::filesystem::path operator/(const std::filesystem::path& name) const { return path / name; }
    /** Files and folders inside. */
    std::size_t Entry_Nb() const;

    std::filesystem::path path;
};

void File_Put(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);
Bytes File_Get(const std::filesystem::path& path);
