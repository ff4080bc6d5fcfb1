#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace velbrix {

// Counts the files among the lines that rsync prints for its "%n": neither
// folders nor deletions nor its complaints.
class RsyncOutput {
public:
    // Pieces of any size.
    void feed(const QByteArray &piece);
    // The last line when nothing ends it.
    void finish();

    qint64 files() const { return _files; }
    // Of the last file, as rsync prints it.
    const QByteArray &lastFile() const { return _lastFile; }

private:
    void take(QByteArrayView line);

    QByteArray _begun; // a line without its end
    QByteArray _lastFile;
    qint64 _files = 0;
};

} // namespace velbrix
