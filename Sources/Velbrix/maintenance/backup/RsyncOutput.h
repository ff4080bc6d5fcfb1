#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QSet>

namespace velbrix {

// What rsync tells of a run: the files among the lines that it prints for its "%n",
// neither folders nor its remarks, and what it complains of. Pieces of any size.
class RsyncOutput {
public:
    // The names at the top of the source; those that begin as rsync's lines on
    // deletions do are told from these.
    explicit RsyncOutput(const QSet<QByteArray> &sourceNames = {});

    void feed(const QByteArray &piece);
    void feedErrors(const QByteArray &piece);
    // The last lines when nothing ends them.
    void finish();

    qint64 files() const { return _files; }
    qint64 deletions() const { return _deletions; } // without folders
    // Of the last file, as rsync prints it.
    const QByteArray &lastFile() const { return _lastFile; }
    // Paths that could not be copied or deleted, and the first of them in its own bytes.
    qint64 failures() const { return _failures; }
    const QByteArray &firstFailed() const { return _firstFailed; }
    // The first complaint as it was.
    const QByteArray &firstComplaint() const { return _firstComplaint; }

private:
    void take(QByteArrayView line);
    void takeError(QByteArrayView line);

    QSet<QByteArray> _lookalikes;
    QByteArray _begun; // a line without its end
    QByteArray _begunError;
    QByteArray _lastFile;
    QByteArray _lastFailed;
    QByteArray _firstFailed;
    QByteArray _firstComplaint;
    qint64 _files = 0;
    qint64 _deletions = 0;
    qint64 _failures = 0;
};

} // namespace velbrix
