#include "platform/linux/media/mp4/Mp4Repair.h"
#include "LiveMovie.h"
#include "MediaTools.h"
#include "support/Fuzz.h"
#include "support/Test.h"

#include <random>

class Mp4RepairTest : public QObject {
    Q_OBJECT

    QTemporaryDir _folder;
    QByteArray _live; // a recording that was killed
    qsizetype _firstFragment = 0;
    qsizetype _secondFragment = 0;

    QString path(const QString &name) const { return _folder.filePath(name); }

private Q_SLOTS:
    void initTestCase()
    {
        const QString file = path(u"live.mp4"_s);
        LiveMovie movie(file);
        movie.record(4);
        _live = readFile(file);
        _firstFragment = _live.indexOf("moof") - 4;
        _secondFragment = _live.indexOf("moof", _firstFragment + 8) - 4;
        QVERIFY(_firstFragment > 0 && _secondFragment > _firstFragment);
    }

    void makesAnOrdinaryMovie()
    {
        const QString file = path(u"whole.mp4"_s);
        writeFile(file, _live);
        const QByteArray shown = pictures(file);
        const QByteArray heard = sound(file);
        QCOMPARE(errorText(repairMovie(file)), QString());
        QByteArray errors;
        QCOMPARE(pictures(file, &errors), shown);
        QCOMPARE(errors, QByteArray());
        QCOMPARE(sound(file), heard);
        QVERIFY(!readFile(file).contains("free"));

        const QByteArray finished = readFile(file);
        QVERIFY(repairMovie(file));
        QCOMPARE(readFile(file), finished);
    }

    // Cut at every kind of place: what is complete plays, nothing else changes.
    void dropsWhatIsTorn()
    {
        const QString file = path(u"torn.mp4"_s);
        std::mt19937 random(7);
        for (int i = 0; i < 60; ++i) {
            const qsizetype moof =
                _secondFragment + (i % 3 == 0 ? static_cast<qsizetype>(random() % 600) : 0);
            const qsizetype anywhere =
                _secondFragment + static_cast<qsizetype>(random() % size_t(_live.size() - _secondFragment));
            const qsizetype cut = i % 3 == 0 ? moof : anywhere;
            writeFile(file, _live.first(cut));
            const QString problem = errorText(repairMovie(file));
            QVERIFY2(problem.isEmpty(), qPrintable(u"%1: %2"_s.arg(cut).arg(problem)));
            QCOMPARE(readFile(file).mid(_firstFragment, cut - _firstFragment),
                     _live.mid(_firstFragment, cut - _firstFragment));
            if (i % 6 != 0)
                continue;
            QByteArray errors;
            QVERIFY(pictures(file, &errors).count('\n') > 25);
            QCOMPARE(errors, QByteArray());
        }
    }

    // Power cuts while repairing: with the header half written, and with the
    // gap patched before the header reached the disk.
    void repairsAgainAfterAHalfRepair()
    {
        const QString file = path(u"half.mp4"_s);
        writeFile(file, _live);
        const QByteArray shown = pictures(file);
        QVERIFY(repairMovie(file));
        const QByteArray finished = readFile(file);
        const qsizetype gap = finished.indexOf("mdat") - 4;

        QByteArray unpatched = finished;
        unpatched.replace(gap, 16, _live.mid(gap, 16));
        const QByteArrayList states{unpatched, unpatched.chopped(100), finished.chopped(100),
                                    finished.first(_live.size())};
        for (const QByteArray &state : states) {
            writeFile(file, state);
            QVERIFY(repairMovie(file));
            QCOMPARE(pictures(file), shown);
        }
    }

    void refuses()
    {
        const QString file = path(u"refused.mp4"_s);
        const std::initializer_list<std::pair<QByteArray, QString>> refused{
            {"", u"这不是录制的视频文件"_s},
            {"not a movie at all, but long enough for a box", u"这不是录制的视频文件"_s},
            {_live.first(_firstFragment - 10), u"录制文件的开头已损坏，无法修复"_s},
            {_live.first(_firstFragment), u"录制文件里没有可恢复的画面"_s},
            {_live.first(_secondFragment - 1), u"录制文件里没有可恢复的画面"_s}};
        for (const auto &[bytes, reason] : refused) {
            writeFile(file, bytes);
            QCOMPARE(errorText(repairMovie(file)), reason);
            QCOMPARE(readFile(file), bytes);
        }
        QVERIFY(!repairMovie(path(u"missing.mp4"_s)));
        QVERIFY(!repairMovie(_folder.path()));
    }

    // Whatever is in the file: an answer, and nothing of the media changes.
    void survivesDamage()
    {
        const QString file = path(u"fuzzed.mp4"_s);
        // The shortest that can be repaired, and mostly its header alone.
        const QByteArray header = _live.first(_firstFragment + 1500);
        const Fuzz fuzz{{header, header, header, _live.first(_secondFragment + 8)},
                        {"moov", "trak", "moof", "traf", "trun", "mdat", "free", "stsd", "avcC"},
                        600};
        constexpr qsizetype patch = 16; // the box that hides the fragments' headers
        int repairs = 0;
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            writeFile(file, bytes);
            const bool isRepaired = repairMovie(file).has_value();
            repairs += isRepaired ? 1 : 0;
            const QByteArray after = readFile(file);
            if (after == bytes || (isRepaired && after.startsWith(bytes)))
                return true;
            const auto patched = std::ranges::mismatch(bytes, after).in1 - bytes.begin();
            return isRepaired && after.sliced(patched + patch).startsWith(bytes.sliced(patched + patch));
        }));
        QVERIFY2(repairs > 20 && repairs < fuzz.rounds, qPrintable(QString::number(repairs)));
    }
};

QTEST_GUILESS_MAIN(Mp4RepairTest)
#include "Mp4RepairTest.moc"
