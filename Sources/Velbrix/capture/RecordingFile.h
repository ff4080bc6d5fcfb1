#pragma once

#include "foundation/Result.h"
#include "platform/MovieFiles.h"

#include <QDateTime>
#include <QString>

namespace velbrix {

// "录制_yyyyMMdd_HHmmss.mp4" in local time.
QString recordingFileName(const QDateTime &start);

// Where the user keeps what lies on their desktop, whatever it is called.
QString desktopFolder();

// Whether a recording can be written there: the folder is present (the
// user's own desktop folder is made when it is missing), writable, and has room.
Result<void> checkOutputFolder(const QString &folder);

// How a recording ended: one piece of news.
struct RecordingOutcome {
    enum class Kind {
        none, // there was none, or one is under way
        saved,
        cutShort,  // it ended by itself, with a good movie
        failed,    // the file may have been kept
        calledOff, // by the user, before there was anything to keep
    };
    Kind kind = Kind::none;
    QString reason = {}; // in words for the user, when it was cut short or failed
    QString file = {};   // the path; empty when none is left
    double duration = 0; // seconds
    qint64 bytes = 0;

    bool hasMovie() const { return kind == Kind::saved || kind == Kind::cutShort; }
    bool operator==(const RecordingOutcome &) const = default;
};

struct MovieVerdict {
    bool isGood = false;
    QString text; // for the log

    bool operator==(const MovieVerdict &) const = default;
};

// The movie under another name in its folder, where nothing has that name; its
// new path. The name goes without the extension. Blocking; any thread.
Result<QString> renameMovie(const QString &path, const QString &name);

// Good is a movie that plays, lasts more than 0.05 s and has more than 10,000
// bytes.
MovieVerdict judgeMovie(const MovieFacts &facts, const QString &fileName, qint64 bytes, bool systemMode);

} // namespace velbrix
