#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QString>

namespace velbrix {

// What only the Finder can do with the trash, by AppleScript. Needs nothing
// else of the Mac. Tasks may outlive it; the clock must outlive both.
class FinderTrash {
public:
    // The program is given so that another can stand in for it.
    explicit FinderTrash(Clock &clock, QString osascript = QStringLiteral("/usr/bin/osascript"));

    // Whether the item is gone tells whether it worked, whatever the program says.
    QCoro::Task<Result<void>> moveToTrash(const QString path) const;
    QCoro::Task<Result<void>> empty() const;

    // Of what the system refuses to move it is asked for applications alone.
    static bool isAskedFor(const QString &path) { return path.endsWith(QLatin1String(".app")); }
    // In the user's trash at home or that of another volume.
    static bool isTrashed(const QString &path, const QString &home, uint user);

private:
    ProcessRunner _runner;
    QString _osascript;
};

} // namespace velbrix
