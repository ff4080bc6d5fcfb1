#include "capture/RecorderPreferences.h"

#include "support/SettingsRig.h"
#include "support/Test.h"

namespace {

struct Rig : SettingsRig {
    explicit Rig(const QJsonObject &stored = {}) : SettingsRig(stored) { preferences.loadSettings(); }

    RecorderPreferences preferences{store};
};

QString key(const QString &name)
{
    return u"Velbrix_ScreenRecord_"_s + name;
}

} // namespace

class RecorderPreferencesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everySettingIsReadAndWritten()
    {
        const QJsonObject stored{
            {key(u"mode"_s), u"窗口录制"_s},           {key(u"fps"_s), 120},
            {key(u"quality"_s), u"二分之一"_s},        {key(u"outputDir"_s), u"/a"_s},
            {key(u"recordSystemAudio"_s), false},      {key(u"recordMicrophone"_s), true},
            {key(u"ignoreSelfWindows"_s), true},       {key(u"speakerID"_s), u"spk"_s},
            {key(u"microphoneID"_s), u"mic"_s},        {key(u"misTouchProtectionEnabled"_s), false},
            {key(u"misTouchIntervalMinutes"_s), 45.5}, {key(u"screenshotDestination"_s), u"folder"_s},
            {key(u"screenshotOutputDir"_s), u"/b"_s},  {key(u"screenshotIgnoreSelfWindows"_s), true}};
        const Rig read(stored);
        Rig written;
        const RecorderPreferences &from = read.preferences;
        RecorderPreferences &to = written.preferences;
        to.setRecordMode(from.recordMode());
        to.setFpsOption(from.fpsOption());
        to.setQualityOption(from.qualityOption());
        to.setOutputDir(from.outputDir());
        to.setRecordSystemAudio(from.recordSystemAudio());
        to.setRecordMicrophone(from.recordMicrophone());
        to.setIgnoreSelfWindows(from.ignoreSelfWindows());
        to.setSelectedSpeakerID(from.selectedSpeakerID());
        to.setSelectedMicrophoneID(from.selectedMicrophoneID());
        to.setMisTouchProtectionEnabled(from.misTouchProtectionEnabled());
        to.setMisTouchIntervalMinutes(from.misTouchIntervalMinutes());
        to.setScreenshotDestination(from.screenshotDestination());
        to.setScreenshotOutputDir(from.screenshotOutputDir());
        to.setScreenshotIgnoreSelfWindows(from.screenshotIgnoreSelfWindows());
        QCOMPARE(written.saved(), stored);
    }

    void whatDidNotChangeIsNotStored()
    {
        Rig rig;
        rig.preferences.setFpsOption(RecordFPS::fps60);
        rig.preferences.setOutputDir(QDir::homePath() + u"/Desktop"_s);
        QCOMPARE(rig.saved(), QJsonObject());
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
        const RecorderPreferences &p = rig.preferences;
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
        Rig rig({{key(u"misTouchIntervalMinutes"_s), stored}});
        QTEST(rig.preferences.misTouchIntervalMinutes(), "minutes");
        rig.preferences.setMisTouchIntervalMinutes(stored);
        QTEST(rig.preferences.misTouchIntervalMinutes(), "minutes");
    }
};

QTEST_GUILESS_MAIN(RecorderPreferencesTest)
#include "RecorderPreferencesTest.moc"
