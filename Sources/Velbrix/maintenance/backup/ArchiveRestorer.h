#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"

#include <QCoroTask>
#include <QObject>
#include <QString>

namespace velbrix {

class Archiver;

// Unpacks archives, one at a time. The archiver must outlive it.
class ArchiveRestorer final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(ArchiveRestorer, bool, isRestoring, false)
    VELB_PUBLISHED(ArchiveRestorer, QString, progress)
    VELB_PUBLISHED(ArchiveRestorer, QString, result)           // of the last one
    VELB_PUBLISHED(ArchiveRestorer, bool, hasSucceeded, false) // the last one

public:
    explicit ArchiveRestorer(Archiver &archiver) : _archiver(archiver) {}
    ~ArchiveRestorer() override { _cancellation.cancel(); }

    // Into a new folder inside the chosen one; nothing is replaced. Does
    // nothing while another restore goes on.
    void restore(const QString &archive, const QString &intoFolder);
    void cancel();

private:
    QCoro::Task<> run(QString archive, QString folder);

    Archiver &_archiver;
    Cancellation _cancellation;
};

} // namespace velbrix
