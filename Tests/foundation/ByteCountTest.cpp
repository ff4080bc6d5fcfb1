#include "foundation/Text.h"
#include "support/Test.h"

class ByteCountTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void formats()
    {
        // No decimals for KB, one for MB, two from GB on, and none that say nothing.
        const std::pair<qint64, QString> counts[] = {{0, u"零 KB"_s},
                                                     {1, u"1 字节"_s},
                                                     {999, u"999 字节"_s},
                                                     {1000, u"1 KB"_s},
                                                     {1499, u"1 KB"_s},
                                                     {999'600, u"1 MB"_s},
                                                     {1'550'000, u"1.6 MB"_s},
                                                     {12'000'000, u"12 MB"_s},
                                                     {300'000'000, u"300 MB"_s},
                                                     {999'960'000, u"1 GB"_s},
                                                     {1'256'000'000, u"1.26 GB"_s},
                                                     {2'500'000'000'000, u"2.5 TB"_s},
                                                     {std::numeric_limits<qint64>::max(), u"9.22 EB"_s},
                                                     {-2'000'000, u"-2 MB"_s}};
        for (const auto &[bytes, text] : counts)
            QCOMPARE(formatByteCount(bytes), text);
    }
};

QTEST_GUILESS_MAIN(ByteCountTest)
#include "ByteCountTest.moc"
