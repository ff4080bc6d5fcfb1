#include "platform/linux/x11/TextProperty.h"

#include "support/Fuzz.h"
#include "support/Test.h"

class TextPropertyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void decodes_data()
    {
        QTest::addColumn<int>("encoding");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, TextEncoding encoding, const QByteArray &bytes,
                            const QString &text) {
            QTest::newRow(name) << static_cast<int>(encoding) << bytes << text;
        };
        row("utf-8", TextEncoding::utf8, QByteArray("\xe5\xbd\x95\xe5\xb1\x8f"), u"录屏"_s);
        row("final zero", TextEncoding::utf8, QByteArray("a\0", 2), u"a"_s);
        row("latin-1", TextEncoding::latin1, QByteArray("caf\xe9"), u"café"_s);
        row("compound, plain", TextEncoding::compound, QByteArray("caf\xe9"), u"café"_s);
        row("compound, utf-8 part", TextEncoding::compound, QByteArray("a\x1b%G\xe5\xbd\x95\x1b%@b"),
            u"a录b"_s);
        row("compound, latin-1 named", TextEncoding::compound, QByteArray("\x1b-A\xe9"), u"é"_s);
        row("compound, simplified Chinese left", TextEncoding::compound,
            QByteArray("\x1b$(A\x44\x5a\x1b(B x"), u"内 x"_s);
        row("compound, simplified Chinese right", TextEncoding::compound, QByteArray("a\x1b$)A\xc4\xda"),
            u"a内"_s);
        row("compound, Japanese", TextEncoding::compound, QByteArray("\x1b$(B\x46\x7c\x1b(B"), u"日"_s);
        row("compound, unknown set", TextEncoding::compound, QByteArray("a\x1b$(Zxy\x1b(Bb"), u"a\ufffdb"_s);
        row("compound, foreign part", TextEncoding::compound,
            QByteArray("a\x1b%/1\x80\x87"
                       "big5\x02xx"
                       "b"),
            u"a\ufffdb"_s);
        row("compound, cut off", TextEncoding::compound, QByteArray("a\x1b%/1\x80"), u"a"_s);
    }
    void decodes()
    {
        QFETCH(int, encoding);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        QCOMPARE(decodeText(bytes, static_cast<TextEncoding>(encoding)), text);
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
