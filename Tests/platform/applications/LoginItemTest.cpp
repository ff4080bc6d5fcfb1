#include "platform/linux/applications/XdgLoginItem.h"

#include "support/FakeSystem.h"
#include "support/Test.h"

#include <QProcess>

class LoginItemTest : public QObject {
    Q_OBJECT

    QTemporaryDir _folder;
    QString _file = _folder.path() + u"/autostart/velbrix.desktop"_s;

private Q_SLOTS:
    void turnsOnAndOff_data() { fakeAndReal(); }
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

    void writesAValidEntry()
    {
        const std::initializer_list<std::pair<QString, QByteArray>> programs{
            {u"/opt/velbrix"_s, "/opt/velbrix"},
            {u"/opt/my 100% box"_s, "/opt/my 100%% box"},
            {u"/opt/a\"b$c`d\\e"_s, "/opt/a\\\\\"b\\\\$c\\\\`d\\\\\\\\e"}};
        for (const auto &[program, quoted] : programs) {
            XdgLoginItem item(_file, program);
            QVERIFY(item.setEnabled(true));
            QVERIFY2(readFile(_file).contains("\nExec=\"" + quoted + "\" --background\n"),
                     readFile(_file).constData());
            QCOMPARE(QProcess::execute(u"desktop-file-validate"_s, {_file}), 0);
        }
    }

    void respectsWhatDesktopsWrite()
    {
        XdgLoginItem item(_file, u"/opt/velbrix"_s);
        const auto isEnabledBy = [&](const QByteArray &lines) {
            writeFile(_file, "[Desktop Entry]\n" + lines);
            return item.isEnabled();
        };
        QVERIFY(item.setEnabled(true));
        QVERIFY(isEnabledBy("Exec=/a\n"));
        QVERIFY(isEnabledBy("Exec=/a\nHidden = false\n"));
        QVERIFY(isEnabledBy("Exec=/a\n[Other]\nHidden=true\n"));
        for (const char *lines :
             {"Exec=/a\nHidden=true\n", "Exec=/a\nX-GNOME-Autostart-enabled=false\n", "Name=a\n"}) {
            QVERIFY2(!isEnabledBy(lines), lines);
            QVERIFY(item.setEnabled(true));
            QVERIFY(item.isEnabled());
        }
    }

    void saysWhyItCannotBeWritten()
    {
        XdgLoginItem item(u"/proc/velbrix/velbrix.desktop"_s, u"/opt/velbrix"_s);
        QVERIFY(errorText(item.setEnabled(true)).startsWith(u"无法创建文件夹 /proc/velbrix："_s));
    }
};

QTEST_GUILESS_MAIN(LoginItemTest)
#include "LoginItemTest.moc"
