#include "capture/RecorderPreferences.h"

#include "capture/RecordingFile.h"
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
            {key(u"mode"_s), u"窗口录制"_s},          {key(u"fps"_s), 120},
            {key(u"quality"_s), u"二分之一"_s},       {key(u"outputDir"_s), u"/a"_s},
            {key(u"recordSystemAudio"_s), false},     {key(u"recordMicrophone"_s), true},
            {key(u"ignoreSelfWindows"_s), true},      {key(u"speakerID"_s), u"spk"_s},
            {key(u"microphoneID"_s), u"mic"_s},       {key(u"misTouchProtectionEnabled"_s), false},
            {key(u"misTouchIntervalMinutes"_s), 45.5}};
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
        QCOMPARE(written.saved(), stored);
    }

    void badValuesCountAsAbsent()
    {
        const std::initializer_list<QJsonObject> bad = {
            {{key(u"mode"_s), u"x"_s}, {key(u"quality"_s), u"4k"_s}, {key(u"fps"_s), 61}},
            {{key(u"fps"_s), u"60"_s},
             {key(u"recordSystemAudio"_s), 0},
             {key(u"outputDir"_s), QJsonObject{}}},
            {{key(u"outputDir"_s), u"Movies"_s}}};
        for (const QJsonObject &stored : bad) {
            Rig rig(stored);
            RecorderPreferences &p = rig.preferences;
            QCOMPARE(p.recordMode(), RecordMode::fullScreen);
            QCOMPARE(p.fpsOption(), RecordFPS::fps60);
            QCOMPARE(p.qualityOption(), RecordQuality::original);
            QVERIFY(p.recordSystemAudio());
            QCOMPARE(p.outputDir(), desktopFolder());
            p.setOutputDir(p.outputDir()); // no change is not stored
            QCOMPARE(rig.saved(), stored);
        }
    }

    void theIntervalKeepsItsBounds()
    {
        for (const auto &[stored, minutes] : {std::pair(0.5, 1.0), {200.0, 120.0}, {2.5, 2.5}}) {
            Rig rig({{key(u"misTouchIntervalMinutes"_s), stored}});
            QCOMPARE(rig.preferences.misTouchIntervalMinutes(), minutes);
            rig.preferences.setMisTouchIntervalMinutes(stored);
            QCOMPARE(rig.preferences.misTouchIntervalMinutes(), minutes);
        }
    }
};

QTEST_GUILESS_MAIN(RecorderPreferencesTest)
#include "RecorderPreferencesTest.moc"
