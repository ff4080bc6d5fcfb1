#pragma once

#include "foundation/Result.h"
#include "platform/MovieFiles.h"

#include <QDateTime>
#include <QString>

namespace velbrix {

// "录制_yyyyMMdd_HHmmss.mp4" in local time.
QString recordingFileName(const QDateTime &start);

// Whether a recording can be written there: the folder is present (the
// user's own Desktop is made when it is missing), writable, and has room.
Result<void> checkOutputFolder(const QString &folder);

struct MovieVerdict {
    bool isGood = false;
    QString text; // for the log

    bool operator==(const MovieVerdict &) const = default;
};

// Good is a movie that plays, lasts more than 0.05 s and has more than 10,000
// bytes.
MovieVerdict judgeMovie(const MovieFacts &facts, const QString &fileName, qint64 bytes, bool systemMode);

} // namespace velbrix
