#include "platform/linux/x11/TextProperty.h"

#include "support/Fuzz.h"
#include "support/Test.h"

class TextPropertyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void decodes()
    {
        QCOMPARE(decodeText("\xe5\xbd\x95\xe5\xb1\x8f", TextEncoding::utf8), u"录屏"_s);
        QCOMPARE(decodeText(QByteArray("a\0", 2), TextEncoding::utf8), u"a"_s);
        QCOMPARE(decodeText("caf\xe9", TextEncoding::latin1), u"café"_s);
    }
    void decodesCompoundText()
    {
        const auto decoded = [](const QByteArray &bytes) {
            return decodeText(bytes, TextEncoding::compound);
        };
        QCOMPARE(decoded("caf\xe9"), u"café"_s);
        QCOMPARE(decoded("a\x1b%G\xe5\xbd\x95\x1b%@b"), u"a录b"_s);
        QCOMPARE(decoded("\x1b-A\xe9"), u"é"_s);
        QCOMPARE(decoded("\x1b$(A\x44\x5a\x1b(B x"), u"内 x"_s);
        QCOMPARE(decoded("a\x1b$)A\xc4\xda"), u"a内"_s);
        QCOMPARE(decoded("\x1b$(B\x46\x7c\x1b(B"), u"日"_s);
        QCOMPARE(decoded("a\x1b$(Zxy\x1b(Bb"), u"a\ufffdb"_s);
        QCOMPARE(decoded("a\x1b%/1\x80\x87"
                         "big5\x02xx"
                         "b"),
                 u"a\ufffdb"_s);
        QCOMPARE(decoded("a\x1b%/1\x80"), u"a"_s); // cut off
    }

    void anyBytesBecomeAText()
    {
        const Fuzz fuzz{{"caf\xe9 \x1b%G\xe5\xbd\x95\x1b%@b\x1b$(A\x44\x5a\x1b(B x",
                         "a\x1b$)A\xc4\xda\x1b-A\xe9\x1b$(B\x46\x7c\x1b(B",
                         "a\x1b%/1\x80\x87"
                         "big5\x02xxb"},
                        {"\x1b$(A", "\x1b$)A", "\x1b%G", "\x1b%@", "\x1b%/1\x80\x87", "\x1b(B", "\x9b"}};
        QVERIFY(fuzz.isSurvivedBy([](const QByteArray &bytes) {
            return decodeText(bytes, TextEncoding::compound).size() <= bytes.size() &&
                   decodeText(bytes, TextEncoding::utf8).size() <= bytes.size();
        }));
    }
};

QTEST_APPLESS_MAIN(TextPropertyTest)
#include "TextPropertyTest.moc"
