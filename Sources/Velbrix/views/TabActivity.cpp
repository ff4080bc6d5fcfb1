#include "views/TabActivity.h"

#include "app/AppServices.h"

using namespace Qt::StringLiterals;

namespace velbrix {

void TabActivity::watchTools(AppServices &services)
{
    const RecordingSession &session = services.recorder.session();
    watch(
        AppTab::recorder, session,
        [&session] { return session.isRecording() ? std::optional(TabJob{u"录制中"_s}) : std::nullopt; },
        &RecordingSession::isRecordingChanged);
    const SystemCleaner &cleaner = services.cleaner;
    watch(
        AppTab::systemClean, cleaner,
        [&cleaner]() -> std::optional<TabJob> {
            if (cleaner.isCleaning())
                return TabJob{u"正在清理"_s, cleaner.progress()};
            return cleaner.isWorking() ? std::optional(TabJob{u"正在计算大小"_s}) : std::nullopt;
        },
        &SystemCleaner::phaseChanged, &SystemCleaner::progressChanged);
    const AppScanner &scanner = services.uninstaller;
    watch(
        AppTab::uninstaller, scanner,
        [&scanner]() -> std::optional<TabJob> {
            if (scanner.isUninstalling())
                return TabJob{u"正在卸载"_s, scanner.progressValue()};
            return scanner.isPuttingBack() ? std::optional(TabJob{u"正在放回原处"_s}) : std::nullopt;
        },
        &AppScanner::isUninstallingChanged, &AppScanner::progressValueChanged,
        &AppScanner::isPuttingBackChanged);
    const FileBackupController &backups = services.fileBackup;
    watch(
        AppTab::fileBackup, backups,
        [&backups]() -> std::optional<TabJob> {
            if (backups.isRunningBackup())
                return TabJob{u"正在备份"_s, backups.runningShare()};
            return backups.restorer().isRestoring() ? std::optional(TabJob{u"正在恢复"_s}) : std::nullopt;
        },
        &FileBackupController::isRunningBackupChanged, &FileBackupController::runningShareChanged);
    connect(&backups.restorer(), &ArchiveRestorer::isRestoringChanged, this,
            [this] { Q_EMIT changed(AppTab::fileBackup); });
}

std::optional<TabJob> TabActivity::job(AppTab tab) const
{
    const Answer answer = _answers.value(tab);
    return answer ? answer() : std::nullopt;
}

} // namespace velbrix
