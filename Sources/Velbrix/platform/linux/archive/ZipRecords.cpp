#include "platform/linux/archive/ZipRecords.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <sys/stat.h>

namespace velbrix {
namespace {

constexpr std::uint16_t madeByUnix = 3 << 8;
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

} // namespace

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

} // namespace velbrix
