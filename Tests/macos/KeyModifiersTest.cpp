#include "platform/macos/input/KeyModifiers.h"

#include "platform/macos/media/FourCharCode.h"
#include "support/Test.h"

static_assert(fourCharCode("VBHK") == 0x5642484B);

class KeyModifiersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mapsFlagsToTheMask_data()
    {
        QTest::addColumn<quint64>("flags");
        QTest::addColumn<quint32>("mask");
        QTest::newRow("none") << quint64(0) << 0u;
        QTest::newRow("command") << quint64(0x100000) << 0x0100u;
        QTest::newRow("shift") << quint64(0x20000) << 0x0200u;
        QTest::newRow("option") << quint64(0x80000) << 0x0800u;
        QTest::newRow("control") << quint64(0x40000) << 0x1000u;
        QTest::newRow("control option") << quint64(0xC0000) << 0x1800u;
        // Caps Lock, keypad, function and the left/right bits.
        QTest::newRow("no shortcut keys") << quint64(0xA1012F) << 0u;
        QTest::newRow("left control with Caps Lock") << quint64(0x50001) << 0x1000u;
    }
    void mapsFlagsToTheMask()
    {
        QFETCH(quint64, flags);
        QTEST(carbonModifiers(flags), "mask");
    }
};

QTEST_GUILESS_MAIN(KeyModifiersTest)
#include "KeyModifiersTest.moc"
