#pragma once

#include "platform/linux/archive/RecordReader.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>

namespace velbrix {

// The numbers of the zip format (PKWARE's APPNOTE), and its records as bytes.
namespace zip {

constexpr std::uint32_t localSignature = 0x04034b50;
constexpr std::uint32_t centralSignature = 0x02014b50;
constexpr std::uint32_t endSignature = 0x06054b50;
constexpr std::uint32_t end64Signature = 0x06064b50;
constexpr std::uint32_t locator64Signature = 0x07064b50;
constexpr std::size_t localSize = 30; // before name and extra fields
constexpr std::size_t centralSize = 46;
constexpr std::size_t endSize = 22;
constexpr std::size_t end64Size = 56;
constexpr std::size_t locator64Size = 20;

constexpr std::uint16_t stored = 0;
constexpr std::uint16_t deflated = 8;

constexpr std::uint16_t encryptedFlag = 1 << 0;
constexpr std::uint16_t sizesFollowFlag = 1 << 3; // the data, instead of being in the local header
constexpr std::uint16_t utf8Flag = 1 << 11;

constexpr std::uint16_t extra64 = 0x0001;
constexpr std::uint16_t extraTime = 0x5455;
constexpr std::uint16_t extraOldTime = 0x5855;

constexpr std::uint32_t in64 = 0xffffffff; // the number is in the extra field
constexpr std::uint16_t in64Count = 0xffff;

} // namespace zip

struct ZipEntry {
    QByteArray name; // a folder's ends in "/"
    std::uint16_t flags = 0;
    std::uint16_t method = zip::stored;
    std::uint32_t crc = 0;
    std::uint64_t packedSize = 0;
    std::uint64_t size = 0;
    std::uint64_t offset = 0; // of its local header
    std::uint32_t mode = 0;   // Unix mode with its kind; 0 when unknown
    std::int64_t time = 0;    // of the last change, seconds since 1970
};

// Its name for the user.
QString shownName(const ZipEntry &entry);

// The flag that says which characters the name is made of.
std::uint16_t nameFlags(const QByteArray &name);

// With `wide`, room for sizes of any length; the header's length depends on
// nothing but the name, the time and this.
QByteArray localHeader(const ZipEntry &entry, bool wide);
QByteArray centralRecord(const ZipEntry &entry);
// What follows the central records, which begin at `offset`.
QByteArray endRecords(std::uint64_t count, std::uint64_t offset, std::uint64_t size);

// The next record of a central directory; none when it is not one.
std::optional<ZipEntry> readCentralRecord(RecordReader &reader);

// What a local header says, and its length; none when it is not one. `offset`,
// `mode` and `time` are not in it.
struct LocalRecord {
    ZipEntry entry;
    std::size_t length = 0;
};
std::optional<LocalRecord> readLocalRecord(RecordReader &reader);

} // namespace velbrix
