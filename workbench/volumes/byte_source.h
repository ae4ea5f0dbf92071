/** Where a loader gets its bytes from: a file or a block of memory. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <span>
#include <string>

namespace volumes {

/** Bytes in order, read once from the beginning. */
class Byte_Source {
  public:
    Byte_Source() = default;
    virtual ~Byte_Source() = default;
    Byte_Source(const Byte_Source&) = delete;
    Byte_Source& operator=(const Byte_Source&) = delete;

    /** Fills `buffer` from the current position and moves on. @return bytes read; fewer than asked for only at the end
     * or after an error */
    virtual std::size_t Read(std::span<std::uint8_t> buffer) = 0;
    /** True when the last Read ended early because of an error and not at the end. */
    virtual bool Failed() const { return false; }
    /** All bytes from the beginning, without a value when unknown. */
    virtual std::optional<std::uint64_t> Size() const { return std::nullopt; }
    /** Name for messages, UTF-8. */
    virtual std::string Name() const = 0;
};

/** A file on disk. */
class File_Source : public Byte_Source {
  public:
    /** Opens `path`; see Error. */
    explicit File_Source(const std::filesystem::path& path);

    /** Empty when the file is open, else what is wrong: "does not exist", "is a folder, not a file" ... */
    const std::string& Error() const { return error; }

    std::size_t Read(std::span<std::uint8_t> buffer) override;
    bool Failed() const override { return failed; }
    std::optional<std::uint64_t> Size() const override { return size; }
    std::string Name() const override { return name; }

  private:
    std::ifstream stream;
    std::string name;
    std::string error;
    std::uint64_t size = 0;
    bool failed = false;
};

/** Bytes in memory, not owned; they must outlive the source. */
class Memory_Source : public Byte_Source {
  public:
    Memory_Source(std::span<const std::uint8_t> memory, std::string memory_name)
        : bytes(memory), name(std::move(memory_name)) {}

    std::size_t Read(std::span<std::uint8_t> buffer) override;
    std::optional<std::uint64_t> Size() const override { return bytes.size(); }
    std::string Name() const override { return name; }

  private:
    std::span<const std::uint8_t> bytes;
    std::size_t position = 0;
    std::string name;
};

}  // namespace volumes
