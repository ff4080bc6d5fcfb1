#include "ArchiveTools.h"
#include "platform/linux/archive/ZipFile.h"
#include "support/Fuzz.h"
#include "support/Test.h"

#include <QRegularExpression>

#include <libdeflate.h>
#include <sys/stat.h>

namespace {

struct Part {
    ZipEntry entry;
    QByteArray content;
};

Part part(const QByteArray &name, const QByteArray &content = "x", std::uint32_t mode = S_IFREG | 0644)
{
    Part made{.entry = {.name = name}, .content = content};
    made.entry.mode = mode;
    made.entry.size = made.entry.packedSize = static_cast<std::uint64_t>(content.size());
    made.entry.crc = ::libdeflate_crc32(0, content.constData(), static_cast<std::size_t>(content.size()));
    return made;
}

QByteArray archiveOf(const QList<Part> &parts)
{
    QByteArray bytes;
    QByteArray records;
    for (Part item : parts) {
        item.entry.offset = static_cast<std::uint64_t>(bytes.size());
        bytes += localHeader(item.entry, false) + item.content;
        records += centralRecord(item.entry);
    }
    return bytes + records +
           endRecords(static_cast<std::uint64_t>(parts.size()), static_cast<std::uint64_t>(bytes.size()),
                      static_cast<std::uint64_t>(records.size()));
}

std::span<const std::uint8_t> bytesOf(const QByteArray &bytes)
{
    return {reinterpret_cast<const std::uint8_t *>(bytes.constData()),
            static_cast<std::size_t>(bytes.size())};
}

} // namespace

class ZipReadingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesNumbersOf64Bits()
    {
        ZipEntry entry = part("large").entry;
        entry.size = 5'000'000'000;
        entry.packedSize = 4'500'000'000;
        entry.offset = 6'000'000'000;
        entry.time = 981173107;
        const QByteArray record = centralRecord(entry);
        RecordReader reader(bytesOf(record));
        const auto read = readCentralRecord(reader);
        QVERIFY(read && reader.left() == 0);
        QVERIFY(read->size == entry.size && read->packedSize == entry.packedSize);
        QVERIFY(read->offset == entry.offset && read->time == entry.time);
        const QByteArray header = localHeader(entry, true);
        RecordReader headerReader(bytesOf(header));
        const auto local = readLocalRecord(headerReader);
        QVERIFY(local && local->length == static_cast<std::size_t>(header.size()));
        QVERIFY(local->entry.size == entry.size && local->entry.packedSize == entry.packedSize);
    }

    void noticesDamage()
    {
        ArchiveRig rig;
        rig.in(u"mkdir s; seq 3000 > s/text; head -c 500 /dev/urandom > s/random; ln -s text s/link"_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s).exitStatus, 0);
        const QByteArray whole = readFile(rig.path(u"a.zip"_s));
        ZipFile archive;
        QVERIFY(archive.open(rig.path(u"a.zip"_s)));
        QByteArray isData(whole.size(), '\0');
        for (const ZipEntry &entry : archive.entries()) {
            const auto offset = static_cast<qsizetype>(*archive.dataOffset(entry));
            isData.replace(offset, static_cast<qsizetype>(entry.packedSize),
                           QByteArray(static_cast<qsizetype>(entry.packedSize), '\1'));
        }
        QFile damaged(rig.path(u"a.zip"_s));
        QVERIFY(damaged.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
        const auto put = [&](qsizetype place, int mask) {
            const char byte = static_cast<char>(whole[place] ^ mask);
            return damaged.seek(place) && damaged.write(&byte, 1) == 1;
        };
        qsizetype unnoticed = 0; // in times, modes and the like
        for (qsizetype i = 0; i < whole.size(); i += isData[i] ? 7 : 1) {
            QVERIFY(put(i, 0x40));
            const bool isNoticed = !rig.test(u"a.zip"_s).isEmpty();
            QVERIFY2(isNoticed || !isData[i], qPrintable(QString::number(i)));
            unnoticed += isNoticed ? 0 : 1;
            QVERIFY(put(i, 0));
        }
        QVERIFY2(unnoticed < 230, qPrintable(QString::number(unnoticed)));
        for (qsizetype size = whole.size() - 1; size >= 0; size -= size > 100 ? 97 : 1) {
            QVERIFY(damaged.resize(size));
            const QString problem = rig.test(u"a.zip"_s);
            QVERIFY2(problem.startsWith(u"归档已损坏："_s), qPrintable(problem));
        }
    }

    void unpacksWhatOthersMade_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("zip") << u"zip -q -r -y a.zip s"_s;
        QTest::newRow("zip, stored") << u"zip -q -r -y -0 a.zip s"_s;
        QTest::newRow("zip, to a pipe")
            << u"rm s/link; touch -d '2001-02-03 04:05:07' s; zip -q -r - s | cat > a.zip"_s;
        QTest::newRow("bsdtar") << u"bsdtar --format zip -cf a.zip s"_s;
    }
    void unpacksWhatOthersMade()
    {
        QFETCH(QString, command);
        ArchiveRig rig;
        rig.in(u"mkdir -p out s/空; seq 3000 > s/中文; ln -s 中文 s/link; chmod 750 s/中文; "
               "touch -h -d '2001-02-03 04:05:07' s/中文 s/link s/空 s; "_s +
               command);
        QCOMPARE(rig.test(u"a.zip"_s), QString());
        QCOMPARE(rig.extract(u"a.zip"_s, u"out"_s), QString());
        QCOMPARE(rig.tree(u"out/s"_s), rig.tree(u"s"_s));
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("archive");
        QTest::addColumn<QString>("words");
        const auto hostile = [](const char *row, const QList<Part> &parts, const QString &words) {
            QTest::newRow(row) << archiveOf(parts) << words;
        };
        const QString unsafe = u"归档中有不安全的路径"_s;
        hostile("up", {part("fine"), part("../evil")}, unsafe);
        hostile("up in the middle", {part("a/../../evil")}, unsafe);
        hostile("absolute", {part("/tmp/evil")}, unsafe);
        hostile("zero byte", {part(QByteArray("fine\0/../evil", 13))}, unsafe);
        hostile("through a link", {part("a", "..", S_IFLNK | 0777), part("a/evil")},
                u"无法写入“a”|“a”已经存在"_s);
        hostile("through a link, first", {part("a/evil"), part("a", "..", S_IFLNK | 0777)}, u"“a”已经存在"_s);
        hostile("twice", {part("a"), part("./a")}, u"归档中有两个“./a”"_s);
        hostile("below a file", {part("a"), part("a/b")}, u"无法写入“a/b”"_s);
        Part item = part("bomb");
        item.entry.size = std::uint64_t(1) << 60;
        item.entry.method = zip::deflated;
        hostile("bomb", {item}, u"磁盘空间不足：解压需要"_s);
        item = part("lies", "\x4b\x4c\x44\xa5\x3d\x00\x00");
        item.entry.size = 2;
        item.entry.method = zip::deflated;
        hostile("longer than it says", {item}, u"归档已损坏：“lies”"_s);
        item = part("method");
        item.entry.method = 12;
        hostile("method", {item}, u"“method”的压缩方法（12）不受支持"_s);
        item = part("secret");
        item.entry.flags = zip::encryptedFlag;
        hostile("encrypted", {item}, u"“secret”已加密"_s);
        QTest::newRow("backslashes")
            << archiveOf({part("..\\evil")}).replace(QByteArray("\x14\3\x14"), QByteArray("\x14\0\x14", 3))
            << unsafe;
    }
    void refuses()
    {
        QFETCH(QByteArray, archive);
        QFETCH(QString, words);
        ArchiveRig rig;
        rig.in(u"mkdir -p in/out"_s);
        writeFile(rig.path(u"in/a.zip"_s), archive);
        const QString problem = rig.extract(u"in/a.zip"_s, u"in/out"_s);
        QVERIFY2(QRegularExpression(words).match(problem).capturedStart() == 0, qPrintable(problem));
        QCOMPARE(rig.in(u"ls; ls in; find . -name evil ! -path './in/out/a/*'"_s),
                 "in\na.zip\nout"); // a real folder may have it
        QVERIFY(!QFileInfo::exists(u"/tmp/evil"_s));
    }

    void refusesOverlappingData()
    {
        ArchiveRig rig;
        Part first = part("a", "1234567890");
        ZipEntry second = part("b", "12").entry;
        second.offset = 35; // inside the first one's data
        const QByteArray data = localHeader(first.entry, false) + first.content;
        const QByteArray records = centralRecord(first.entry) + centralRecord(second);
        writeFile(rig.path(u"a.zip"_s), data + records +
                                            endRecords(2, static_cast<std::uint64_t>(data.size()),
                                                       static_cast<std::uint64_t>(records.size())));
        QCOMPARE(rig.test(u"a.zip"_s), u"归档已损坏：“a”的位置不对"_s);
    }

    void replacesNothing()
    {
        ArchiveRig rig;
        rig.in(
            u"mkdir -p s out/s; echo new > s/b; echo new > s/a; echo old > out/s/b; touch -d 2001-01-01 out/s"_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s).exitStatus, 0);
        const QByteArray before = rig.tree(u"out"_s);
        QCOMPARE(rig.extract(u"a.zip"_s, u"out"_s), u"“s/b”已经存在，没有替换"_s);
        QCOMPARE(rig.tree(u"out"_s), before);
        rig.in(u"rm -r out/s; mkdir elsewhere; ln -s ../elsewhere out/s"_s);
        QVERIFY(!rig.extract(u"a.zip"_s, u"out"_s).isEmpty());
        QCOMPARE(rig.in(u"ls elsewhere"_s), "");
    }

    void whateverTheBytesNothingLandsOutside()
    {
        ArchiveRig rig;
        rig.in(
            u"mkdir -p s/sub in around/in; seq 300 > s/text; seq 9 > s/sub/b; ln -s ../text s/sub/link; echo kept > around/kept"_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s).exitStatus, 0);
        const QByteArray around = rig.path(u"around"_s).toUtf8();
        const Fuzz fuzz{
            {readFile(rig.path(u"a.zip"_s)),
             archiveOf({part("a", "..", S_IFLNK | 0777), part("b/", {}, S_IFDIR | 0755), part("b/c")})},
            {"../", "/", "..", "a/", QByteArray(1, '\0'), around + "/evil", "PK\1\2", "PK\5\6"},
            800};
        int unpacked = 0;
        int round = 0;
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            writeFile(rig.path(u"a.zip"_s), bytes);
            const QString folder = u"around/in/%1"_s.arg(++round);
            QDir().mkpath(rig.path(folder));
            const QString problem = rig.extract(u"a.zip"_s, folder);
            unpacked += problem.isEmpty() ? 1 : 0;
            return true;
        }));
        QVERIFY2(unpacked > 20 && unpacked < round, qPrintable(QString::number(unpacked)));
        QCOMPARE(entriesOf(rig.path(u"around"_s)), (QStringList{u"in"_s, u"kept"_s}));
        QCOMPARE(entriesOf(rig.path(u"around/in"_s)).size(), round);
        QCOMPARE(readFile(rig.path(u"around/kept"_s)), "kept\n");
        rig.in(u"chmod -R u+rwx around; rm -rf around"_s); // Qt does not know every name
    }
};

QTEST_GUILESS_MAIN(ZipReadingTest)
#include "ZipReadingTest.moc"
