#include "platform/linux/archive/ZipRecords.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <sys/stat.h>

namespace velbrix {
namespace {

constexpr int hostFat = 0;
constexpr int hostUnix = 3;
constexpr int hostNtfs = 10;
constexpr int hostMac = 19;

constexpr std::uint16_t madeByUnix = hostUnix << 8;
constexpr std::uint16_t version = 20;
constexpr std::uint16_t version64 = 45;
constexpr std::uint32_t folderAttribute = 0x10;

template <typename Number> void put(QByteArray &bytes, Number number)
{
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        bytes += static_cast<char>(number >> (8 * i));
}

std::uint16_t length(const QByteArray &bytes)
{
    return static_cast<std::uint16_t>(bytes.size());
}

std::uint32_t narrow(std::uint64_t number)
{
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(number, zip::in64));
}

// Local time in steps of two seconds between 1980 and 2107.
std::uint32_t dosTime(std::int64_t time)
{
    const auto seconds = static_cast<std::time_t>(time);
    std::tm local = {};
    if (!::localtime_r(&seconds, &local) || local.tm_year < 80)
        return 1U << 21 | 1U << 16;
    if (local.tm_year > 207)
        return 127U << 25 | 12U << 21 | 31U << 16;
    const auto field = [](int value, int shift) { return static_cast<std::uint32_t>(value) << shift; };
    return field(local.tm_year - 80, 25) | field(local.tm_mon + 1, 21) | field(local.tm_mday, 16) |
           field(local.tm_hour, 11) | field(local.tm_min, 5) | field(std::min(local.tm_sec, 59) / 2, 0);
}

// Whole seconds, as far as 32 bits carry them.
QByteArray timeField(std::int64_t time)
{
    QByteArray field;
    if (time < std::numeric_limits<std::int32_t>::min() || time > std::numeric_limits<std::int32_t>::max())
        return field;
    put(field, zip::extraTime);
    put(field, std::uint16_t(5));
    field += '\1'; // only the time of the last change
    put(field, static_cast<std::uint32_t>(time));
    return field;
}

// From the version to the sizes, which both headers have alike.
void putFacts(QByteArray &bytes, const ZipEntry &entry, bool wide, bool sizes64)
{
    put(bytes, wide ? version64 : version);
    put(bytes, entry.flags);
    put(bytes, entry.method);
    put(bytes, dosTime(entry.time));
    put(bytes, entry.crc);
    put(bytes, sizes64 ? zip::in64 : narrow(entry.packedSize));
    put(bytes, sizes64 ? zip::in64 : narrow(entry.size));
}

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

QString shownName(const ZipEntry &entry)
{
    return QString::fromUtf8(entry.name);
}

std::uint16_t nameFlags(const QByteArray &name)
{
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    return !std::all_of(name.begin(), name.end(), isAscii) && name.isValidUtf8() ? zip::utf8Flag
                                                                                 : std::uint16_t(0);
}

QByteArray localHeader(const ZipEntry &entry, bool wide)
{
    QByteArray extra;
    if (wide) {
        put(extra, zip::extra64);
        put(extra, std::uint16_t(16));
        put(extra, entry.size);
        put(extra, entry.packedSize);
    }
    extra += timeField(entry.time);

    QByteArray header;
    header.reserve(static_cast<qsizetype>(zip::localSize) + entry.name.size() + extra.size());
    put(header, zip::localSignature);
    putFacts(header, entry, wide, wide);
    put(header, length(entry.name));
    put(header, length(extra));
    return header + entry.name + extra;
}

QByteArray centralRecord(const ZipEntry &entry)
{
    QByteArray numbers;
    for (const std::uint64_t number : {entry.size, entry.packedSize, entry.offset}) {
        if (number >= zip::in64)
            put(numbers, number);
    }
    QByteArray extra;
    if (!numbers.isEmpty()) {
        put(extra, zip::extra64);
        put(extra, length(numbers));
        extra += numbers;
    }
    extra += timeField(entry.time);

    QByteArray record;
    put(record, zip::centralSignature);
    put(record, static_cast<std::uint16_t>(madeByUnix | (numbers.isEmpty() ? version : version64)));
    putFacts(record, entry, !numbers.isEmpty(), false);
    put(record, length(entry.name));
    put(record, length(extra));
    put(record, std::uint16_t(0)); // comment
    put(record, std::uint16_t(0)); // disk
    put(record, std::uint16_t(0)); // internal attributes
    put(record, entry.mode << 16 | (S_ISDIR(entry.mode) ? folderAttribute : 0));
    put(record, narrow(entry.offset));
    return record + entry.name + extra;
}

QByteArray endRecords(std::uint64_t count, std::uint64_t offset, std::uint64_t size)
{
    QByteArray records;
    if (count >= zip::in64Count || offset >= zip::in64 || size >= zip::in64) {
        put(records, zip::end64Signature);
        put(records, std::uint64_t(zip::end64Size - 12)); // after this number
        put(records, static_cast<std::uint16_t>(madeByUnix | version64));
        put(records, version64);
        put(records, std::uint64_t(0)); // disks
        put(records, count);
        put(records, count);
        put(records, size);
        put(records, offset);
        put(records, zip::locator64Signature);
        put(records, std::uint32_t(0)); // disk
        put(records, offset + size);
        put(records, std::uint32_t(1)); // disks
    }
    const auto shortCount = static_cast<std::uint16_t>(std::min<std::uint64_t>(count, zip::in64Count));
    put(records, zip::endSignature);
    put(records, std::uint32_t(0)); // disks
    put(records, shortCount);
    put(records, shortCount);
    put(records, narrow(size));
    put(records, narrow(offset));
    put(records, std::uint16_t(0)); // comment
    return records;
}

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
