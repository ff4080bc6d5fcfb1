#include "support/WindowRig.h"
#include "views/components/PathField.h"
#include "views/components/Switch.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTimeEdit>

namespace {

// A program with a folder to back up and a place for the backups, on the page.
struct Rig : WindowRig {
    Rig()
    {
        QDir().mkpath(target());
        writeFile(source() + u"/信.txt"_s);
    }

    QString source() const { return files.filePath(u"文稿"_s); }
    QString target() const { return files.filePath(u"备份盘"_s); }

    void open() { WindowRig::open(u"backup"_s); }
    FileBackupController &backups() const { return services->fileBackup; }
    void choose(const QString &field, const QString &folder) const
    {
        Q_EMIT find<PathField>(field)->wanted(folder);
    }
    void chooseBoth() const
    {
        choose(u"editorSource"_s, source());
        choose(u"editorDestination"_s, target());
    }
    // The id of a task added through the editor.
    QString add(BackupTaskKind kind = BackupTaskKind::backup)
    {
        click(u"backupEmptyAction"_s);
        chooseBoth();
        click(u"editorKind.%1"_s.arg(static_cast<int>(kind)));
        click(u"editorSave"_s);
        const bool isAdded = until([&] { return !backups().tasks().isEmpty() && !find(u"backupEditor"_s); });
        return isAdded ? task().id : QString();
    }
    BackupTask task() const { return backups().tasks().value(0); }
    bool run(const QString &id)
    {
        click(u"backupRun."_s + id);
        return hasRun();
    }
    bool hasRun()
    {
        return until([this] { return !backups().isRunningBackup(); });
    }
    QStringList card(const QString &id) const { return texts(u"backupTask."_s + id); }
};

} // namespace

class FileBackupViewTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aTaskIsAddedSwitchedAndRemoved()
    {
        Rig rig;
        rig.open();
        QVERIFY(rig.texts(u"backupEmpty"_s).contains(u"还没有备份任务"_s));
        const QString id = rig.add();
        QVERIFY(!rig.find(u"backupEmpty"_s));
        QCOMPARE(rig.text(u"backupCount"_s), u"共 1 个任务"_s);
        for (const QString &text : {u"文稿"_s, u"定时压缩文件夹 · 自动归档到指定位置"_s,
                                    u"每天 09:00 · 下次运行 明天 09:00"_s, u"还没有运行过"_s})
            QVERIFY2(rig.card(id).contains(text), qPrintable(text));
        rig.click(u"backupEnabled."_s + id);
        QVERIFY(!rig.task().isEnabled);
        QVERIFY(rig.card(id).contains(u"每天 09:00 · 已停用，不会自动运行"_s));
        rig.click(u"backupRemove."_s + id);
        QVERIFY(rig.text(u"noticeMessage"_s).contains(u"都会保留"_s));
        rig.click(u"noticeCancel"_s);
        QCOMPARE(rig.backups().tasks().size(), 1);
        rig.click(u"backupRemove."_s + id);
        rig.click(u"noticeConfirm"_s);
        QVERIFY(rig.backups().tasks().isEmpty());
        QVERIFY(rig.find(u"backupEmpty"_s));
    }

    void problemsStandWhereTheyBelong()
    {
        Rig rig;
        rig.open();
        rig.click(u"backupEmptyAction"_s);
        const auto savingSays = [&](const QString &field, const QString &problem) {
            rig.click(u"editorSave"_s);
            return rig.until([&] { return rig.text(field) == problem; });
        };
        QVERIFY(savingSays(u"sourceProblem"_s, u"请选择源文件夹和保存目录"_s));
        rig.choose(u"editorSource"_s, rig.source());
        QVERIFY(!rig.find(u"sourceProblem"_s));
        QVERIFY(savingSays(u"destinationProblem"_s, u"请选择源文件夹和保存目录"_s));
        rig.choose(u"editorDestination"_s, rig.files.filePath(u"没有"_s));
        QVERIFY(savingSays(u"destinationProblem"_s, u"保存目录不存在或不是目录"_s));
        rig.choose(u"editorSource"_s, rig.source() + u"/信.txt"_s);
        QVERIFY(savingSays(u"sourceProblem"_s, u"源文件夹不存在或不是目录"_s));
        QVERIFY(rig.backups().tasks().isEmpty());
        rig.click(u"editorCancel"_s);
        QVERIFY(!rig.find(u"backupEditor"_s));
    }

    void scheduleIsEntered()
    {
        Rig rig;
        rig.open();
        rig.click(u"backupEmptyAction"_s);
        rig.chooseBoth();
        QVERIFY(!rig.find(u"scheduleDay"_s));
        rig.click(u"scheduleKind.2"_s);
        QVERIFY(rig.namedControls() > 12);
        rig.find<QSpinBox>(u"scheduleMonth"_s)->setValue(2);
        QVERIFY(!rig.find(u"scheduleHint"_s));
        rig.find<QSpinBox>(u"scheduleDay"_s)->setValue(30);
        QVERIFY(rig.text(u"scheduleHint"_s).contains(u"28"_s));
        rig.find<QTimeEdit>(u"scheduleTime"_s)->setTime(QTime(7, 5));
        rig.find<QSpinBox>(u"editorKeep"_s)->setValue(3);
        rig.find<QPlainTextEdit>(u"editorExcludes"_s)->setPlainText(u" *.tmp \n\nnode_modules\n"_s);
        rig.find<QLineEdit>(u"editorName"_s)->setText(u" 论文 "_s);
        rig.find(u"editorName"_s)->setFocus();
        rig.key(Qt::Key_Return);
        QVERIFY(rig.until([&] { return rig.backups().tasks().size() == 1; }));
        QCOMPARE(rig.task().schedule, (BackupScheduleTime{BackupScheduleKind::yearly, 7, 5, 30, 2}));
        QCOMPARE(rig.task().keepLast, 3);
        QCOMPARE(rig.task().excludes, (QStringList{u"*.tmp"_s, u"node_modules"_s}));
        QCOMPARE(rig.task().name, u"论文"_s);
    }

    void aTaskIsEdited()
    {
        Rig rig;
        rig.open();
        const QString id = rig.add(BackupTaskKind::sync);
        rig.click(u"backupEdit."_s + id);
        QVERIFY(rig.find<Switch>(u"editorSetsAside"_s)->isChecked());
        QVERIFY(!rig.find(u"editorKeep"_s));
        rig.click(u"editorSetsAside"_s);
        rig.find<QLineEdit>(u"editorName"_s)->setText(u"镜像"_s);
        rig.click(u"editorSave"_s);
        QVERIFY(rig.until([&] { return rig.task().name == u"镜像"_s; }));
        QCOMPARE(rig.backups().tasks().size(), 1);
        QVERIFY(!rig.task().setsAside);
        QVERIFY(rig.card(id).contains(u"到期创建同步文件夹 · 增量复制源文件结构"_s));
    }

    void aRunShowsItselfAndItsResult()
    {
        Rig rig;
        rig.open();
        const QString id = rig.add();
        rig.host.archiver.holds = true;
        rig.click(u"backupRun."_s + id);
        QVERIFY(rig.until([&] { return !rig.host.archiver.calls.isEmpty(); }));
        QVERIFY(rig.find(u"backupJob"_s));
        QVERIFY(rig.find(u"ring.backup"_s));
        QVERIFY(!rig.isEnabled(u"backupRun."_s + id) && !rig.isEnabled(u"backupEdit."_s + id));
        rig.click(u"backupJobCancel"_s);
        QVERIFY(rig.hasRun());
        QVERIFY(!rig.find(u"backupJob"_s));

        rig.host.archiver.holds = false;
        const auto looks = [&](const QString &role) {
            const QString result = rig.task().lastResult->remove(u"✓ "_s);
            const auto labels = rig.find(u"backupTask."_s + id)->findChildren<QLabel *>();
            return std::ranges::any_of(labels, [&](const QLabel *label) {
                return label->property("role") == role && label->text() == u"今天 09:00 · "_s + result;
            });
        };
        rig.host.archiver.failure = u"磁盘已满"_s;
        QVERIFY(rig.run(id));
        QVERIFY(looks(u"bad"_s));
        rig.host.archiver.failure = std::nullopt;
        QVERIFY(rig.run(id));
        QVERIFY(looks(u"good"_s));
        rig.click(u"backupReveal."_s + id);
        QVERIFY(rig.host.desktop.calls.contains(u"reveal "_s + rig.target()));
    }

    void anArchiveComesBack()
    {
        Rig rig;
        rig.open();
        const QString id = rig.add();
        rig.click(u"backupArchives."_s + id);
        QVERIFY(rig.untilFound(u"archivesEmpty"_s));
        QVERIFY(!rig.isEnabled(u"archivesRestore"_s));
        rig.click(u"archivesClose"_s);
        QVERIFY(rig.run(id));
        rig.click(u"backupArchives."_s + id);
        QVERIFY(rig.untilFound(u"archiveRows"_s));
        rig.key(Qt::Key_Return);
        auto *const panel = rig.window()->findChild<QFileDialog *>(u"restorePanel"_s);
        QVERIFY(panel);
        panel->selectFile(rig.files.path());
        rig.host.archiver.holds = true;
        QMetaObject::invokeMethod(panel, "accept");
        QVERIFY(rig.untilFound(u"restoreJob"_s));
        rig.host.archiver.holds = false;
        QVERIFY(rig.until([&] { return !rig.backups().restorer().isRestoring(); }));
        QVERIFY(rig.text(u"restoreResult"_s).startsWith(u"✓"));
    }

    void manyDeletionsAreAsked()
    {
        Rig rig;
        for (int number = 0; number < 80; ++number)
            writeFile(rig.source() + u"/%1.txt"_s.arg(number));
        rig.open();
        const QString id = rig.add(BackupTaskKind::sync);
        QVERIFY(rig.run(id));
        const QDir mirror(rig.target() + u"/文稿_同步"_s);
        for (int number = 0; number < 70; ++number)
            QVERIFY(QFile::remove(rig.source() + u"/%1.txt"_s.arg(number)));
        for (const bool isConfirmed : {false, true}) {
            rig.click(u"backupRun."_s + id);
            QVERIFY(rig.untilFound(u"backupQuestion"_s));
            QVERIFY(rig.button(u"questionDecline"_s)->hasFocus());
            QCOMPARE(rig.text(u"questionConfirm"_s), u"删除 70 个文件并同步"_s);
            rig.click(isConfirmed ? u"questionConfirm"_s : u"questionDecline"_s);
            QVERIFY(!rig.find(u"backupQuestion"_s));
            QVERIFY(rig.hasRun());
            QCOMPARE(mirror.entryList(QDir::Files).size(), isConfirmed ? 11 : 81);
        }
    }

    void unreadableTasksAreTold()
    {
        Rig rig;
        rig.host.settings.stored.insert(u"Velbrix_FileBackupTasks_v2"_s, u"{ broken"_s);
        rig.open();
        QVERIFY(rig.texts(u"backupStorageProblem"_s).contains(rig.backups().storageProblem()));
    }
};

QTEST_MAIN(FileBackupViewTest)
#include "FileBackupViewTest.moc"
