#include "support/ProgramRig.h"

class QuittingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Each is told to stop where it can, and the program ends right after it.
    void quittingStopsWorkFirst_data()
    {
        QTest::addColumn<QString>("work");
        for (const char *work : {"backup", "restore", "clean", "put back"})
            QTest::newRow(work) << QString::fromLatin1(work);
    }
    void quittingStopsWorkFirst()
    {
        QFETCH(QString, work);
        ProgramRig rig;
        rig.host.archiver.holds = true;
        rig.launch();
        FileBackupController &backup = rig.services->fileBackup;
        AppScanner &uninstaller = rig.services->uninstaller;
        SystemCleaner &cleaner = rig.services->cleaner;
        const QString saved = rig.files.filePath(u"saved"_s);
        const QString item = writeFile(rig.files.filePath(u"item"_s));
        QVERIFY(QDir().mkpath(saved));
        if (work == u"backup") {
            BackupTask task;
            task.sourcePath = QFileInfo(writeFile(rig.files.filePath(u"source/a"_s))).path();
            task.destPath = saved;
            auto saving = backup.save(task);
            QTRY_COMPARE(backup.tasks().size(), 1);
            backup.runNow(backup.tasks().first().id);
            QTRY_VERIFY(!rig.host.archiver.calls.isEmpty());
        } else if (work == u"restore") {
            backup.restorer().restore(writeFile(rig.files.filePath(u"a.zip"_s), FakeArchiver::content),
                                      saved);
            QTRY_VERIFY(!rig.host.archiver.calls.isEmpty());
        } else if (work == u"clean") {
            for (const QString &folder : {u".npm/_cacache/x"_s, u".gradle/caches/x"_s})
                writeFile(rig.files.filePath(folder));
            cleaner.clean({u"gradle"_s, u"npm"_s});
            QVERIFY(cleaner.isCleaning());
        } else {
            UninstallReview review;
            review.app.name = review.app.source.name = u"Item"_s;
            review.app.path = review.app.source.path = item;
            ReviewItem &moved = review.items.emplaceBack();
            moved.path = item;
            moved.isTicked = moved.isFixed = true;
            uninstaller.uninstall(review);
            QTRY_COMPARE((rig.clock.advance(100ms), uninstaller.records().size()), 1);
            QTRY_VERIFY((rig.clock.advance(10s), !uninstaller.isBusy() && !uninstaller.isScanning()));
            QVERIFY(!QFile::exists(item));
            uninstaller.putBack(uninstaller.records().first().id);
            QVERIFY(uninstaller.isPuttingBack());
        }
        const QSignalSpy terminated(rig.delegate.get(), &AppDelegate::terminate);
        rig.delegate->quitApp();
        QCOMPARE(terminated.count(), 0);
        const auto deadline = rig.clock.uptime() + 5s; // half of what it waits at most
        QTRY_VERIFY((rig.clock.advance(100ms), terminated.count() == 1 || rig.clock.uptime() > deadline));
        QCOMPARE(terminated.count(), 1);
        QVERIFY(!cleaner.isCleaning() && !uninstaller.isPuttingBack() && !backup.restorer().isRestoring());
        QCOMPARE(entriesOf(saved), QStringList());
        QVERIFY(QFile::exists(item));
        if (work == u"clean") // after the item it was at
            QVERIFY(QFile::exists(rig.files.filePath(u".npm/_cacache/x"_s)));
    }
};

QTEST_GUILESS_MAIN(QuittingTest)
#include "QuittingTest.moc"
