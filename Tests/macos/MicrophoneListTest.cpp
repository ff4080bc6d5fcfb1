#include "platform/macos/media/MicrophoneList.h"
#include "support/Test.h"

class MicrophoneListTest : public QObject {
    Q_OBJECT

    const QList<CaptureMicrophone> _captureDevices = {{u"BuiltIn"_s, u"MacBook 麦克风"_s},
                                                      {u"Phone"_s, u"iPhone 麦克风"_s}};
    const QList<SoundInput> _soundInputs = {{81, u"Loop"_s, u"虚拟声卡"_s},
                                            {70, u"BuiltIn"_s, u"Built-in Microphone"_s}};

private Q_SLOTS:
    void listsCaptureDevicesThenTheOtherInputs()
    {
        const QList<AudioDeviceItem> expected = {{u"BuiltIn"_s, u"MacBook 麦克风"_s, true},
                                                 {u"Phone"_s, u"iPhone 麦克风"_s, false},
                                                 {u"in-81"_s, u"虚拟声卡"_s, false}};
        QCOMPARE(microphoneList(_captureDevices, _soundInputs, u"BuiltIn"_s), expected);
    }

    void marksNothingWithoutADefault()
    {
        const QList<AudioDeviceItem> items = microphoneList({{QString(), u"无名"_s}}, {}, QString());
        QCOMPARE(items.size(), 1);
        QVERIFY(!items.first().isDefault);
    }

    void namesEveryInputWithoutCaptureDevices()
    {
        const QList<AudioDeviceItem> items = microphoneList({}, _soundInputs, u"BuiltIn"_s);
        QCOMPARE(items.size(), 2);
        QCOMPARE(items[0].id, u"in-81"_s);
        QCOMPARE(items[1].id, u"in-70"_s);
    }
};

QTEST_GUILESS_MAIN(MicrophoneListTest)
#include "MicrophoneListTest.moc"
