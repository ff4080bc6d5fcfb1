#include "platform/macos/files/ZipWalk.h"

#include <QFile>
#include <QList>
#include <QtEndian>

#include <algorithm>
#include <optional>
#include <zlib.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr quint32 localSignature = 0x04034b50;
constexpr quint32 descriptorSignature = 0x08074b50;
constexpr quint32 centralSignature = 0x02014b50;
constexpr quint32 end64Signature = 0x06064b50;
constexpr quint32 locator64Signature = 0x07064b50;
constexpr qint64 localSize = 30;
constexpr qint64 centralSize = 46;
constexpr qint64 endSize = 22;
constexpr qint64 end64Size = 56;
constexpr qint64 locator64Size = 20;
constexpr qint64 longestComment = 65535;
constexpr qint64 longestDirectory = 1 << 30; // kept in memory
constexpr qint64 pieceSize = 256 << 10;

constexpr qint64 in64 = 0xffffffff; // the number is in the extra field
constexpr quint16 extra64 = 1;
constexpr int deflated = 8;
constexpr int encryptedFlag = 1 << 0;
constexpr int sizesFollowFlag = 1 << 3;

struct Entry {
    QByteArray name;
    int flags = 0;
    int method = 0;
    quint32 crc = 0;
    qint64 packedSize = 0; // what fits of it, unless zip64 has the rest; as the next
    qint64 size = 0;
    qint64 offset = 0;
};

std::unexpected<Failure> damaged(const QString &what)
{
    return failure(u"归档已损坏：%1"_s.arg(what));
}

template <typename Number> Number number(const QByteArray &bytes, qint64 at)
{
    return qFromLittleEndian<Number>(bytes.constData() + at);
}

// What the record has no room for is in the extra fields (4.5.3), in this order.
void takeLongNumbers(const QByteArray &extra, Entry &entry)
{
    for (qint64 at = 0; at + 4 <= extra.size(); at += 4 + number<quint16>(extra, at + 2)) {
        if (number<quint16>(extra, at) != extra64)
            continue;
        qint64 next = at + 4;
        for (qint64 *const value : {&entry.size, &entry.packedSize, &entry.offset}) {
            if (*value != in64 || next + 8 > extra.size())
                continue;
            *value = number<qint64>(extra, next);
            next += 8;
        }
    }
}

class Walk {
public:
    explicit Walk(const QString &path) : _file(path) {}

    Result<void> open()
    {
        if (!_file.open(QIODevice::ReadOnly))
            return failure(u"无法打开归档：%1"_s.arg(_file.errorString()));
        if (!findDirectory() || !readDirectory())
            return damaged(u"目录不完整，文件可能被截断，或不是 zip 归档"_s);
        return {};
    }

    const QList<Entry> &entries() const { return _entries; }

    Result<void> check(const Cancellation &cancellation)
    {
        qint64 at = 0;
        for (const Entry &entry : _entries) {
            if ((entry.flags & encryptedFlag) != 0)
                return failure(u"“%1”已加密，无法读取"_s.arg(QString::fromUtf8(entry.name)));
            const auto end = endOf(entry, at, cancellation);
            if (cancellation.isCancelled())
                return failure(u"已取消"_s);
            if (!end)
                return damaged(u"“%1”"_s.arg(QString::fromUtf8(entry.name)));
            at = *end;
        }
        return at == _directory ? Result<void>() : damaged(u"有不属于任何文件的内容"_s);
    }

private:
    // Fewer bytes only at the end of the file.
    QByteArray bytes(qint64 at, qint64 size)
    {
        return at >= 0 && _file.seek(at) ? _file.read(size) : QByteArray();
    }
    quint32 signature(qint64 at)
    {
        const QByteArray found = bytes(at, 4);
        return found.size() == 4 ? number<quint32>(found, 0) : 0;
    }

    bool findDirectory()
    {
        const qint64 size = _file.size();
        const QByteArray tail = bytes(std::max<qint64>(0, size - endSize - longestComment), size);
        qint64 end = tail.size() - endSize;
        while (end >= 0 && (!tail.sliced(end).startsWith("PK\5\6") ||
                            number<quint16>(tail, end + 20) != tail.size() - end - endSize))
            --end;
        if (end < 0)
            return false;
        _count = number<quint16>(tail, end + 10);
        qint64 length = number<quint32>(tail, end + 12);
        _directoryEnd = size - tail.size() + end;
        if (signature(_directoryEnd - locator64Size) == locator64Signature) {
            const QByteArray locator = bytes(_directoryEnd - locator64Size, locator64Size);
            const QByteArray end64 = bytes(number<qint64>(locator, 8), end64Size);
            if (end64.size() != end64Size || number<quint32>(end64, 0) != end64Signature)
                return false;
            _count = number<qint64>(end64, 32);
            length = number<qint64>(end64, 40);
            _directoryEnd = number<qint64>(locator, 8);
            _hasLongNumbers = true;
        }
        _directory = _directoryEnd - length;
        return length >= 0 && length <= longestDirectory && _directory >= 0;
    }

    bool readDirectory()
    {
        const QByteArray records = bytes(_directory, _directoryEnd - _directory);
        qint64 at = 0;
        while (at + centralSize <= records.size() && number<quint32>(records, at) == centralSignature) {
            const qint64 nameSize = number<quint16>(records, at + 28);
            const qint64 rest =
                nameSize + number<quint16>(records, at + 30) + number<quint16>(records, at + 32);
            if (rest > records.size() - at - centralSize)
                return false;
            const QByteArray record = records.sliced(at, centralSize);
            Entry entry{records.sliced(at + centralSize, nameSize),
                        number<quint16>(record, 8),
                        number<quint16>(record, 10),
                        number<quint32>(record, 16),
                        number<quint32>(record, 20),
                        number<quint32>(record, 24),
                        number<quint32>(record, 42)};
            takeLongNumbers(records.sliced(at + centralSize + nameSize, number<quint16>(record, 30)), entry);
            _entries.append(entry);
            at += centralSize + rest;
        }
        // Cut offsets tell nothing, but then the order is that of the writing.
        if (_hasLongNumbers || _directory <= in64)
            std::ranges::sort(_entries, {}, &Entry::offset);
        return at == records.size() && (_entries.size() - _count) % 65536 == 0;
    }

    // Where the next entry begins, when this one holds what it should.
    std::optional<qint64> endOf(const Entry &entry, qint64 at, const Cancellation &cancellation)
    {
        const QByteArray header = bytes(at, localSize);
        if (header.size() != localSize || number<quint32>(header, 0) != localSignature ||
            number<quint16>(header, 8) != entry.method)
            return std::nullopt;
        const qint64 nameSize = number<quint16>(header, 26);
        if (bytes(at + localSize, nameSize) != entry.name)
            return std::nullopt;
        const qint64 data = at + localSize + nameSize + number<quint16>(header, 28);
        const auto end = entry.method == deflated ? inflated(entry, data, cancellation)
                         : entry.method == 0      ? copied(entry, data, cancellation)
                                                  : std::nullopt;
        return end && (entry.flags & sizesFollowFlag) != 0 ? afterDescriptor(*end) : end;
    }

    std::optional<qint64> copied(const Entry &entry, qint64 data, const Cancellation &cancellation)
    {
        uLong crc = ::crc32(0, nullptr, 0);
        for (qint64 left = entry.packedSize; left > 0 && !cancellation.isCancelled();) {
            const QByteArray piece = bytes(data, std::min(left, pieceSize));
            if (piece.isEmpty())
                return std::nullopt;
            crc = ::crc32(crc, reinterpret_cast<const Bytef *>(piece.constData()),
                          static_cast<uInt>(piece.size()));
            data += piece.size();
            left -= piece.size();
        }
        return crc == entry.crc ? std::optional(data) : std::nullopt;
    }

    std::optional<qint64> inflated(const Entry &entry, qint64 data, const Cancellation &cancellation)
    {
        z_stream stream = {};
        ::inflateInit2(&stream, -MAX_WBITS);
        QByteArray piece;
        QByteArray content(pieceSize, Qt::Uninitialized);
        uLong crc = ::crc32(0, nullptr, 0);
        quint64 size = 0;
        int answer = Z_OK;
        while (answer == Z_OK && !cancellation.isCancelled()) {
            if (stream.avail_in == 0) {
                piece = bytes(data, pieceSize);
                data += piece.size();
                stream.next_in = reinterpret_cast<Bytef *>(piece.data());
                stream.avail_in = static_cast<uInt>(piece.size());
            }
            stream.next_out = reinterpret_cast<Bytef *>(content.data());
            stream.avail_out = static_cast<uInt>(content.size());
            answer = ::inflate(&stream, Z_NO_FLUSH);
            const uInt made = static_cast<uInt>(content.size()) - stream.avail_out;
            crc = ::crc32(crc, reinterpret_cast<const Bytef *>(content.constData()), made);
            size += made;
        }
        const qint64 end = data - static_cast<qint64>(stream.avail_in);
        ::inflateEnd(&stream);
        const bool hasSize = static_cast<quint32>(entry.size) == static_cast<quint32>(size);
        return answer == Z_STREAM_END && crc == entry.crc && hasSize ? std::optional(end) : std::nullopt;
    }

    // It may have a signature, and sizes of 32 or of 64 bits.
    std::optional<qint64> afterDescriptor(qint64 at)
    {
        const qint64 sizes = at + (signature(at) == descriptorSignature ? 8 : 4);
        for (const qint64 next : {sizes + 8, sizes + 16}) {
            if (next == _directory || signature(next) == localSignature)
                return next;
        }
        return std::nullopt;
    }

    QFile _file;
    qint64 _directory = 0; // where it begins, and ends
    qint64 _directoryEnd = 0;
    bool _hasLongNumbers = false; // by zip64
    qint64 _count = 0;            // of entries, what fits of it
    QList<Entry> _entries;
};

} // namespace

Result<QByteArrayList> zipNames(const QString &archive)
{
    Walk walk(archive);
    if (const auto opened = walk.open(); !opened)
        return std::unexpected(opened.error());
    QByteArrayList names;
    for (const Entry &entry : walk.entries())
        names.append(entry.name);
    return names;
}

Result<void> checkZip(const QString &archive, const Cancellation &cancellation)
{
    Walk walk(archive);
    if (const auto opened = walk.open(); !opened)
        return opened;
    return walk.check(cancellation);
}

} // namespace velbrix
