#include "maintenance/backup/RsyncOutput.h"

#include <algorithm>
#include <iterator>

namespace velbrix {
namespace {

constexpr qsizetype longestLine = 1 << 16; // no path is longer, even escaped

constexpr QByteArrayView deleting = "deleting ";
// rsync and some of its complaints share one channel.
constexpr QByteArrayView noFiles[] = {"cannot delete non-empty directory: ",
                                      "rsync: ",
                                      "rsync error: ",
                                      "IO error ",
                                      "skipping non-regular file ",
                                      "file has vanished: ",
                                      "created directory "};

template <typename Take> void eachLine(QByteArray &begun, const QByteArray &piece, Take take)
{
    qsizetype start = 0;
    for (auto end = piece.indexOf('\n'); end >= 0; end = piece.indexOf('\n', start)) {
        if (begun.isEmpty()) {
            take(QByteArrayView(piece).sliced(start, end - start));
        } else {
            begun += QByteArrayView(piece).sliced(start, end - start);
            take(begun);
            begun.clear();
        }
        start = end + 1;
    }
    if (begun.size() < longestLine)
        begun += QByteArrayView(piece).sliced(start);
}

// "\#" and three octal digits stand for a byte.
QByteArray unescaped(QByteArrayView text)
{
    QByteArray bytes;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const bool isEscape = text.sliced(at).startsWith("\\#") && text.size() - at >= 5;
        bool isOctal = false;
        const uint byte = isEscape ? text.sliced(at + 2, 3).toUInt(&isOctal, 8) : 0;
        bytes += isOctal ? static_cast<char>(byte) : text[at];
        at += isOctal ? 4 : 0;
    }
    return bytes;
}

// The path in quotes that a complaint is about.
QByteArray pathIn(QByteArrayView complaint)
{
    const qsizetype start = complaint.indexOf('"') + 1;
    qsizetype end = -1;
    for (const QByteArrayView after : {"\": ", "\" failed", "\" -> "}) {
        const qsizetype found = complaint.indexOf(after, start);
        end = end < 0 || (found >= 0 && found < end) ? found : end;
    }
    if (start == 0 || end < start)
        return {};
    QByteArray path = unescaped(complaint.sliced(start, end - start));
    // A file grows under its name with a dot before and six random letters behind.
    const qsizetype name = path.lastIndexOf('/') + 1;
    if (complaint.contains("mkstemp") && path.mid(name).startsWith('.') &&
        path.lastIndexOf('.') == path.size() - 7)
        path = path.first(name) + path.sliced(name + 1).chopped(7);
    return path;
}

} // namespace

RsyncOutput::RsyncOutput(const QSet<QByteArray> &sourceNames)
{
    for (const QByteArray &name : sourceNames) {
        if (name.startsWith(deleting))
            _lookalikes.insert(name);
    }
}

void RsyncOutput::feed(const QByteArray &piece)
{
    eachLine(_begun, piece, [this](QByteArrayView line) { take(line); });
}

void RsyncOutput::feedErrors(const QByteArray &piece)
{
    eachLine(_begunError, piece, [this](QByteArrayView line) { takeError(line); });
}

void RsyncOutput::finish()
{
    take(std::exchange(_begun, {}));
    takeError(std::exchange(_begunError, {}));
}

void RsyncOutput::take(QByteArrayView line)
{
    const auto begins = [&](QByteArrayView words) { return line.startsWith(words); };
    if (line.isEmpty() || line.endsWith('/') || std::ranges::any_of(noFiles, begins))
        return;
    const qsizetype slash = line.indexOf('/');
    if (begins(deleting) &&
        !_lookalikes.contains(line.first(slash < 0 ? line.size() : slash).toByteArray())) {
        ++_deletions;
        return;
    }
    ++_files;
    _lastFile = line.toByteArray();
}

void RsyncOutput::takeError(QByteArrayView line)
{
    if (line.isEmpty())
        return;
    if (_firstComplaint.isEmpty())
        _firstComplaint = line.toByteArray();
    const QByteArray path = line.startsWith("rsync error: ") ? QByteArray() : pathIn(line);
    if (path.isEmpty() || path == _lastFailed)
        return;
    ++_failures;
    _lastFailed = path;
    if (_firstFailed.isEmpty())
        _firstFailed = path;
}

} // namespace velbrix
