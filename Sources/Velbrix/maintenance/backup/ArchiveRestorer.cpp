#include "maintenance/backup/ArchiveRestorer.h"

#include "maintenance/backup/RestoreRun.h"

#include <QPointer>

#include <utility>

namespace velbrix {

void ArchiveRestorer::restore(const QString &archive, const QString &intoFolder)
{
    if (!_isRestoring)
        run(archive, intoFolder);
}

void ArchiveRestorer::cancel()
{
    _cancellation.cancel();
}

QCoro::Task<> ArchiveRestorer::run(QString archive, QString folder)
{
    const QPointer self(this);
    _cancellation = Cancellation();
    _result = QString();
    _isRestoring = true;
    RestoreRequest request{.archive = archive, .folder = folder, .cancellation = _cancellation};
    request.progress = [self](const QString &line, double) {
        if (self)
            self->_progress = line;
    };
    const BackupOutcome outcome = co_await restoreArchive(_archiver, std::move(request));
    if (!self)
        co_return;
    _progress = QString();
    _hasSucceeded = outcome.state == BackupOutcome::State::done;
    _result = outcome.message;
    _isRestoring = false;
}

} // namespace velbrix
