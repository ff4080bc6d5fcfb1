#include "support/CommandRig.h"
#include "support/UninstallRig.h"

#include <QJsonArray>

namespace {

struct Rig : UninstallRig {
    explicit Rig(bool agreed = true)
    {
        qputenv("XDG_DATA_HOME", home(u"own"_s).toUtf8());
        auto stored = std::make_unique<MemorySettings>();
        stored->stored = {{u"Velbrix_Privacy_firstLaunchAccepted"_s, true},
                          {u"Velbrix_Privacy_consent_uninstall"_s, agreed}};
        host.platform.settings = std::move(stored);
        install(u"Note"_s, u"org.acme.note"_s);
        lastInstalled().size = 2'000'000;
        install(u"Zed"_s, u"org.zed"_s);
        lastInstalled().version = u"1.2"_s;
        plant(u"Preferences/org.acme.note.plist"_s);
        plant(u"Caches/Evernote"_s);
        services = std::make_unique<AppServices>(host.platform, clock);
        scanner = std::shared_ptr<AppScanner>(std::shared_ptr<void>(), &services->uninstaller);
        keepMessages();
        idleAlarms = standingAlarms;
    }

    std::unique_ptr<AppServices> services;
    CommandReply reply; // the newest
    QString said(const QString &line, const QString &terms = {})
    {
        return words(reply = ask(*services, clock, line, terms));
    }
};

} // namespace

class AppsCommandsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lists()
    {
        Rig rig;
        rig.lastInstalled().manager = u"APT"_s;
        QCOMPARE(rig.said(u"apps list"_s),
                 u"0 Note  —  2 MB  org.acme.note  %1\nZed  1.2  零 KB  APT  org.zed  %2"_s.arg(
                     rig.home(u"Applications/Note.app"_s), rig.home(u"Applications/Zed.app"_s)));
        QCOMPARE(rig.reply.data.value("apps"_L1).toArray().at(0).toObject(),
                 (QJsonObject{{u"name"_s, u"Note"_s},
                              {u"identifier"_s, u"org.acme.note"_s},
                              {u"version"_s, u"—"_s},
                              {u"bytes"_s, 2'000'000},
                              {u"path"_s, rig.home(u"Applications/Note.app"_s)},
                              {u"kind"_s, u"bundle"_s},
                              {u"manager"_s, u""_s},
                              {u"package"_s, u""_s}}));
        rig.host.applications.installed = failure(u"坏了"_s);
        QCOMPARE(rig.said(u"apps list"_s), u"1 坏了"_s);
    }

    void showsFirstAndTakesWhenToldSo()
    {
        Rig rig;
        rig.host.programs.names = {u"org.acme.note"_s};
        const QString head = u"卸载「Note」（完全卸载）：\n"_s;
        const QString review =
            u"  [✓]  2 MB  %1/Applications/Note.app  应用本体\n"
            "  [✓]  零 KB  %1/Preferences/org.acme.note.plist  名称包含标识 org.acme.note\n"
            "  [ ]  零 KB  %1/Caches/Evernote  名称包含应用名 note  仅名称相似，可能属于其他应用"_s.arg(
                rig.home());
        QCOMPARE(rig.said(u"apps uninstall note --dry-run"_s),
                 u"0 "_s + head + u"  应用正在运行，请先退出\n"_s + review);
        QVERIFY(!rig.reply.data.contains("needsConfirmation"_L1));
        QCOMPARE(rig.said(u"apps uninstall Note --yes"_s), u"1 应用正在运行，请先退出：Note"_s);
        rig.host.programs.names.clear();
        QCOMPARE(rig.said(u"apps uninstall ORG.acme.NOTE"_s), u"1 "_s + head + review);
        QVERIFY(rig.reply.isQuestion());
        QCOMPARE(rig.reply.agreedArguments(), QStringList{rig.home() + u"/Applications/Note.app"_s});
        const QJsonArray items = rig.reply.data.value("review"_L1).toObject().value("items"_L1).toArray();
        QCOMPARE(items.at(1).toObject().value("reason"_L1), u"identifier"_s);
        QCOMPARE(items.at(2).toObject().value("ticked"_L1), false);
        QVERIFY(rig.host.trash.calls.isEmpty());

        QCOMPARE(rig.said(u"apps uninstall Note --yes"_s), u"0 已卸载「Note」"_s);
        QCOMPARE(rig.trashed(),
                 (QStringList{u"Applications/Note.app"_s, u"Preferences/org.acme.note.plist"_s}));
        QCOMPARE(rig.reply.data.value("uninstalled"_L1), true);
    }

    void whatHasChangedIsAskedAgain()
    {
        Rig rig;
        rig.said(u"apps uninstall Note"_s);
        const QString terms = rig.reply.agreedTerms();
        rig.plant(u"Preferences/org.acme.note.later.plist"_s);
        QVERIFY(rig.said(u"apps uninstall Note --yes"_s, terms)
                    .startsWith(u"1 与刚才列出的不同，现在是：\n卸载「Note」"_s));
        QVERIFY(rig.host.trash.calls.isEmpty());
        QCOMPARE(rig.said(u"apps uninstall Note --yes"_s, rig.reply.agreedTerms()), u"0 已卸载「Note」"_s);
    }

    void takesTheModeItIsTold()
    {
        Rig rig;
        QCOMPARE(rig.said(u"apps uninstall Note --mode alles"_s), u"2 --mode 只能是 full、app 或 custom"_s);
        rig.said(u"apps uninstall Note --mode app --yes"_s);
        QCOMPARE(rig.trashed(), QStringList{u"Applications/Note.app"_s});
        QCOMPARE(rig.scanner->uninstallMode(), UninstallMode::full);
    }

    void refusesWithTheReason()
    {
        Rig rig;
        QCOMPARE(rig.said(u"apps uninstall Not --yes"_s), u"1 找不到应用：Not"_s);
        rig.install(u"NOTE"_s, u"org.other"_s);
        QVERIFY(rig.said(u"apps uninstall note --yes"_s)
                    .startsWith(u"1 有多个应用符合「note」，请用标识或路径指定：\nNote  —"_s));
        const QString path = rig.home(u"Applications/Zed.app"_s);
        rig.host.trash.refused.insert(path, u"没有权限"_s);
        QCOMPARE(rig.said(u"apps uninstall --yes "_s + path),
                 u"1 失败：没有权限\n  %1：没有权限"_s.arg(path));
        QCOMPARE(rig.reply.data.value("uninstalled"_L1), false);
        rig.message.clear();
        rig.scanner->uninstall(rig.reviewOf(u"Zed"_s));
        QCOMPARE(rig.said(u"apps uninstall Zed --yes"_s), u"1 另一个卸载或放回操作正在进行"_s);
        rig.ending();
    }

    void asksForConsentAndStartsNothingWithIt()
    {
        Rig rig(false);
        QCOMPARE(rig.said(u"apps uninstall Note --yes"_s),
                 u"1 需要先在 Velbrix 窗口中确认：应用卸载隐私确认"_s);
        rig.services->privacy.confirmPendingNotice();
        QVERIFY(!rig.scanner->isBusy());
        QCOMPARE(rig.said(u"apps uninstall Note --yes"_s), u"0 已卸载「Note」"_s);
    }
};

QTEST_GUILESS_MAIN(AppsCommandsTest)
#include "AppsCommandsTest.moc"
