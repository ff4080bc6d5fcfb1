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

    void leavesOutWhatIsNoApplication_data()
    {
        QTest::addColumn<QByteArray>("text");
        const QByteArray head = "[Desktop Entry]\n";
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("no group") << QByteArray("Type=Application\nName=A\nExec=a\n");
        QTest::newRow("no name") << head + "Type=Application\nExec=a\n";
        QTest::newRow("name of spaces") << head + "Type=Application\nName=\\s\\n\nExec=a\n";
        QTest::newRow("no program") << head + "Type=Application\nName=A\n";
        QTest::newRow("link") << head + "Type=Link\nName=A\nExec=a\n";
        QTest::newRow("binary") << head + QByteArray("Type=Application\nName=A\0\nExec=a\n", 32);
        QTest::newRow("values of another group") << head + "[Other]\nType=Application\nName=A\nExec=a\n";
    }
    void leavesOutWhatIsNoApplication()
    {
        QFETCH(QByteArray, text);
        QVERIFY(!parseDesktopEntry(text));
    }

    void isShownWhereItBelongs_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("isShown");
        QTest::newRow("no display") << QByteArray("NoDisplay=true") << false;
        QTest::newRow("hidden") << QByteArray("Hidden=true") << false;
        QTest::newRow("only here") << QByteArray("OnlyShowIn=GNOME;XFCE;") << true;
        QTest::newRow("only elsewhere") << QByteArray("OnlyShowIn=GNOME;") << false;
        QTest::newRow("not here") << QByteArray("NotShowIn=XFCE") << false;
        QTest::newRow("not elsewhere") << QByteArray("NotShowIn=KDE;") << true;
        QTest::newRow("program is there") << QByteArray("TryExec=sh") << true;
        QTest::newRow("program is missing") << QByteArray("TryExec=/nowhere/paint") << false;
    }
    void isShownWhereItBelongs()
    {
        QFETCH(QByteArray, line);
        const auto entry =
            parseDesktopEntry("[Desktop Entry]\nType=Application\nName=A\nExec=a\n" + line + '\n');
        QVERIFY(entry);
        QTEST(entry->isShown({u"XFCE"_s}), "isShown");
    }

    void hostileNamesStayOneShortLine()
    {
        const auto entry = parseDesktopEntry("[Desktop Entry]\nType=Application\nExec=a\nName=A\\nB\xff" +
                                             QByteArray(100000, 'x'));
        QVERIFY(entry);
        QVERIFY(entry->name.startsWith(u"A B"_s) && entry->name.size() <= 200);
    }

    void splitsCommandLines_data()
    {
        QTest::addColumn<QString>("exec");
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("field codes") << u"paint  --new %U %% 50%%"_s
                                     << QStringList{u"paint"_s, u"--new"_s, u"%"_s, u"50%"_s};
        QTest::newRow("quotes") << u"\"/opt/My \\\"App\\\"/run\" \"\" b"_s
                                << QStringList{u"/opt/My \"App\"/run"_s, u""_s, u"b"_s};
        QTest::newRow("open quote") << u"\"/opt/run"_s << QStringList();
    }
    void splitsCommandLines()
    {
        QFETCH(QString, exec);
        QTEST(execArguments(exec), "arguments");
    }

    void takesAppImageNamesApart_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("version");
        QTest::newRow("full") << u"Krita-5.2.2-x86_64.AppImage"_s << u"Krita"_s << u"5.2.2"_s;
        QTest::newRow("v and letters") << u"My App-v1.0-rc1.appimage"_s << u"My App"_s << u"1.0-rc1"_s;
        QTest::newRow("machine") << u"nvim-linux-x86_64.AppImage"_s << u"nvim-linux"_s << u""_s;
        QTest::newRow("number in the name") << u"Studio-3D.AppImage"_s << u"Studio-3D"_s << u""_s;
        QTest::newRow("bare") << u".AppImage"_s << u".AppImage"_s << u""_s;
    }
    void takesAppImageNamesApart()
    {
        QFETCH(QString, file);
        const AppImageName parts = appImageName(file);
        QTEST(parts.name, "name");
        QTEST(parts.version, "version");
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
