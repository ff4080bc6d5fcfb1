#include "foundation/ByteCount.h"
#include "support/Test.h"

class ByteCountTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void formats_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << qint64(0) << u"零 KB"_s;
        QTest::newRow("one") << qint64(1) << u"1 字节"_s;
        QTest::newRow("below KB") << qint64(999) << u"999 字节"_s;
        QTest::newRow("KB") << qint64(1000) << u"1 KB"_s;
        QTest::newRow("KB has no decimals") << qint64(1499) << u"1 KB"_s;
        QTest::newRow("rounds into MB") << qint64(999'600) << u"1 MB"_s;
        QTest::newRow("MB, one decimal") << qint64(1'550'000) << u"1.6 MB"_s;
        QTest::newRow("no trailing zero") << qint64(12'000'000) << u"12 MB"_s;
        QTest::newRow("hundreds keep their zeros") << qint64(300'000'000) << u"300 MB"_s;
        QTest::newRow("rounds into GB") << qint64(999'960'000) << u"1 GB"_s;
        QTest::newRow("GB, two decimals") << qint64(1'256'000'000) << u"1.26 GB"_s;
        QTest::newRow("TB") << qint64(2'500'000'000'000) << u"2.5 TB"_s;
        QTest::newRow("largest") << std::numeric_limits<qint64>::max() << u"9.22 EB"_s;
        QTest::newRow("negative") << qint64(-2'000'000) << u"-2 MB"_s;
    }
    void formats()
    {
        QFETCH(qint64, bytes);
        QTEST(formatByteCount(bytes), "text");
    }
};

QTEST_GUILESS_MAIN(ByteCountTest)
#include "ByteCountTest.moc"
