#include "workbench/model/recovery_record.h"

#include <algorithm>
#include <bit>

namespace workbench {

namespace {

constexpr std::string_view MAGIC = "work journal\n";
constexpr std::size_t HEADER_SIZE = MAGIC.size() + 4 + 8 + 4;
constexpr std::size_t LIST_MOST = 1U << 20U;                // volumes, paths
constexpr std::size_t VOXELS_MOST = std::size_t{1} << 33U;  // of one volume
constexpr std::int32_t SIDE_MOST = 1 << 20;

class Record_Writer {
  public:
    std::string bytes;

    void Number(std::uint64_t value, unsigned int size) {
        for (unsigned int at = 0; at < size; ++at) {
            bytes += static_cast<char>(value >> (8 * at));
        }
    }
    void Real(double value) { Number(std::bit_cast<std::uint64_t>(value), 8); }
    void Text(std::string_view text) {
        Number(text.size(), 4);
        bytes += text;
    }
    void Stamp(const volumes::File_Stamp& stamp) {
        Number((stamp.is_there ? 1U : 0U) + (stamp.is_readable ? 2U : 0U), 1);
        Number(stamp.size, 8);
        Number(stamp.checksum, 4);
        Number(static_cast<std::uint64_t>(stamp.time), 8);
    }
};

/** Reads as long as there is something; then everything is 0 and Is_Good() false. */
class Record_Reader {
  public:
    explicit Record_Reader(std::string_view all) : rest(all) {}
    bool Is_Good() const { return is_good; }
    bool Is_At_End() const { return rest.empty(); }

    std::uint64_t Number(unsigned int size) {
        const std::string_view taken = Take(size);
        std::uint64_t value = 0;
        for (std::size_t at = 0; at < taken.size(); ++at) {
            value |= static_cast<std::uint64_t>(static_cast<unsigned char>(taken[at])) << (8 * at);
        }
        return value;
    }
    std::int32_t Whole() { return static_cast<std::int32_t>(static_cast<std::uint32_t>(Number(4))); }
    double Real() { return std::bit_cast<double>(Number(8)); }
    std::string_view Text() { return Take(Number(4)); }
    std::size_t Count() {
        const std::uint64_t count = Number(4);
        is_good = is_good && count <= LIST_MOST;
        return is_good ? static_cast<std::size_t>(count) : 0;
    }
    volumes::File_Stamp Stamp() {
        const std::uint64_t flags = Number(1);
        volumes::File_Stamp stamp;
        stamp.is_there = (flags & 1U) != 0;
        stamp.is_readable = (flags & 2U) != 0;
        stamp.size = Number(8);
        stamp.checksum = static_cast<std::uint32_t>(Number(4));
        stamp.time = static_cast<std::int64_t>(Number(8));
        return stamp;
    }
    void Fail() { is_good = false; }

  private:
    std::string_view Take(std::uint64_t size) {
        if (!is_good || size > rest.size()) {
            is_good = false;
            return {};
        }
        const std::string_view taken = rest.substr(0, static_cast<std::size_t>(size));
        rest.remove_prefix(taken.size());
        return taken;
    }
    std::string_view rest;
    bool is_good = true;
};

void Volume_Put(Record_Writer& out, const Recovery_Volume& volume) {
    out.Text(volume.image);
    out.Text(volume.title);
    out.Number(static_cast<std::uint32_t>(volume.index), 4);
    for (const std::int32_t side : volume.grid.size) {
        out.Number(static_cast<std::uint32_t>(side), 4);
    }
    for (const auto& row : volume.grid.affine) {
        for (const double value : row) {
            out.Real(value);
        }
    }
    out.Text(volume.labels);
    out.Stamp(volume.stamps.labels);
    out.Stamp(volume.stamps.description);
    out.Text(volume.description);
    out.Number(volume.tagged_nb, 8);
    for (const Packed_Slice& slice : volume.slices) {
        out.Text({reinterpret_cast<const char*>(slice.data()), slice.size()});
    }
}

Recovery_Volume Volume_Take(Record_Reader& in) {
    Recovery_Volume volume;
    volume.image = in.Text();
    volume.title = in.Text();
    volume.index = in.Whole();
    std::size_t voxels = 1;
    for (std::int32_t& side : volume.grid.size) {
        side = in.Whole();
        if (side < 1 || side > SIDE_MOST || voxels * static_cast<std::size_t>(side) > VOXELS_MOST) {
            in.Fail();
            return volume;
        }
        voxels *= static_cast<std::size_t>(side);
    }
    for (auto& row : volume.grid.affine) {
        for (double& value : row) {
            value = in.Real();
        }
    }
    volume.labels = in.Text();
    volume.stamps.labels = in.Stamp();
    volume.stamps.description = in.Stamp();
    volume.description = in.Text();
    volume.tagged_nb = in.Number(8);
    std::vector<std::uint8_t> tags;
    for (std::int32_t at = 0; at < volume.grid.size[2] && in.Is_Good(); ++at) {
        const std::string_view text = in.Text();
        if (tags.empty() && !text.empty()) {  // memory only for what is there
            tags.resize(voxels / static_cast<std::size_t>(volume.grid.size[2]));
        }
        Packed_Slice slice(text.begin(), text.end());
        if (!Slice_Unpack(slice, tags)) {
            in.Fail();
        }
        volume.slices.push_back(std::move(slice));
    }
    return volume;
}

}  // namespace

Packed_Slice Slice_Pack(std::span<const std::uint8_t> tags) {
    Packed_Slice packed;
    for (std::size_t at = 0; at < tags.size();) {
        const auto same = std::ranges::find_if(tags.begin() + static_cast<std::ptrdiff_t>(at), tags.end(),
                                               [&](std::uint8_t tag) { return tag != tags[at]; });
        const auto end = static_cast<std::size_t>(same - tags.begin());
        std::size_t length = end - at;
        for (; length >= 0x80; length >>= 7U) {
            packed.push_back(static_cast<std::uint8_t>(length | 0x80U));
        }
        packed.push_back(static_cast<std::uint8_t>(length));
        packed.push_back(tags[at]);
        at = end;
    }
    return packed;
}

bool Slice_Unpack(std::span<const std::uint8_t> packed, std::span<std::uint8_t> tags) {
    std::size_t at = 0;
    while (!packed.empty()) {
        std::uint64_t length = 0;
        unsigned int shift = 0;
        bool is_more = true;
        while (is_more && !packed.empty() && shift < 56) {
            length |= static_cast<std::uint64_t>(packed.front() & 0x7FU) << shift;
            is_more = packed.front() >= 0x80;
            packed = packed.subspan(1);
            shift += 7;
        }
        if (is_more || packed.empty() || length == 0 || length > tags.size() - at) {
            return false;
        }
        std::ranges::fill(tags.subspan(at, static_cast<std::size_t>(length)), packed.front());
        packed = packed.subspan(1);
        at += static_cast<std::size_t>(length);
    }
    return at == tags.size() && !tags.empty();
}

std::string Recovery_Encode(const Recovery_Record& record) {
    Record_Writer body;
    body.Number(static_cast<std::uint64_t>(record.time), 8);
    body.Text(record.program);
    body.Number(record.opened.size(), 4);
    for (const std::string& path : record.opened) {
        body.Text(path);
    }
    body.Number(record.volumes.size(), 4);
    for (const Recovery_Volume& volume : record.volumes) {
        Volume_Put(body, volume);
    }
    Record_Writer file;
    file.bytes.reserve(HEADER_SIZE + body.bytes.size());
    file.bytes = MAGIC;
    file.Number(RECOVERY_VERSION, 4);
    file.Number(body.bytes.size(), 8);
    file.Number(volumes::Checksum({reinterpret_cast<const std::uint8_t*>(body.bytes.data()), body.bytes.size()}), 4);
    file.bytes += body.bytes;
    return std::move(file.bytes);
}

Recovery_Reading Recovery_Decode(std::string_view bytes) {
    Recovery_Reading reading;
    reading.problem = "is damaged";
    if (!bytes.starts_with(MAGIC) || bytes.size() < HEADER_SIZE) {
        return reading;
    }
    Record_Reader header(bytes.substr(MAGIC.size(), HEADER_SIZE - MAGIC.size()));
    const std::uint64_t version = header.Number(4);
    const std::uint64_t size = header.Number(8);
    const std::uint64_t checksum = header.Number(4);
    if (version > RECOVERY_VERSION) {
        reading.problem = "was written by a later version";
        reading.is_newer = true;
        return reading;
    }
    const std::string_view body = bytes.substr(HEADER_SIZE);
    if (version != RECOVERY_VERSION || body.size() != size ||
        volumes::Checksum({reinterpret_cast<const std::uint8_t*>(body.data()), body.size()}) != checksum) {
        return reading;
    }
    Record_Reader in(body);
    Recovery_Record record;
    record.time = static_cast<std::int64_t>(in.Number(8));
    record.program = in.Text();
    for (std::size_t left = in.Count(); left > 0 && in.Is_Good(); --left) {
        record.opened.emplace_back(in.Text());
    }
    for (std::size_t left = in.Count(); left > 0 && in.Is_Good(); --left) {
        record.volumes.push_back(Volume_Take(in));
    }
    if (in.Is_Good() && in.Is_At_End()) {
        reading.record = std::move(record);
        reading.problem.clear();
    }
    return reading;
}

}  // namespace workbench
