#include "MediaTools.h"
#include "platform/linux/media/sound/PulseOtherSound.h"
#include "support/FakeMedia.h"
#include "support/Test.h"

#include <QProcess>

#include <unistd.h>

namespace {

// A program that plays silence; as this one, if it says so.
std::unique_ptr<QProcess> player(const QStringList &options = {})
{
    auto playing = std::make_unique<QProcess>();
    playing->setStandardInputFile(u"/dev/zero"_s);
    playing->start(u"pacat"_s, options);
    return playing;
}

} // namespace

class OtherSoundTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsTheContract_data() { fakeAndReal(); }
    void keepsTheContract()
    {
        QFETCH(bool, isReal);
        PulseOtherSound real;
        FakeOtherSound fake;
        OtherSound &sound = isReal ? static_cast<OtherSound &>(real) : fake;
        int calls = 0;
        Observation observation = sound.observe([&calls] { ++calls; });
        QVERIFY(!sound.isHeard());
        fake.play(true);
        const auto playing = isReal ? player() : nullptr;
        QTRY_VERIFY(sound.isHeard());
        QCOMPARE(calls, 1);
        observation.reset();
        QVERIFY(!sound.isHeard());
        observation = sound.observe([&calls] { ++calls; });
        QTRY_VERIFY(sound.isHeard());
        fake.play(false);
        if (isReal)
            playing->kill();
        QTRY_VERIFY(!sound.isHeard());
    }

    void ownSoundAndThatOfEventsDoNotCount()
    {
        const QString own = u"--property=application.process.id=%1"_s.arg(::getpid());
        for (const QString &option : {own, u"--property=media.role=event"_s, u"--volume=0"_s}) {
            PulseOtherSound real;
            const Observation observation = real.observe([] {});
            const auto quiet = player({option});
            QTRY_VERIFY(!shell(u"pactl list short sink-inputs"_s).isEmpty());
            QTest::qWait(200);
            QVERIFY2(!real.isHeard(), qUtf8Printable(option));
            const auto loud = player();
            QTRY_VERIFY(real.isHeard());
            loud->kill();
            quiet->kill();
            loud->waitForFinished();
            quiet->waitForFinished();
        }
    }
};

QTEST_GUILESS_MAIN(OtherSoundTest)
#include "OtherSoundTest.moc"
