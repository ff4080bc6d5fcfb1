#include "platform/linux/media/sound/PulseAudioDevices.h"
#include "MediaTools.h"
#include "support/FakeMedia.h"
#include "support/Test.h"

#include <QCoroTask>

class PulseAudioDevicesTest : public QObject {
    Q_OBJECT

    static QByteArray pactl(const QStringList &arguments) { return output(u"pactl"_s, arguments).trimmed(); }
    static QStringList described(const Result<QList<AudioDeviceItem>> &devices)
    {
        QStringList list;
        for (const AudioDeviceItem &device : devices.value_or(QList<AudioDeviceItem>()))
            list.append(u"%1 %2%3"_s.arg(device.id, device.name, device.isDefault ? u" *"_s : u""_s));
        list.sort();
        return devices ? list : QStringList{devices.error().message};
    }
    static QStringList speakersOf(AudioDevices &devices)
    {
        return described(QCoro::waitFor(devices.speakers()));
    }
    static QStringList microphonesOf(AudioDevices &devices)
    {
        return described(QCoro::waitFor(devices.microphones()));
    }

private Q_SLOTS:
    void listsDevices()
    {
        PulseAudioDevices devices;
        QCOMPARE(speakersOf(devices), (QStringList{u"mic Mic"_s, u"speaker Speaker *"_s}));
        QCOMPARE(microphonesOf(devices), QStringList{u"microphone Microphone *"_s}); // no monitors
    }

    // What the fake promises to others has to hold for the real one.
    void theDefaultMarkMoves_data() { fakeAndReal(); }
    void theDefaultMarkMoves()
    {
        QFETCH(bool, isReal);
        PulseAudioDevices real;
        FakeAudioDevices fake;
        fake.speakersAnswer =
            QList<AudioDeviceItem>{{u"mic"_s, u"Mic"_s, false}, {u"speaker"_s, u"Speaker"_s, true}};
        AudioDevices &devices = isReal ? static_cast<AudioDevices &>(real) : fake;
        const QStringList before = microphonesOf(devices);
        QVERIFY(QCoro::waitFor(devices.setDefaultSpeaker(u"mic"_s)));
        QCOMPARE(speakersOf(devices), (QStringList{u"mic Mic *"_s, u"speaker Speaker"_s}));
        QVERIFY(!isReal || pactl({u"get-default-sink"_s}) == "mic");
        QVERIFY(QCoro::waitFor(devices.setDefaultSpeaker(u"speaker"_s)));
        QCOMPARE(errorText(QCoro::waitFor(devices.setDefaultSpeaker(u"nowhere"_s))),
                 u"声音服务器里没有这个扬声器"_s);
        QCOMPARE(speakersOf(devices), (QStringList{u"mic Mic"_s, u"speaker Speaker *"_s}));
        QCOMPARE(microphonesOf(devices), before);
    }

    void tellsAboutChanges()
    {
        PulseAudioDevices devices;
        int changes = 0;
        const Observation observation = devices.observeChanges([&] { ++changes; });
        QStringList modules;
        QVERIFY(waitFor([&] {
            if (changes == 0) // until the connection is up nothing is heard
                modules.append(QString::fromLatin1(
                    pactl({u"load-module"_s, u"module-null-sink"_s, u"sink_name=third"_s})));
            return changes > 0;
        }));
        QVERIFY(speakersOf(devices).join(u' ').contains(u"third"_s));
        changes = 0;
        pactl({u"set-default-sink"_s, u"third"_s});
        QTRY_VERIFY(changes > 0);
        changes = 0;
        for (const QString &module : std::as_const(modules))
            pactl({u"unload-module"_s, module});
        QTRY_VERIFY(changes > 0);
        QTRY_VERIFY(!speakersOf(devices).join(u' ').contains(u"third"_s));
    }

    void aMissingServerIsToldOnceAndFoundAgain()
    {
        qputenv("PULSE_SERVER", "unix:/nonexistent/native");
        PulseAudioDevices devices;
        int changes = 0;
        // As the recorder does: every change is looked at, every look may fail.
        const Observation observation = devices.observeChanges([&] {
            ++changes;
            devices.speakers();
        });
        QTRY_COMPARE(changes, 1);
        const QStringList none{u"无法连接声音服务器（PulseAudio）：Connection refused"_s};
        for (int i = 0; i < 20; ++i)
            QCOMPARE(speakersOf(devices), none);
        QCOMPARE(microphonesOf(devices), none);
        QCOMPARE(errorText(QCoro::waitFor(devices.setDefaultSpeaker(u"mic"_s))), none.first());
        QCOMPARE(changes, 1);
        qunsetenv("PULSE_SERVER");
        QVERIFY(!speakersOf(devices).contains(none.first()));
    }

    void mayDieAtAnyTime()
    {
        auto devices = std::make_unique<PulseAudioDevices>();
        const Observation observation = devices->observeChanges([] { QFAIL("called after its death"); });
        pactl({u"set-default-sink"_s, u"mic"_s});
        auto pending = devices->microphones();
        devices.reset();
        QCoreApplication::processEvents();
        pactl({u"set-default-sink"_s, u"speaker"_s});
        QVERIFY(QCoro::waitFor(pending));
    }
};

QTEST_GUILESS_MAIN(PulseAudioDevicesTest)
#include "PulseAudioDevicesTest.moc"
