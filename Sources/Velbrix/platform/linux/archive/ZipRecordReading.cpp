#include "platform/linux/archive/ZipRecordReading.h"

#include <ctime>
#include <sys/stat.h>

namespace velbrix {
namespace {

constexpr int hostFat = 0;
constexpr int hostUnix = 3;
constexpr int hostNtfs = 10;
constexpr int hostMac = 19;
constexpr std::uint32_t folderAttribute = 0x10;

std::int64_t fromDosTime(std::uint32_t dos)
{
    const auto field = [dos](int shift, std::uint32_t mask) { return static_cast<int>(dos >> shift & mask); };
    std::tm local = {};
    local.tm_year = field(25, 0x7f) + 80;
    local.tm_mon = field(21, 0xf) - 1;
    local.tm_mday = field(16, 0x1f);
    local.tm_hour = field(11, 0x1f);
    local.tm_min = field(5, 0x3f);
    local.tm_sec = field(0, 0x1f) * 2;
    local.tm_isdst = -1;
    return ::mktime(&local);
}

// Each number is there only when the header has no room for it.
void readExtra(std::span<const std::uint8_t> bytes, ZipEntry &entry)
{
    RecordReader fields(bytes);
    while (fields.left() >= 4) {
        const std::uint16_t kind = fields.u16();
        RecordReader field(fields.bytes(fields.u16()));
        if (kind == zip::extra64) {
            for (std::uint64_t *number : {&entry.size, &entry.packedSize, &entry.offset}) {
                if (*number == zip::in64 && field.left() >= 8)
                    *number = field.u64();
            }
        } else if (kind == zip::extraTime && field.left() >= 5 && (field.bytes(1)[0] & 1) != 0) {
            entry.time = static_cast<std::int32_t>(field.u32());
        } else if (kind == zip::extraOldTime && field.left() >= 8) {
            field.skip(4); // when it was last read
            entry.time = static_cast<std::int32_t>(field.u32());
        }
    }
}

// From the flags to the sizes, which both headers have alike.
void readFacts(RecordReader &reader, ZipEntry &entry)
{
    entry.flags = reader.u16();
    entry.method = reader.u16();
    entry.time = fromDosTime(reader.u32());
    entry.crc = reader.u32();
    entry.packedSize = reader.u32();
    entry.size = reader.u32();
}

// By the system that made it.
void readHost(ZipEntry &entry, int host, std::uint32_t attributes)
{
    if (host == hostUnix || host == hostMac)
        entry.mode = attributes >> 16;
    else if ((attributes & folderAttribute) != 0)
        entry.mode = S_IFDIR;
    if (host == hostFat || host == hostNtfs)
        entry.name.replace('\\', '/');
}

} // namespace

std::optional<ZipEntry> readCentralRecord(RecordReader &reader)
{
    if (reader.u32() != zip::centralSignature)
        return std::nullopt;
    ZipEntry entry;
    const int host = reader.u16() >> 8;
    reader.skip(2); // version
    readFacts(reader, entry);
    const std::size_t nameSize = reader.u16();
    const std::size_t extraSize = reader.u16();
    const std::size_t commentSize = reader.u16();
    reader.skip(4); // disk, internal attributes
    const std::uint32_t attributes = reader.u32();
    entry.offset = reader.u32();
    entry.name = reader.text(nameSize);
    readExtra(reader.bytes(extraSize), entry);
    reader.skip(commentSize);
    readHost(entry, host, attributes);
    return reader.isValid() ? std::optional(entry) : std::nullopt;
}

std::optional<LocalRecord> readLocalRecord(RecordReader &reader)
{
    if (reader.u32() != zip::localSignature)
        return std::nullopt;
    LocalRecord record;
    reader.skip(2); // version
    readFacts(reader, record.entry);
    const std::size_t nameSize = reader.u16();
    const std::size_t extraSize = reader.u16();
    record.entry.name = reader.text(nameSize);
    readExtra(reader.bytes(extraSize), record.entry);
    record.length = zip::localSize + nameSize + extraSize;
    return reader.isValid() ? std::optional(record) : std::nullopt;
}

} // namespace velbrix
