#include "platform/linux/archive/EntryReader.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr std::uint64_t wholeEntry = 4 << 20;
constexpr std::uint64_t partSize = 256 << 10;

struct Inflation {
    Inflation() { ::inflateInit2(&stream, -MAX_WBITS); }
    ~Inflation() { ::inflateEnd(&stream); }
    Inflation(const Inflation &) = delete;
    Inflation &operator=(const Inflation &) = delete;

    z_stream stream = {};
};

} // namespace

// What has come of an entry.
class EntryReader::Content {
public:
    Content(const ZipEntry &entry, const Sink &sink) : entry(entry), _sink(sink) {}

    std::unexpected<Failure> damaged(const QString &how) const
    {
        return failure(u"归档已损坏：“%1”%2"_s.arg(shownName(entry), how));
    }
    Result<void> take(std::span<const std::uint8_t> bytes)
    {
        if (bytes.size() > entry.size - _size)
            return damaged(u"的数据比记录的长"_s);
        _size += bytes.size();
        _crc = ::libdeflate_crc32(_crc, bytes.data(), bytes.size());
        return _sink(bytes);
    }
    Result<void> finish() const
    {
        if (_size != entry.size)
            return damaged(u"的数据不完整"_s);
        if (_crc != entry.crc)
            return damaged(u"的校验和不符"_s);
        return {};
    }

    const ZipEntry &entry;

private:
    const Sink &_sink;
    std::uint64_t _size = 0;
    std::uint32_t _crc = 0;
};

void EntryReader::Free::operator()(libdeflate_decompressor *decompressor) const
{
    ::libdeflate_free_decompressor(decompressor);
}

EntryReader::EntryReader(const ZipFile &archive, const Cancellation &cancellation)
    : _archive(archive), _cancellation(cancellation), _whole(::libdeflate_alloc_decompressor())
{
}

EntryReader::~EntryReader() = default;

Result<void> EntryReader::read(const ZipEntry &entry, const Sink &sink)
{
    if ((entry.flags & zip::encryptedFlag) != 0)
        return failure(u"“%1”已加密，无法读取"_s.arg(shownName(entry)));
    if (entry.method != zip::stored && entry.method != zip::deflated)
        return failure(
            u"“%1”的压缩方法（%2）不受支持"_s.arg(shownName(entry), QString::number(entry.method)));
    const Result<std::uint64_t> offset = _archive.dataOffset(entry);
    if (!offset)
        return std::unexpected(offset.error());
    Content content(entry, sink);
    Result<void> isRead;
    if (entry.method == zip::stored)
        isRead = readStored(*offset, content);
    else if (entry.size <= wholeEntry && entry.packedSize <= wholeEntry)
        isRead = readWhole(*offset, content);
    else
        isRead = readParts(*offset, content);
    return isRead ? content.finish() : isRead;
}

Result<void> EntryReader::readWhole(std::uint64_t offset, Content &content)
{
    const auto packed = _packed.sized(content.entry.packedSize);
    const auto unpacked = _unpacked.sized(content.entry.size);
    if (!_archive.read(offset, packed))
        return content.damaged(u"读不出来"_s);
    std::size_t used = 0;
    std::size_t made = 0;
    const auto answer = ::libdeflate_deflate_decompress_ex(_whole.get(), packed.data(), packed.size(),
                                                           unpacked.data(), unpacked.size(), &used, &made);
    if (answer == LIBDEFLATE_INSUFFICIENT_SPACE)
        return content.damaged(u"的数据比记录的长"_s);
    if (answer != LIBDEFLATE_SUCCESS || used != packed.size())
        return content.damaged(u"无法解压"_s);
    return content.take(unpacked.first(made));
}

Result<void> EntryReader::readStored(std::uint64_t offset, Content &content)
{
    std::uint64_t left = content.entry.packedSize;
    while (left > 0) {
        if (_cancellation.isCancelled())
            return failure(u"已取消"_s);
        const auto bytes = _packed.sized(std::min(left, partSize));
        if (!_archive.read(offset, bytes))
            return content.damaged(u"读不出来"_s);
        if (const auto isTaken = content.take(bytes); !isTaken)
            return isTaken;
        offset += bytes.size();
        left -= bytes.size();
    }
    return {};
}

Result<void> EntryReader::readParts(std::uint64_t offset, Content &content)
{
    Inflation inflation;
    z_stream &stream = inflation.stream;
    std::uint64_t left = content.entry.packedSize;
    const auto into = _unpacked.sized(partSize);
    int answer = Z_OK;
    while (answer != Z_STREAM_END) {
        if (_cancellation.isCancelled())
            return failure(u"已取消"_s);
        if (stream.avail_in == 0 && left > 0) {
            const auto packed = _packed.sized(std::min(left, partSize));
            if (!_archive.read(offset, packed))
                return content.damaged(u"读不出来"_s);
            offset += packed.size();
            left -= packed.size();
            stream.next_in = packed.data();
            stream.avail_in = static_cast<uInt>(packed.size());
        }
        stream.next_out = into.data();
        stream.avail_out = static_cast<uInt>(into.size());
        answer = ::inflate(&stream, Z_NO_FLUSH);
        if (answer != Z_OK && answer != Z_STREAM_END)
            return content.damaged(u"无法解压"_s);
        if (const auto isTaken = content.take(into.first(into.size() - stream.avail_out)); !isTaken)
            return isTaken;
    }
    if (left > 0 || stream.avail_in > 0)
        return content.damaged(u"的数据比记录的长"_s);
    return {};
}

} // namespace velbrix
