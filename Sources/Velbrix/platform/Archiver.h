#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace velbrix {

struct ArchiveProgress {
    qint64 files = 0;      // done
    qint64 totalFiles = 0; // 0 while nobody knows
    qint64 bytes = 0;      // read so far

    bool operator==(const ArchiveProgress &) const = default;
};

struct ArchiveRequest {
    QString source;       // a folder; its name is the first part of every path inside
    QString archive;      // the file to write; it must not exist
    QStringList excludes; // shell patterns for names, or with a "/" for paths below the source
    std::function<void(const ArchiveProgress &)> progress; // on the main thread, a few times a second
    Cancellation cancellation;
};

struct ArchiveOutcome {
    int exitStatus = 0;       // 0: everything is in it, apart from what is skipped
    QString problem = {};     // why not, in words for the user
    bool isDiskFull = false;  // that is why
    QStringList skipped = {}; // what could not be read, the first hundred
    qint64 skippedCount = 0;
    QStringList changed =
        {}; // what was written while it was read, and is in it as it was read; the first hundred
    qint64 changedCount = 0;
    bool cancelled = false;
    std::optional<qint64> files = {}; // in it, links too; nothing when nobody counted

    bool operator==(const ArchiveOutcome &) const = default;
};

struct ExtractRequest {
    QString archive;
    QString folder; // must be there; nothing that is there is replaced
    std::function<void(const ArchiveProgress &)> progress;
    Cancellation cancellation;
};

// Zip archives of folders: links stay links, times, modes and UTF-8 names are
// kept. Memory stays bounded. Main thread; the work is done off it.
class Archiver {
public:
    virtual ~Archiver() = default;

    // An archive that is not complete may be left behind; the caller removes it.
    virtual QCoro::Task<Result<ArchiveOutcome>> create(ArchiveRequest request) = 0;
    // Reads all of it and compares the sums; a failure says what is wrong.
    virtual QCoro::Task<Result<void>> test(const QString archive, Cancellation cancellation) = 0;
    // Nothing is ever written outside the folder, whatever the archive says.
    virtual QCoro::Task<Result<void>> extract(ExtractRequest request) = 0;
};

} // namespace velbrix
