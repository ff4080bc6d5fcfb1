#pragma once

#include "foundation/Result.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace velbrix {

class SettingsStore;

// Who has made an archive or a mirror. Its name alone does not tell: another task,
// account or computer may write in the same folder under the same name.
struct BackupOwner {
    QString installation;
    QString task; // its id

    bool operator==(const BackupOwner &) const = default;
};

// Of these settings on this computer: settings that are copied to another one
// have another there. Sixteen hexadecimal digits.
QString installationId(SettingsStore &settings);

// What an archive says of itself, in the comment that a zip file ends with
// (APPNOTE 4.4.26).
struct ArchiveMark {
    BackupOwner owner;
    qint64 run = 0;          // rises from archive to archive, whatever the clock says
    qint64 files = 0;        // in it; links and the like, too
    bool isComplete = false; // nothing of the source is missing in it
    bool isAgreed = false;   // the user knows that the source has lost so much

    bool operator==(const ArchiveMark &) const = default;
};

// Blocking. The archive is whole before and after; another comment is replaced.
Result<void> markArchive(const QString &archive, const ArchiveMark &mark);

// The comment; nothing when the file does not end as an archive does. Blocking.
std::optional<QByteArray> archiveComment(const QString &archive);
std::optional<ArchiveMark> archiveMark(const QByteArray &comment);

// The file in a mirror that says whose it is. It is no part of what is mirrored.
QString mirrorMarkName();
// Blocking, as the next.
Result<void> markMirror(const QString &mirror, const BackupOwner &owner);
// Nothing for a folder without a mark.
std::optional<BackupOwner> mirrorOwner(const QString &mirror);

} // namespace velbrix
