#include "maintenance/backup/RsyncOutput.h"

#include <algorithm>
#include <iterator>

namespace velbrix {
namespace {

constexpr qsizetype longestLine = 1 << 16; // no path is longer, even escaped

// rsync and its complaints share one channel.
constexpr QByteArrayView noFiles[] = {"deleting ",
                                      "cannot delete non-empty directory: ",
                                      "rsync: ",
                                      "rsync error: ",
                                      "IO error ",
                                      "skipping non-regular file ",
                                      "file has vanished: ",
                                      "created directory "};

} // namespace

void RsyncOutput::feed(const QByteArray &piece)
{
    qsizetype start = 0;
    for (auto end = piece.indexOf('\n'); end >= 0; end = piece.indexOf('\n', start)) {
        if (_begun.isEmpty()) {
            take(QByteArrayView(piece).sliced(start, end - start));
        } else {
            _begun += QByteArrayView(piece).sliced(start, end - start);
            take(_begun);
            _begun.clear();
        }
        start = end + 1;
    }
    if (_begun.size() < longestLine)
        _begun += QByteArrayView(piece).sliced(start);
}

void RsyncOutput::finish()
{
    take(_begun);
    _begun.clear();
}

void RsyncOutput::take(QByteArrayView line)
{
    const auto begins = [&](QByteArrayView words) { return line.startsWith(words); };
    if (line.isEmpty() || line.endsWith('/') || std::ranges::any_of(noFiles, begins))
        return;
    ++_files;
    _lastFile = line.toByteArray();
}

} // namespace velbrix
