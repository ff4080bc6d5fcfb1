#include "capture/RecorderDevices.h"

#include "support/FakePlatform.h"

namespace {

AudioDeviceItem device(const QString &id, bool isDefault = false)
{
    return {id, u"名称 "_s + id, isDefault};
}

struct Rig : ServicesRig {
    Rig()
    {
        host.audioDevices.speakersAnswer = QList<AudioDeviceItem>{device(u"a"_s, true), device(u"b"_s)};
        devices.refreshAudioDevices();
        settle();
    }
    ScreenRecorderController &recorder = make().recorder;
    RecorderDevices &devices = recorder.devices();
    QString lastLine() { return recorder.log().logLines().last(); }
};

} // namespace

class RecorderDevicesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsAndFollowsDevices()
    {
        Rig rig;
        QCOMPARE(rig.lastLine(), u"扬声器 2 个 / 麦克风 1 个"_s);
        rig.host.audioDevices.microphonesAnswer = QList<AudioDeviceItem>{};
        rig.host.audioDevices.changed();
        settle();
        QCOMPARE(rig.lastLine(), u"扬声器 2 个 / 麦克风 0 个"_s);
    }

    void anOvertakenAnswerWaitsForTheOneThatCounts()
    {
        // In order, and the later one first.
        for (const auto &[first, second] : {std::pair(10ms, 20ms), {20ms, 5ms}}) {
            Rig rig;
            QList delays{first, second};
            rig.host.audioDevices.wait = [&]() -> QCoro::Task<> {
                co_await Pause(rig.clock, delays.takeFirst());
            };
            int ended = 0;
            const auto ask = [&]() -> QCoro::Task<> {
                co_await rig.devices.refreshAudioDevices();
                ++ended;
            };
            ask();
            rig.host.audioDevices.speakersAnswer = failure(u"声音服务没有了"_s);
            ask();
            rig.clock.advance(std::min(first, second));
            QCOMPARE(ended, first < second ? 0 : 1);
            rig.clock.advance(1s);
            QTRY_COMPARE(ended, 2);
            QCOMPARE(rig.devices.problem(), u"声音服务没有了"_s);
        }
    }

    void selectingASpeakerSwitchesTheSystem()
    {
        Rig rig;
        rig.devices.selectSpeaker(u"b"_s);
        settle();
        QVERIFY(rig.host.audioDevices.calls.contains(u"setDefaultSpeaker b"_s));
        QCOMPARE(rig.recorder.log().logLines().last(2),
                 (QStringList{u"已选择扬声器:名称 b"_s, u"✅ 已将系统默认输出切换为:名称 b"_s}));
        rig.host.audioDevices.setDefaultAnswer = failure(u"拒绝"_s);
        rig.devices.selectSpeaker(u"a"_s);
        settle();
        QCOMPARE(rig.lastLine(), u"❌ 切换系统默认输出失败:拒绝"_s);
    }

    void microphoneForTheStream()
    {
        Rig rig;
        const QString otherwise = u"，使用系统默认麦克风"_s;
        const std::pair<QString, CaptureMicrophone> rows[] = {
            {{}, {}},
            {u"mic"_s, {u"mic"_s}},
            {u"in-42"_s, {{}, u"所选麦克风不能用于录制"_s + otherwise + u"：Microphone"_s}},
            {u"gone"_s, {{}, u"所选麦克风不在"_s + otherwise + u"：Microphone"_s}}};
        for (const auto &[id, microphone] : rows) {
            rig.devices.selectMicrophone(id);
            QCOMPARE(rig.devices.microphoneForCapture(), microphone);
        }
        rig.host.audioDevices.microphonesAnswer = QList<AudioDeviceItem>{};
        rig.host.audioDevices.changed();
        settle();
        QCOMPARE(rig.devices.microphoneForCapture().problem, u"所选麦克风不在"_s + otherwise);
        rig.host.audioDevices.speakersAnswer = failure(u"声音服务没有了"_s);
        rig.host.audioDevices.changed();
        settle();
        QCOMPARE(rig.devices.microphoneForCapture(), CaptureMicrophone{u"gone"_s});
    }
};

QTEST_GUILESS_MAIN(RecorderDevicesTest)
#include "RecorderDevicesTest.moc"
