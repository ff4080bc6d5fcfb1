#include "capture/RecorderPreferences.h"

#include "foundation/SettingsStore.h"
#include "support/MemorySettings.h"
#include "support/VirtualClock.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace velbrix;
using namespace velbrix::test;

namespace {

struct Rig {
    explicit Rig(const QJsonObject &stored = {})
    {
        auto owned = std::make_unique<MemorySettings>();
        owned->stored = stored;
        backend = owned.get();
        store = std::make_unique<SettingsStore>(std::move(owned), clock);
        preferences = std::make_unique<RecorderPreferences>(*store);
        preferences->loadSettings();
    }
    VirtualClock clock;
    MemorySettings *backend = nullptr;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<RecorderPreferences> preferences;
};

QString key(const QString &name)
{
    return u"Velbrix_ScreenRecord_"_s + name;
}

} // namespace

class RecorderPreferencesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startsWithTheInitialValues()
    {
        const Rig rig;
        const RecorderPreferences &p = *rig.preferences;
        QCOMPARE(p.recordMode(), RecordMode::fullScreen);
        QCOMPARE(p.fpsOption(), RecordFPS::fps60);
        QCOMPARE(p.qualityOption(), RecordQuality::original);
        QCOMPARE(p.outputDir(), QDir::homePath() + u"/Desktop"_s);
        QVERIFY(p.recordSystemAudio());
        QVERIFY(!p.recordMicrophone());
        QVERIFY(p.misTouchProtectionEnabled());
        QCOMPARE(p.misTouchIntervalMinutes(), 30.0);
        QCOMPARE(p.screenshotDestination(), ScreenshotDestination::clipboard);
    }

    void storesEveryPropertyUnderItsKeyAndReadsItBack()
    {
        Rig rig;
        RecorderPreferences &p = *rig.preferences;
        p.setRecordMode(RecordMode::window);
        p.setFpsOption(RecordFPS::fps120);
        p.setQualityOption(RecordQuality::half);
        p.setOutputDir(u"/a"_s);
        p.setRecordSystemAudio(false);
        p.setRecordMicrophone(true);
        p.setIgnoreSelfWindows(true);
        p.setSelectedSpeakerID(u"spk"_s);
        p.setSelectedMicrophoneID(u"mic"_s);
        p.setMisTouchProtectionEnabled(false);
        p.setMisTouchIntervalMinutes(45.5);
        p.setScreenshotDestination(ScreenshotDestination::folder);
        p.setScreenshotOutputDir(u"/b"_s);
        p.setScreenshotIgnoreSelfWindows(true);
        QVERIFY(rig.store->flush());
        const QJsonObject expected{
            {key(u"mode"_s), u"窗口录制"_s},           {key(u"fps"_s), 120},
            {key(u"quality"_s), u"二分之一"_s},        {key(u"outputDir"_s), u"/a"_s},
            {key(u"recordSystemAudio"_s), false},      {key(u"recordMicrophone"_s), true},
            {key(u"ignoreSelfWindows"_s), true},       {key(u"speakerID"_s), u"spk"_s},
            {key(u"microphoneID"_s), u"mic"_s},        {key(u"misTouchProtectionEnabled"_s), false},
            {key(u"misTouchIntervalMinutes"_s), 45.5}, {key(u"screenshotDestination"_s), u"folder"_s},
            {key(u"screenshotOutputDir"_s), u"/b"_s},  {key(u"screenshotIgnoreSelfWindows"_s), true}};
        QCOMPARE(rig.backend->stored, expected);

        const Rig again(expected);
        const RecorderPreferences &q = *again.preferences;
        QCOMPARE(q.recordMode(), RecordMode::window);
        QCOMPARE(q.fpsOption(), RecordFPS::fps120);
        QCOMPARE(q.qualityOption(), RecordQuality::half);
        QCOMPARE(q.outputDir(), u"/a"_s);
        QVERIFY(!q.recordSystemAudio() && q.recordMicrophone() && q.ignoreSelfWindows());
        QCOMPARE(q.selectedSpeakerID(), u"spk"_s);
        QCOMPARE(q.selectedMicrophoneID(), u"mic"_s);
        QVERIFY(!q.misTouchProtectionEnabled());
        QCOMPARE(q.misTouchIntervalMinutes(), 45.5);
        QCOMPARE(q.screenshotDestination(), ScreenshotDestination::folder);
        QCOMPARE(q.screenshotOutputDir(), u"/b"_s);
        QVERIFY(q.screenshotIgnoreSelfWindows());
    }

    void whatDidNotChangeIsNotStored()
    {
        Rig rig;
        rig.preferences->setFpsOption(RecordFPS::fps60);
        rig.preferences->setOutputDir(QDir::homePath() + u"/Desktop"_s);
        QVERIFY(rig.store->flush());
        QCOMPARE(rig.backend->saves, 0);
    }

    void badValuesCountAsAbsent_data()
    {
        QTest::addColumn<QJsonObject>("stored");
        QTest::newRow("unknown names") << QJsonObject{{key(u"mode"_s), u"x"_s}, {key(u"quality"_s), u"4k"_s}};
        QTest::newRow("fps between the cases") << QJsonObject{{key(u"fps"_s), 61}};
        QTest::newRow("other types") << QJsonObject{
            {key(u"fps"_s), u"60"_s}, {key(u"recordSystemAudio"_s), 0}, {key(u"outputDir"_s), QJsonObject{}}};
        QTest::newRow("relative folder") << QJsonObject{{key(u"outputDir"_s), u"Movies"_s}};
    }
    void badValuesCountAsAbsent()
    {
        QFETCH(QJsonObject, stored);
        const Rig rig(stored);
        const RecorderPreferences &p = *rig.preferences;
        QCOMPARE(p.recordMode(), RecordMode::fullScreen);
        QCOMPARE(p.fpsOption(), RecordFPS::fps60);
        QCOMPARE(p.qualityOption(), RecordQuality::original);
        QVERIFY(p.recordSystemAudio());
        QCOMPARE(p.outputDir(), QDir::homePath() + u"/Desktop"_s);
    }

    void theIntervalKeepsItsBounds_data()
    {
        QTest::addColumn<double>("stored");
        QTest::addColumn<double>("minutes");
        QTest::newRow("below") << 0.5 << 1.0;
        QTest::newRow("above") << 200.0 << 120.0;
        QTest::newRow("inside") << 2.5 << 2.5;
    }
    void theIntervalKeepsItsBounds()
    {
        QFETCH(double, stored);
        const Rig rig({{key(u"misTouchIntervalMinutes"_s), stored}});
        QTEST(rig.preferences->misTouchIntervalMinutes(), "minutes");
        rig.preferences->setMisTouchIntervalMinutes(stored);
        QTEST(rig.preferences->misTouchIntervalMinutes(), "minutes");
    }
};

QTEST_GUILESS_MAIN(RecorderPreferencesTest)
#include "RecorderPreferencesTest.moc"
