#include "platform/linux/media/sound/PulseAudioDevices.h"
#include "MediaTools.h"
#include "support/FakeMedia.h"
#include "support/Test.h"

class PulseAudioDevicesTest : public QObject {
    Q_OBJECT

    static QByteArray pactl(const QString &arguments) { return shell(u"pactl "_s + arguments); }
    static QStringList described(auto asking)
    {
        const Result<QList<AudioDeviceItem>> devices = QCoro::waitFor(std::move(asking));
        QStringList list;
        for (const AudioDeviceItem &device : devices.value_or(QList<AudioDeviceItem>()))
            list.append(u"%1 %2%3"_s.arg(device.id, device.name, device.isDefault ? u" *"_s : u""_s));
        list.sort();
        return devices ? list : QStringList{devices.error().message};
    }

private Q_SLOTS:
    void listsDevices()
    {
        PulseAudioDevices devices;
        QCOMPARE(described(devices.speakers()), (QStringList{u"mic Mic"_s, u"speaker Speaker *"_s}));
        QCOMPARE(described(devices.microphones()), QStringList{u"microphone Microphone *"_s}); // no monitors
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
        const QStringList before = described(devices.microphones());
        QVERIFY(QCoro::waitFor(devices.setDefaultSpeaker(u"mic"_s)));
        QCOMPARE(described(devices.speakers()), (QStringList{u"mic Mic *"_s, u"speaker Speaker"_s}));
        QVERIFY(!isReal || pactl(u"get-default-sink"_s) == "mic");
        QVERIFY(QCoro::waitFor(devices.setDefaultSpeaker(u"speaker"_s)));
        QCOMPARE(errorText(QCoro::waitFor(devices.setDefaultSpeaker(u"nowhere"_s))),
                 u"声音服务器里没有这个扬声器"_s);
        QCOMPARE(described(devices.speakers()), (QStringList{u"mic Mic"_s, u"speaker Speaker *"_s}));
        QCOMPARE(described(devices.microphones()), before);
    }

    void tellsAboutChanges()
    {
        PulseAudioDevices devices;
        int changes = 0;
        const Observation observation = devices.observeChanges([&] { ++changes; });
        QStringList modules;
        QVERIFY(waitFor([&] {
            if (changes == 0) // until the connection is up nothing is heard
                modules.append(QString::fromLatin1(pactl(u"load-module module-null-sink sink_name=third"_s)));
            return changes > 0;
        }));
        QVERIFY(described(devices.speakers()).join(u' ').contains(u"third"_s));
        changes = 0;
        pactl(u"set-default-sink third"_s);
        QTRY_VERIFY(changes > 0);
        changes = 0;
        for (const QString &module : std::as_const(modules))
            pactl(u"unload-module "_s + module);
        QTRY_VERIFY(changes > 0);
        QTRY_VERIFY(!described(devices.speakers()).join(u' ').contains(u"third"_s));
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
            QCOMPARE(described(devices.speakers()), none);
        QCOMPARE(described(devices.microphones()), none);
        QCOMPARE(errorText(QCoro::waitFor(devices.setDefaultSpeaker(u"mic"_s))), none.first());
        QCOMPARE(changes, 1);
        qunsetenv("PULSE_SERVER");
        QVERIFY(!described(devices.speakers()).contains(none.first()));
    }

    void mayDieAtAnyTime()
    {
        auto devices = std::make_unique<PulseAudioDevices>();
        const Observation observation = devices->observeChanges([] { QFAIL("called after its death"); });
        pactl(u"set-default-sink mic"_s);
        auto pending = devices->microphones();
        devices.reset();
        QCoreApplication::processEvents();
        pactl(u"set-default-sink speaker"_s);
        QVERIFY(QCoro::waitFor(pending));
    }
};

QTEST_GUILESS_MAIN(PulseAudioDevicesTest)
#include "PulseAudioDevicesTest.moc"
