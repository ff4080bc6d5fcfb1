#include "platform/linux/desktop/LinuxDesktopPicture.h"

#include "foundation/SystemClock.h"
#include "platform/linux/x11/RootWindow.h"
#include "platform/linux/x11/X11DesktopSession.h"
#include "platform/x11/DesktopTools.h"
#include "support/Bus.h"
#include "support/FakeDesktop.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QUrl>

namespace {

// What is to be seen on the screen, sampled off every monitor's middle and of icons.
QStringList seen()
{
    const QImage screen = Observer().screen();
    QStringList colours;
    for (const QPoint &at : {QPoint(100, 600), {540, 600}, {740, 600}, {1180, 600}})
        colours.append(screen.pixelColor(at).name());
    return colours;
}

bool hasPublishedPicture()
{
    auto root = RootWindow::open();
    return root && !root->published().isNull();
}

void makePicture(const QString &path, QColor left, QColor right)
{
    QImage image(2, 1, QImage::Format_RGB32);
    image.setPixelColor(0, 0, left);
    image.setPixelColor(1, 0, right);
    image.scaled(400, 100).save(path);
}

// Plasma's shell, as far as its pictures go.
class PlasmaShell final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.PlasmaShell")
public:
    const QByteArray desktops =
        R"([{"fill":"2","id":1,"image":"","kind":"org.kde.slideshow"},{"fill":"6","id":7,"image":"https://u.png","kind":"org.kde.image"}])";
    QStringList inputs;
public Q_SLOTS:
    QString evaluateScript(const QString &script)
    {
        inputs.append(script.section(u'\n', 0, 0));
        return script.contains(u"print("_s) ? QString::fromUtf8(desktops) : QString();
    }
};

const QString magenta = u"#ff00ff"_s;
const QString cyan = u"#00ffff"_s;

} // namespace

// A picture on the root window that is not ours.
const QString userShows = u"feh --no-fehbg --bg-fill '%1'"_s;

class DesktopPictureTest : public QObject {
    Q_OBJECT

    SystemClock _clock;
    const std::shared_ptr<DesktopSession> _session = std::make_shared<X11DesktopSession>();
    QTemporaryDir _folder;
    std::optional<RunningProgram> _desktop;

    QString path(const QString &name) const { return _folder.filePath(name); }
    QString ours() const { return path(u"它的 'own' picture.png"_s); }

    QJsonValue pcmanfmMode() { return current().value(u"pcmanfm"_s).toObject().value(u"mode"_s); }
    // Each time, as after a crash, one that knows nothing.
    LinuxDesktopPicture picture() { return {_clock, _session, path(u"kept"_s)}; }
    QJsonObject current() { return QCoro::waitFor(picture().current()).value_or(QJsonObject()); }
    Result<void> set() { return QCoro::waitFor(picture().set(ours())); }
    Result<QStringList> restore(const QJsonObject &former)
    {
        return QCoro::waitFor(picture().restore(former));
    }
    void startDesktop(const QString &program, const QStringList &arguments)
    {
        _desktop.emplace(program, arguments);
        QTRY_VERIFY(Observer().iconWindow() != XCB_WINDOW_NONE);
    }
    void installSchema(const QString &schema, const QStringList &keys)
    {
        const QString folder = qEnvironmentVariable("XDG_DATA_HOME") + u"/glib-2.0/schemas"_s;
        QString xml = u"<schemalist><schema id='%1' path='/test/%1/'>"_s.arg(schema);
        for (const QString &key : keys + QStringList{u"picture-options"_s})
            xml += u"<key name='%1' type='s'><default>'unset'</default></key>"_s.arg(key);
        writeFile(folder + u'/' + schema + u".gschema.xml"_s, xml.toUtf8() + "</schema></schemalist>");
        shell(u"glib-compile-schemas "_s + folder);
    }
    void renameWindowManager(const QString &name)
    {
        shell(u"xprop -id $(xprop -root _NET_SUPPORTING_WM_CHECK | grep -o '0x.*') "
              "-f _NET_WM_NAME 8u -set _NET_WM_NAME '%1'"_s.arg(name));
    }

    void theRootWindowComesBack(const QString &madeBy)
    {
        shell(madeBy);
        const QStringList before = seen();
        const bool isPublished = hasPublishedPicture();
        const QJsonObject former = current();
        QVERIFY(former.contains(u"root"_s));
        QCOMPARE(isPublished, madeBy.startsWith(u"feh"));
        QVERIFY(set());
        QCOMPARE(seen(), (QStringList{magenta, cyan, magenta, cyan}));
        QVERIFY(hasPublishedPicture());
        QCOMPARE(current().value(u"root"_s), QJsonValue(QJsonObject{{u"ours"_s, true}}));
        QVERIFY(set());
        QVERIFY(restore(former));
        QCOMPARE(seen(), before);
        QCOMPARE(hasPublishedPicture(), isPublished);
        QCOMPARE(current(), former);
    }
    void pcmanfmShowsItOnItsFirstMonitor(bool hasPicture)
    {
        startDesktop(u"pcmanfm"_s, hasPicture ? QStringList{u"--desktop"_s, u"--profile"_s, u"LXDE"_s}
                                              : QStringList{u"--desktop"_s});
        if (hasPicture) {
            shell(u"pcmanfm --wallpaper-mode=stretch --set-wallpaper="_s + path(u"user.png"_s));
            QTRY_COMPARE(seen().first(), QColor(Qt::yellow).name());
        }
        QTRY_COMPARE(pcmanfmMode(), hasPicture ? u"stretch"_s : u"color"_s);
        const QStringList before = seen();
        const QJsonObject former = current();
        QVERIFY(!former.contains(u"root"_s));
        QVERIFY(set());
        QTRY_COMPARE(seen(), (QStringList{magenta, cyan, before[2], before[3]}));
        QTRY_VERIFY(current() != former);
        QVERIFY(restore(former));
        QTRY_COMPARE(seen(), before);
        QTRY_COMPARE(pcmanfmMode(), hasPicture ? u"stretch"_s : u"color"_s);
        QCOMPARE(hasPublishedPicture(), hasPicture);
        if (hasPicture)
            QCOMPARE(current(), former);
    }
    void isKeptInSettings(const QString &manager, const QString &name, const QString &schema,
                          const QStringList &keys)
    {
        const bool keepsRoot = name == u"mate";
        if (name != u"gnome"_s)
            installSchema(schema, keys);
        renameWindowManager(manager);
        const auto get = [&](const QString &key) { return shell(u"gsettings get %1 %2"_s.arg(schema, key)); };
        shell(u"gsettings set %1 picture-options none"_s.arg(schema));
        const QJsonObject former = current();
        QCOMPARE(former.keys(), keepsRoot ? QStringList{name} : (QStringList{name, u"root"_s}));
        const QByteArray before = get(keys.last());
        QVERIFY(set());
        QCOMPARE(get(u"picture-options"_s), "'zoom'");
        for (const QString &key : keys)
            QVERIFY(get(key).endsWith(keepsRoot ? " 'own' picture.png\"" : "%20'own'%20picture.png\""));
        QCOMPARE(hasPublishedPicture(), !keepsRoot);
        QVERIFY(restore(former));
        QCOMPARE(current(), former);
        QCOMPARE(get(u"picture-options"_s), "'none'");
        QCOMPARE(get(keys.last()), before);
        shell(u"gsettings set %1 %2 %3/none.png"_s.arg(schema, keys.first(),
                                                       keepsRoot ? QString() : u"file://"_s));
        const QJsonObject gone = current();
        QVERIFY(set());
        QCOMPARE(restore(gone), Result<QStringList>({u"/none.png"_s}));
        QVERIFY(!get(keys.first()).contains("png"));
    }

private Q_SLOTS:
    void initTestCase()
    {
        addTwoMonitors();
        makePicture(ours(), magenta, cyan);
        makePicture(path(u"user.png"_s), Qt::yellow, Qt::green);
    }
    void cleanup()
    {
        _desktop.reset();
        shell(u"xprop -root -remove _XROOTPMAP_ID -remove ESETROOT_PMAP_ID; xsetroot -def"_s);
        renameWindowManager(u"Openbox"_s);
    }

    void whatWasThereComesBack_data() { fakeAndReal(); }
    void whatWasThereComesBack()
    {
        QFETCH(bool, isReal);
        VirtualClock clock;
        FakeDesktopPicture fake(clock);
        LinuxDesktopPicture real = this->picture();
        DesktopPicture &picture = isReal ? static_cast<DesktopPicture &>(real) : fake;
        const auto now = [&] { return *QCoro::waitFor(picture.current()); };
        const QJsonObject former = now();
        QCOMPARE(former.size(), 1);
        QCOMPARE(errorText(QCoro::waitFor(picture.set(u"/nowhere.jpg"_s))), u"无法读取图片：/nowhere.jpg"_s);
        QCOMPARE(now(), former);
        QVERIFY(QCoro::waitFor(picture.set(ours())));
        const QJsonObject set = now();
        QCOMPARE(set.keys(), former.keys());
        QVERIFY(set != former);
        QVERIFY(QCoro::waitFor(picture.restore({}))); // a place without an entry stays
        QCOMPARE(now(), set);
        QVERIFY(QCoro::waitFor(picture.restore(former)));
        QCOMPARE(now(), former);
    }

    void aDesktopIsRecognisedByWhatItShows()
    {
        const auto key = [](const DesktopSigns &signs) {
            const Desktop *const found = recognisedDesktop(signs);
            return found ? found->key : QString();
        };
        QCOMPARE(key({}), QString());
        QCOMPARE(key({{}, u"Openbox"_s, {}, 0}), QString());
        QCOMPARE(key({u"XFCE"_s, u"Xfwm4"_s, u"xfdesktop\0Xfdesktop"_s, 1}), u"xfce"_s);
        QCOMPARE(key({u"LXDE"_s, u"Openbox"_s, u"pcmanfm"_s, 1}), u"pcmanfm"_s);
        QCOMPARE(key({u"LXQt"_s, u"Openbox"_s, u"pcmanfm-qt"_s, 1}), u"lxqt"_s);
        QCOMPARE(key({u"MATE"_s, u"Compiz"_s, {}, 0}), u"mate"_s);
        QCOMPARE(key({u"Unity:Unity7:ubuntu"_s, u"Compiz"_s, {}, 0}), u"gnome"_s);
        QCOMPARE(key({u"X-Cinnamon"_s, u"Mutter (Muffin)"_s, {}, 0}), u"cinnamon"_s);
        QCOMPARE(key({u"Budgie:GNOME"_s, u"Budgie"_s, {}, 0}), u"gnome"_s);
        QCOMPARE(key({u"KDE"_s, u"KWin"_s, u"conky"_s, 1}), u"plasma"_s); // an unknown backdrop
        QCOMPARE(key({u"GNOME"_s, u"i3"_s, {}, 0}), QString());           // served by another manager
    }

    void theUntouchedRootWindowComesBack() { theRootWindowComesBack(u"true"_s); }
    void theRootWindowsColourComesBack() { theRootWindowComesBack(u"xsetroot -solid '#336699'"_s); }
    void theRootWindowsPatternComesBack()
    {
        theRootWindowComesBack(u"xsetroot -mod 5 3 -fg '#ff0000' -bg '#0000ff'"_s);
    }
    void theRootWindowsPictureComesBack() { theRootWindowComesBack(userShows.arg(path(u"user.png"_s))); }

    void keepsOnlySomeFormerPictures()
    {
        for (int i = 0; i < 7; ++i) {
            makePicture(path(u"other.png"_s), QColor(i, 0, 0), Qt::white);
            shell(userShows.arg(path(u"other.png"_s)));
            current();
        }
        QCOMPARE(QDir(path(u"kept"_s)).entryList(QDir::Files).size(), 4);
    }

    void pcmanfmShowsItInsteadOfAColour() { pcmanfmShowsItOnItsFirstMonitor(false); }
    void pcmanfmShowsItInsteadOfAPicture() { pcmanfmShowsItOnItsFirstMonitor(true); }

    void pcmanfmGetsItBackWhereItNoLongerRuns()
    {
        startDesktop(u"pcmanfm"_s, {u"--desktop"_s});
        shell(u"pcmanfm --wallpaper-mode=fit --set-wallpaper="_s + path(u"user.png"_s));
        QTRY_COMPARE(pcmanfmMode(), u"fit"_s);
        const QJsonObject former = current();
        QVERIFY(set());
        QTRY_VERIFY(current() != former);
        cleanup();
        QVERIFY(restore(former));
        startDesktop(u"pcmanfm"_s, {u"--desktop"_s});
        QCOMPARE(current(), former);
    }

    void pcmanfmKeepsThePicturesOfItsWorkspaces()
    {
        const QString folder = qEnvironmentVariable("XDG_CONFIG_HOME") + u"/pcmanfm/many"_s;
        writeFile(folder + u"/desktop-items-0.conf"_s, "[*]\nwallpaper_mode=crop\nwallpaper_common=0\n");
        startDesktop(u"pcmanfm"_s, {u"--desktop"_s, u"-p"_s, u"many"_s});
        QCOMPARE(errorText(set()), u"pcmanfm 为每个工作区设置了不同的图片，因此不作更改"_s);
    }

    void xfdesktopShowsItEverywhere()
    {
        startDesktop(u"xfdesktop"_s, {});
        const QString query = u"xfconf-query -c xfce4-desktop -p /backdrop/screen0/monitorscreen"_s;
        QTRY_VERIFY(shell(u"xfconf-query -c xfce4-desktop -l"_s).contains("workspace3/last-image"));
        for (const QString &change :
             {u"/workspace0/last-image -s "_s + path(u"user.png"_s), u"/workspace0/image-style -s 3"_s,
              u"/workspace1/image-style -s 0"_s, u"/workspace2/backdrop-cycle-enable -n -t bool -s true"_s})
            shell(query + change);
        QTRY_COMPARE(seen().first(), QColor(Qt::yellow).name());
        const QStringList before = seen();
        const QJsonObject former = current();
        const auto areXfces = [](const QString &place) { return place.startsWith(u"xfce "_s); };
        QVERIFY(former.size() > 3 && std::ranges::all_of(former.keys(), areXfces));
        QVERIFY(set());
        // A monitor without an output is none to xfdesktop.
        QTRY_COMPARE(seen(), (QStringList{magenta, cyan, before[2], before[3]}));
        for (const QJsonValue &place : current()) {
            QCOMPARE(place[u"/last-image"_s].toString(ours()), ours());
            QCOMPARE(place[u"/image-style"_s].toInt(5), 5);
            QCOMPARE(place[u"/backdrop-cycle-enable"_s].toBool(false), false);
        }
        // A monitor that came in the meantime is not left with our picture.
        shell(u"xfconf-query -c xfce4-desktop -p /backdrop/screen0/monitorHDMI/workspace0/last-image "
              "-n -t string -s "_s +
              path(u"user.png"_s));
        QVERIFY(set());
        QVERIFY(restore(former));
        QTRY_COMPARE(seen(), before);
        QCOMPARE(current(), former);
        // One that is gone gives way to the desktop's own.
        QVERIFY(set());
        QTRY_COMPARE(seen().first(), magenta);
        QVERIFY(QFile::rename(path(u"user.png"_s), path(u"away.png"_s)));
        QCOMPARE(restore(former), Result<QStringList>({path(u"user.png"_s)}));
        QTRY_VERIFY(seen().first() != magenta);
        QVERIFY(QFile::rename(path(u"away.png"_s), path(u"user.png"_s)));
    }

    void gnomeKeepsItInItsSettings()
    {
        isKeptInSettings(u"GNOME Shell"_s, u"gnome"_s, u"org.gnome.desktop.background"_s,
                         {u"picture-uri"_s, u"picture-uri-dark"_s});
    }
    void cinnamonKeepsItInItsSettings()
    {
        isKeptInSettings(u"Mutter (Muffin)"_s, u"cinnamon"_s, u"org.cinnamon.desktop.background"_s,
                         {u"picture-uri"_s});
    }
    void mateKeepsItInItsSettings()
    {
        isKeptInSettings(u"Metacity (Marco)"_s, u"mate"_s, u"org.mate.background"_s, {u"picture-filename"_s});
    }

    void plasmaKeepsItForEveryScreen()
    {
        renameWindowManager(u"KWin"_s);
        PlasmaShell plasma;
        BusPeer peer;
        QVERIFY(peer.serve(u"/PlasmaShell"_s, &plasma) && peer.take(u"org.kde.plasmashell"_s));
        const QJsonObject former = current();
        QCOMPARE(former.keys(), (QStringList{u"plasma 1"_s, u"plasma 7"_s, u"root"_s}));
        QVERIFY(set());
        QCOMPARE(seen(), (QStringList{magenta, cyan, magenta, cyan}));
        QVERIFY(restore(former));
        const QString address = QString::fromLatin1(QUrl::fromLocalFile(ours()).toEncoded());
        QCOMPARE(plasma.inputs, (QStringList{u"var input = null;"_s, u"var input = [\"%1\"];"_s.arg(address),
                                             u"var input = %1;"_s.arg(QString::fromUtf8(plasma.desktops))}));
    }

    void outlivesItsOwner()
    {
        bool hasEnded = false;
        picture().set(ours()).then([&](Result<void> done) { hasEnded = done.has_value(); });
        QTRY_VERIFY(hasEnded);
    }
};

QTEST_MAIN(DesktopPictureTest)
#include "DesktopPictureTest.moc"
