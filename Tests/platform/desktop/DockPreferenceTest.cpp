#include "platform/linux/desktop/LinuxDockPreference.h"

#include "foundation/SystemClock.h"
#include "platform/linux/x11/X11DesktopSession.h"
#include "platform/macos/desktop/DefaultsDockPreference.h"
#include "platform/x11/DesktopTools.h"
#include "support/Bus.h"
#include "support/FakeDesktop.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QJsonDocument>

namespace {

// Plasma's shell, as far as its panels go.
class PlasmaShell final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.PlasmaShell")
public:
    QJsonObject panels{{u"3"_s, u"none"_s}, {u"8"_s, u"dodgewindows"_s}, {u"9"_s, u"windowsbelow"_s}};
    bool isLocked = false;
public Q_SLOTS:
    QString evaluateScript(const QString &script)
    {
        if (isLocked)
            return u"Widgets are locked"_s;
        const QString input = script.section(u'\n', 0, 0).section(u" = "_s, 1).chopped(1);
        if (input == u"null"_s)
            return QString::fromUtf8(QJsonDocument(panels).toJson());
        const QJsonObject wanted = QJsonDocument::fromJson(input.toUtf8()).object();
        for (auto panel = wanted.begin(); panel != wanted.end(); ++panel)
            panels.insert(panel.key(), *panel);
        return {};
    }
};

} // namespace

class DockPreferenceTest : public QObject {
    Q_OBJECT

    SystemClock _clock;
    const std::shared_ptr<DesktopSession> _session = std::make_shared<X11DesktopSession>();
    QTemporaryDir _folder;

    QString formerFile() const { return _folder.filePath(u"kept/former.json"_s); }
    // Each call is made by an object that knows nothing of the one before.
    LinuxDockPreference dock() { return {_clock, _session, formerFile()}; }
    Result<bool> autoHide() { return QCoro::waitFor(dock().autoHide()); }
    Result<void> set(bool hides) { return QCoro::waitFor(dock().setAutoHide(hides)); }
    // The same for the fake, the Mac and every desktop whose bars do not all hide.
    void hideAndShow(DockPreference &&dock)
    {
        QCOMPARE(QCoro::waitFor(dock.autoHide()), Result<bool>(false));
        QVERIFY(QCoro::waitFor(dock.setAutoHide(true)));
        QCOMPARE(QCoro::waitFor(dock.autoHide()), Result<bool>(true));
        QVERIFY(QCoro::waitFor(dock.setAutoHide(true)));
        QVERIFY(QCoro::waitFor(dock.setAutoHide(false)));
        QCOMPARE(QCoro::waitFor(dock.autoHide()), Result<bool>(false));
    }

private Q_SLOTS:
    void theFakeHidesAndShows()
    {
        VirtualClock clock;
        hideAndShow(FakeDockPreference(clock));
    }

    void theMacsDockHidesAndShows()
    {
        // One key in a file, which is not there until it is written.
        const QString defaults = standIn(_folder.filePath(u"defaults"_s), R"(#!/bin/sh
value="$(dirname "$0")/$2.$3"
case "$1 $2 $3 $4" in
"read com.apple.dock autohide ") cat "$value" ;;
"write com.apple.dock autohide -bool") [ "$5" = true ] && echo 1 > "$value" || echo 0 > "$value" ;;
*) exit 1 ;;
esac
)");
        hideAndShow(DefaultsDockPreference(
            _clock, {defaults, standIn(_folder.filePath(u"killall"_s), "#!/bin/sh\n")}));
    }

    void saysWhatIsMissing()
    {
        const QString message = u"当前桌面（Openbox）没有可以自动隐藏的 Dock 或面板"_s;
        QCOMPARE(errorText(autoHide()), message);
        QCOMPARE(errorText(set(true)), message);
    }

    void xfcePanelsHideAndComeBack()
    {
        RunningProgram panel(u"xfce4-panel"_s, {u"--disable-wm-check"_s});
        const auto workArea = [] { return shell(u"xprop -root _NET_WORKAREA | cut -d, -f2"_s); };
        // The bar at the top has its room: 26 pixels and its border.
        QTRY_COMPARE(workArea(), "27");
        const QString get = u"xfconf-query -c xfce4-panel -p /panels/panel-%1/autohide-behavior"_s;
        QTRY_COMPARE(shell(get.arg(2)), "1"); // below: hides when a window needs the room
        hideAndShow(dock());
        QCOMPARE(shell(get.arg(1)), "0");
        QVERIFY(set(true));
        QCOMPARE(shell(get.arg(1)), "2");
        QCOMPARE(shell(get.arg(2)), "2"); // it would stay until a window comes
        QTRY_COMPARE(workArea(), "0");
        // Once more, as after a failure in between: what the user had stays known.
        shell(get.arg(1) + u" -s 0"_s);
        QVERIFY(set(true));
        QVERIFY(set(false));
        QCOMPARE(shell(get.arg(1)), "0");
        QCOMPARE(shell(get.arg(2)), "1");
        QTRY_COMPARE(workArea(), "27");
        panel.kill();
        QTRY_VERIFY(!autoHide());
    }

    void plasmasPanelsHideAndComeBack()
    {
        BusPeer peer;
        PlasmaShell plasma;
        QVERIFY(peer.serve(u"/PlasmaShell"_s, &plasma) && peer.take(u"org.kde.plasmashell"_s));
        const QJsonObject before = plasma.panels;
        hideAndShow(dock());
        QCOMPARE(plasma.panels, before);
        QVERIFY(set(true));
        QCOMPARE(plasma.panels,
                 (QJsonObject{{u"3"_s, u"autohide"_s}, {u"8"_s, u"autohide"_s}, {u"9"_s, u"autohide"_s}}));
        plasma.isLocked = true;
        QCOMPARE(errorText(set(false)), u"Plasma 没有完成请求：Widgets are locked"_s);
        plasma.isLocked = false;
        QVERIFY(set(false));
        QCOMPARE(plasma.panels, before);
    }

    void gnomesDockHidesAndComesBack()
    {
        BusPeer peer;
        QVERIFY(peer.take(u"org.gnome.Shell"_s));
        QCOMPARE(errorText(autoHide()), u"GNOME 没有安装 Dash to Dock 扩展，没有可以自动隐藏的 Dock"_s);

        const QString schemas = qEnvironmentVariable("XDG_DATA_HOME") +
                                u"/gnome-shell/extensions/dash-to-dock@micxgx.gmail.com/schemas"_s;
        writeFile(schemas + u"/dock.gschema.xml"_s,
                  "<schemalist><schema id='org.gnome.shell.extensions.dash-to-dock' path='/test/dock/'>"
                  "<key name='dock-fixed' type='b'><default>true</default></key>"
                  "<key name='autohide' type='b'><default>false</default></key>"
                  "<key name='intellihide' type='b'><default>true</default></key></schema></schemalist>");
        shell(u"glib-compile-schemas "_s + schemas);
        const auto values = [&] {
            return shell(u"for k in dock-fixed autohide intellihide; do gsettings --schemadir "_s + schemas +
                         u" get org.gnome.shell.extensions.dash-to-dock $k; done"_s);
        };
        hideAndShow(dock());
        QCOMPARE(values(), "true\nfalse\ntrue");
        QVERIFY(set(true));
        QCOMPARE(values(), "false\ntrue\nfalse");
        QVERIFY(set(false));
        QCOMPARE(values(), "true\nfalse\ntrue");
    }
};

QTEST_MAIN(DockPreferenceTest)
#include "DockPreferenceTest.moc"
