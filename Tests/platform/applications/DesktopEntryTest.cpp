#include "platform/linux/applications/DesktopEntry.h"
#include "platform/linux/applications/AppImages.h"
#include "support/Fuzz.h"
#include "support/Test.h"

class DesktopEntryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsWhatCounts()
    {
        const auto entry = parseDesktopEntry("# comment\r\n[Desktop Entry]\r\nType = Application\n"
                                             "Name=Paint\nName[zh]=画\nName[zh_CN]=画图\\s板\nName=Second\n"
                                             "Exec=paint %U\nIcon=paint\nX-AppImage-Version=1.2\n"
                                             "[Desktop Action New]\nName=Other\nExec=other\n");
        QVERIFY(entry);
        QCOMPARE(entry->name, u"画图 板"_s);
        QCOMPARE(entry->exec, u"paint %U"_s);
        QCOMPARE(entry->version, u"1.2"_s);
        QVERIFY(entry->isShown({}));
    }

    void leavesOutWhatIsNoApplication()
    {
        const QByteArray head = "[Desktop Entry]\n";
        for (const QByteArray &text :
             {QByteArray(), QByteArray("Type=Application\nName=A\nExec=a\n"),
              head + "Type=Application\nExec=a\n", head + "Type=Application\nName=\\s\\n\nExec=a\n",
              head + "Type=Application\nName=A\n", head + "Type=Link\nName=A\nExec=a\n",
              head + QByteArray("Type=Application\nName=A\0\nExec=a\n", 32),
              head + "[Other]\nType=Application\nName=A\nExec=a\n"})
            QVERIFY2(!parseDesktopEntry(text), text.constData());
    }

    void isShownWhereItBelongs()
    {
        const auto isShown = [](const QByteArray &line) {
            const auto entry =
                parseDesktopEntry("[Desktop Entry]\nType=Application\nName=A\nExec=a\n" + line + '\n');
            return entry && entry->isShown({u"XFCE"_s});
        };
        for (const char *line : {"", "OnlyShowIn=GNOME;XFCE;", "NotShowIn=KDE;", "TryExec=sh"})
            QVERIFY2(isShown(line), line);
        for (const char *line : {"NoDisplay=true", "Hidden=true", "OnlyShowIn=GNOME;", "NotShowIn=XFCE",
                                 "TryExec=/nowhere/paint"})
            QVERIFY2(!isShown(line), line);
    }

    void hostileNamesStayOneShortLine()
    {
        const auto entry = parseDesktopEntry("[Desktop Entry]\nType=Application\nExec=a\nName=A\\nB\xff" +
                                             QByteArray(100000, 'x'));
        QVERIFY(entry);
        QVERIFY(entry->name.startsWith(u"A B"_s) && entry->name.size() <= 200);
    }

    void splitsCommandLines()
    {
        QCOMPARE(execArguments(u"paint  --new %U %% 50%%"_s),
                 (QStringList{u"paint"_s, u"--new"_s, u"%"_s, u"50%"_s}));
        QCOMPARE(execArguments(u"\"/opt/My \\\"App\\\"/run\" \"\" b"_s),
                 (QStringList{u"/opt/My \"App\"/run"_s, u""_s, u"b"_s}));
        QCOMPARE(execArguments(u"\"/opt/run"_s), QStringList());
    }

    void takesAppImageNamesApart()
    {
        const auto parts = [](const QString &file) {
            const AppImageName name = appImageName(file);
            return QStringList{name.name, name.version};
        };
        QCOMPARE(parts(u"Krita-5.2.2-x86_64.AppImage"_s), (QStringList{u"Krita"_s, u"5.2.2"_s}));
        QCOMPARE(parts(u"My App-v1.0-rc1.appimage"_s), (QStringList{u"My App"_s, u"1.0-rc1"_s}));
        QCOMPARE(parts(u"nvim-linux-x86_64.AppImage"_s), (QStringList{u"nvim-linux"_s, u""_s}));
        QCOMPARE(parts(u"Studio-3D.AppImage"_s), (QStringList{u"Studio-3D"_s, u""_s}));
        QCOMPARE(parts(u".AppImage"_s), (QStringList{u".AppImage"_s, u""_s}));
    }

    void anyEntryGivesAnOrdinaryName()
    {
        const Fuzz fuzz{
            {"[Desktop Entry]\nType=Application\nName=Paint\nName[zh_CN]=画图\\s板\n"
             "Exec=\"/opt/My \\\"App\\\"/run\" --new %U %% 50%%\nIcon=paint\nTryExec=sh\n"
             "OnlyShowIn=GNOME;XFCE;\nX-AppImage-Version=1.2\n[Desktop Action New]\nName=Other\n"},
            {"\n", "\r\n", "\\n", "\\", "\"", "%", "=", "[", "]", ";", "Name=", "Exec="}};
        int entries = 0;
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            const auto entry = parseDesktopEntry(bytes);
            if (!entry)
                return true;
            ++entries;
            static_cast<void>(entry->isShown({u"XFCE"_s}));
            const auto isControl = [](QChar c) { return c < u' '; };
            return !entry->name.trimmed().isEmpty() && entry->name.size() <= 200 &&
                   std::ranges::none_of(entry->name, isControl) &&
                   execArguments(entry->exec).size() <= entry->exec.size();
        }));
        QVERIFY(entries > 100);
    }
};

QTEST_GUILESS_MAIN(DesktopEntryTest)
#include "DesktopEntryTest.moc"
