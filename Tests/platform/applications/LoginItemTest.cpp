#include "platform/linux/applications/XdgLoginItem.h"

#include "support/FakeLoginItem.h"
#include "support/Test.h"

#include <QProcess>
#include <QStandardPaths>

class LoginItemTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir _folder;
    QString _file = _folder.path() + u"/autostart/velbrix.desktop"_s;

private Q_SLOTS:
    void turnsOnAndOff_data()
    {
        QTest::addColumn<bool>("isReal");
        QTest::newRow("fake") << false;
        QTest::newRow("autostart") << true;
    }
    void turnsOnAndOff()
    {
        QFETCH(bool, isReal);
        FakeLoginItem fake;
        XdgLoginItem real(_file, u"/opt/velbrix"_s);
        LoginItem &item = isReal ? static_cast<LoginItem &>(real) : fake;
        QVERIFY(!item.isEnabled());
        QVERIFY(item.setEnabled(false));
        QVERIFY(item.setEnabled(true));
        QVERIFY(item.isEnabled());
        QVERIFY(item.setEnabled(false));
        QVERIFY(!item.isEnabled());
    }

    void writesAValidEntry_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QByteArray>("exec");
        QTest::newRow("plain") << u"/opt/velbrix"_s << QByteArray("Exec=\"/opt/velbrix\" --background\n");
        QTest::newRow("space and percent")
            << u"/opt/my 100% box"_s << QByteArray("Exec=\"/opt/my 100%% box\" --background\n");
        QTest::newRow("shell signs") << u"/opt/a\"b$c`d\\e"_s
                                     << QByteArray(
                                            "Exec=\"/opt/a\\\\\"b\\\\$c\\\\`d\\\\\\\\e\" --background\n");
    }
    void writesAValidEntry()
    {
        QFETCH(QString, program);
        QFETCH(QByteArray, exec);
        XdgLoginItem item(_file, program);
        QVERIFY(item.setEnabled(true));
        QVERIFY2(readFile(_file).contains('\n' + exec), readFile(_file).constData());
        if (QStandardPaths::findExecutable(u"desktop-file-validate"_s).isEmpty())
            QSKIP("desktop-file-validate is not installed");
        QCOMPARE(QProcess::execute(u"desktop-file-validate"_s, {_file}), 0);
    }

    void respectsWhatDesktopsWrite_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("plain") << QByteArray("[Desktop Entry]\nExec=/a\n") << true;
        QTest::newRow("hidden") << QByteArray("[Desktop Entry]\nExec=/a\nHidden=true\n") << false;
        QTest::newRow("not hidden") << QByteArray("[Desktop Entry]\nExec=/a\nHidden = false\n") << true;
        QTest::newRow("switched off") << QByteArray("[Desktop Entry]\nExec=/a\n"
                                                    "X-GNOME-Autostart-enabled=false\n")
                                      << false;
        QTest::newRow("hidden in another group")
            << QByteArray("[Desktop Entry]\nExec=/a\n[Other]\nHidden=true\n") << true;
        QTest::newRow("nothing to start") << QByteArray("[Desktop Entry]\nName=a\n") << false;
    }
    void respectsWhatDesktopsWrite()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, enabled);
        XdgLoginItem item(_file, u"/opt/velbrix"_s);
        QVERIFY(item.setEnabled(true));
        writeFile(_file, text);
        QCOMPARE(item.isEnabled(), enabled);
        QVERIFY(item.setEnabled(true));
        QVERIFY(item.isEnabled());
    }

    void saysWhyItCannotBeWritten()
    {
        XdgLoginItem item(u"/proc/velbrix/velbrix.desktop"_s, u"/opt/velbrix"_s);
        const auto done = item.setEnabled(true);
        QVERIFY(!done);
        QCOMPARE(done.error().message, u"无法创建文件夹 /proc/velbrix"_s);
    }
};

QTEST_GUILESS_MAIN(LoginItemTest)
#include "LoginItemTest.moc"
