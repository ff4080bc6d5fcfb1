#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Published.h"

#include <QCoroTask>
#include <QObject>
#include <QString>
#include <QStringList>

namespace velbrix {

class Archiver;
class SettingsStore;

// Unpacks archives, one at a time, each into a hidden folder first, which is on
// record in the settings as long as it may be there: what a killed restore has
// left goes at the next start, or when its disk is there again. Archiver and
// settings must outlive it.
class ArchiveRestorer final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(ArchiveRestorer, bool, isRestoring, false)
    VELB_PUBLISHED(ArchiveRestorer, QString, progress)
    VELB_PUBLISHED(ArchiveRestorer, QString, result)           // of the last one
    VELB_PUBLISHED(ArchiveRestorer, bool, hasSucceeded, false) // the last one

public:
    ArchiveRestorer(Archiver &archiver, SettingsStore &settings);
    ~ArchiveRestorer() override { _cancellation.cancel(); }

    // Into a new folder inside the chosen one; nothing is replaced. Does
    // nothing while another restore goes on.
    void restore(const QString &archive, const QString &intoFolder);
    void cancel();

private:
    QCoro::Task<> run(QString archive, QString folder);
    QCoro::Task<> removeLeftovers();
    QStringList recorded() const;
    void record(const QStringList &unpacking);

    Archiver &_archiver;
    SettingsStore &_settings;
    Cancellation _cancellation;
};

} // namespace velbrix
