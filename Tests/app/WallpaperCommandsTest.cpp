#include "app/Tools.h"
#include "support/WallpaperRig.h"

#include <QJsonArray>

#include <optional>

namespace {

struct TwoDisplays : WallpaperRig {
    explicit TwoDisplays(bool agreed)
    {
        host.settings.stored = {{u"Velbrix_Privacy_firstLaunchAccepted"_s, true},
                                {u"Velbrix_Privacy_consent_videoWallpaper"_s, agreed}};
        make();
        plugSecond();
    }
};

struct Rig : TwoDisplays {
    explicit Rig(bool agreed = true) : TwoDisplays(agreed) {}

    std::optional<CommandReply> reply;

    CommandReply ask(const QString &words, const QStringList &arguments = {}, const QString &display = {})
    {
        ParsedCommand command{words, arguments, false, {}};
        if (!display.isEmpty())
            command.options.insert(u"--display"_s, display);
        settle();
        reply.reset();
        commandOf(words)->run(*services, command).then([this](CommandReply now) { reply = std::move(now); });
        settle();
        return reply.value_or(CommandReply{-1, u"…"_s, {}});
    }
    QString text(const QString &words, const QStringList &arguments = {}, const QString &display = {})
    {
        const CommandReply answer = ask(words, arguments, display);
        return u"%1 %2"_s.arg(QString::number(answer.exitCode), answer.text);
    }

    const QString a = video(u"a.mp4"_s);
    const QString b = video(u"b.mp4"_s);
};

} // namespace

class WallpaperCommandsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void setsAndPlays()
    {
        Rig rig;
        QCOMPARE(rig.text(u"wallpaper set"_s, {rig.a}), u"0 正在播放："_s + rig.a);
        QCOMPARE(rig.reply->data,
                 (QJsonObject{{u"file"_s, rig.a}, {u"playing"_s, true}, {u"notice"_s, u""_s}}));
        QCOMPARE(rig.text(u"wallpaper set"_s, {rig.b}, u"2"_s), u"0 正在播放：副屏："_s + rig.b);
        QCOMPARE(rig.surface(0)->path, rig.a);
        QCOMPARE(rig.surface(1)->path, rig.b);
        QCOMPARE(rig.text(u"wallpaper set"_s, {rig.b}, u"1"_s), u"0 正在播放：内建显示器："_s + rig.b);
        QCOMPARE(rig.surface(0)->path, rig.b);
        rig.host.power.set(true);
        QCOMPARE(rig.text(u"wallpaper set"_s, {rig.a}),
                 u"0 已选择："_s + rig.a +
                     u"\n还没有播放：当前正在使用电池：壁纸已停止，接上电源后可自动恢复"_s);
        QCOMPARE(rig.reply->data.value(u"playing"_s), false);
    }

    void waitsForTheOutcome()
    {
        Rig rig;
        rig.host.mediaProbe.delay = 200ms;
        QCOMPARE(rig.ask(u"wallpaper set"_s, {rig.a}).exitCode, -1);
        rig.clock.advance(1s);
        QVERIFY(rig.reply && rig.reply->exitCode == exitcode::done);
        QVERIFY(rig.wallpaper().isShowing());
        QTRY_VERIFY(rig.wallpaper().isSettled());
        rig.host.desktopPicture.delay = 200ms;
        QCOMPARE(rig.ask(u"wallpaper stop"_s).exitCode, -1);
        rig.clock.advance(1s);
        QTRY_VERIFY(rig.reply);
        QCOMPARE(rig.reply->text, u"动态壁纸已停止"_s);
    }

    void refusesWithTheReason()
    {
        Rig rig;
        rig.host.mediaProbe.factsOf[rig.b] = failure(u"坏了"_s);
        for (const QString &verb : {u"wallpaper pause"_s, u"wallpaper stop"_s})
            QCOMPARE(rig.text(verb), u"1 动态壁纸没有在播放"_s);
        QCOMPARE(rig.text(u"wallpaper play"_s), u"1 请先选择一个视频"_s);
        QCOMPARE(rig.text(u"wallpaper set"_s, {rig.b}), u"1 无法读取视频：坏了"_s);
        for (const QString &number : {u"0"_s, u"3"_s, u"%2"_s})
            QCOMPARE(rig.text(u"wallpaper set"_s, {rig.a}, number),
                     u"1 没有编号为 "_s + number + u" 的显示器（共 2 块）"_s);
        rig.ask(u"wallpaper set"_s, {rig.a});
        QCOMPARE(rig.text(u"wallpaper play"_s), u"1 动态壁纸已在播放"_s);
        QCOMPARE(rig.text(u"wallpaper pause"_s), u"0 动态壁纸：已暂停"_s);
        QCOMPARE(rig.text(u"wallpaper pause"_s), u"1 动态壁纸已经暂停"_s);
        QCOMPARE(rig.text(u"wallpaper play"_s), u"0 动态壁纸：播放中"_s);

        Rig fresh(false);
        for (const QString &verb : {u"wallpaper set"_s, u"wallpaper play"_s})
            QCOMPARE(fresh.text(verb, {fresh.a}), u"1 需要先在 Velbrix 窗口中确认：视频壁纸隐私确认"_s);
    }

    void tellsItsStatus()
    {
        Rig rig;
        QCOMPARE(rig.ask(u"wallpaper status"_s).text,
                 u"动态壁纸：未播放\n视频：未选择\n内容：视频壁纸\n供电：电源\n桌面图标：未盖住\nDock：未隐藏"
                 u"\n显示器：\n"
                 "  1  内建显示器（主）  未播放  未选择视频\n  2  副屏  未播放  跟随主显示器"_s);
        QCOMPARE(rig.reply->data.value(u"file"_s), QJsonValue());
        rig.ask(u"wallpaper set"_s, {rig.b}, u"2"_s);
        rig.ask(u"wallpaper set"_s, {rig.a});
        rig.ask(u"wallpaper pause"_s);
        rig.wallpaper().preferences().setHideDesktopIconsEnabled(true);
        rig.wallpaper().toggleHideDesktopIcons();
        rig.wallpaper().dock().toggleDockAutoHide();
        QCOMPARE(rig.ask(u"wallpaper status"_s).text,
                 u"动态壁纸：已暂停\n视频：%"
                 u"1\n内容：视频壁纸\n供电：电源\n桌面图标：已盖住\nDock：已隐藏\n显示器：\n"
                 "  1  内建显示器（主）  已暂停  %1\n  2  副屏  已暂停  %2"_s.arg(rig.a, rig.b));
        const QJsonArray displays = {QJsonObject{{u"number"_s, 1},
                                                 {u"id"_s, 1},
                                                 {u"name"_s, u"内建显示器"_s},
                                                 {u"main"_s, true},
                                                 {u"file"_s, rig.a},
                                                 {u"playing"_s, true}},
                                     QJsonObject{{u"number"_s, 2},
                                                 {u"id"_s, 2},
                                                 {u"name"_s, u"副屏"_s},
                                                 {u"main"_s, false},
                                                 {u"file"_s, rig.b},
                                                 {u"playing"_s, true}}};
        QCOMPARE(rig.reply->data, (QJsonObject{{u"state"_s, u"playing"_s},
                                               {u"paused"_s, true},
                                               {u"file"_s, rig.a},
                                               {u"failure"_s, u""_s},
                                               {u"notice"_s, u""_s},
                                               {u"onBattery"_s, false},
                                               {u"displays"_s, displays},
                                               {u"iconsCovered"_s, true},
                                               {u"dockHidden"_s, true},
                                               {u"contentMode"_s, u"video"_s}}));
    }
};

QTEST_GUILESS_MAIN(WallpaperCommandsTest)
#include "WallpaperCommandsTest.moc"
