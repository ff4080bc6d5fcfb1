#include "support/CommandRig.h"
#include "support/WallpaperRig.h"

#include <QJsonArray>

namespace {

struct Rig : WallpaperRig {
    Rig()
        : WallpaperRig({{u"Velbrix_Privacy_firstLaunchAccepted"_s, true},
                        {u"Velbrix_Privacy_consent_videoWallpaper"_s, true}})
    {
        make();
        plugSecond();
    }

    CommandReply reply; // the newest
    QString said(const QString &line) { return words(reply = ask(*services, clock, line)); }

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
        QCOMPARE(rig.said(u"wallpaper set "_s + rig.a), u"0 正在播放："_s + rig.a);
        QCOMPARE(rig.reply.data,
                 (QJsonObject{{u"file"_s, rig.a}, {u"playing"_s, true}, {u"notice"_s, u""_s}}));
        QCOMPARE(rig.said(u"wallpaper set --display 2 "_s + rig.b), u"0 正在播放：副屏："_s + rig.b);
        QCOMPARE(rig.surface(1)->path, rig.b);
        QCOMPARE(rig.said(u"wallpaper set --display 1 "_s + rig.b), u"0 正在播放：内建显示器："_s + rig.b);
        QCOMPARE(rig.surface(0)->path, rig.b);
        rig.host.power.set(true);
        QCOMPARE(rig.said(u"wallpaper set "_s + rig.a),
                 u"0 已选择："_s + rig.a +
                     u"\n还没有播放：当前正在使用电池：壁纸已停止，接上电源后可自动恢复"_s);
        QCOMPARE(rig.reply.data.value(u"playing"_s), false);
        QCOMPARE(rig.said(u"wallpaper play"_s), u"1 当前正在使用电池：壁纸已停止，接上电源后可自动恢复"_s);
    }

    void waitsForTheOutcome()
    {
        Rig rig;
        rig.host.mediaProbe.delay = 200ms;
        QCOMPARE(rig.said(u"wallpaper set "_s + rig.a), u"0 正在播放："_s + rig.a);
        QVERIFY(rig.wallpaper().isShowing());
        QTRY_VERIFY(rig.wallpaper().isSettled());
        rig.host.desktopPicture.delay = 200ms;
        QCOMPARE(rig.said(u"wallpaper stop"_s), u"0 动态壁纸已停止"_s);
        QVERIFY(rig.wallpaper().isSettled());
    }

    void refusesWithTheReason()
    {
        Rig rig;
        rig.host.mediaProbe.factsOf[rig.b] = failure(u"坏了"_s);
        for (const QString &verb : {u"wallpaper pause"_s, u"wallpaper stop"_s})
            QCOMPARE(rig.said(verb), u"1 动态壁纸没有在播放"_s);
        QCOMPARE(rig.said(u"wallpaper set "_s + rig.b), u"1 无法读取视频：坏了"_s);
        for (const QString &number : {u"0"_s, u"3"_s, u"%2"_s})
            QCOMPARE(rig.said(u"wallpaper set %1 --display "_s.arg(rig.a) + number),
                     u"1 没有编号为 "_s + number + u" 的显示器（共 2 块）"_s);
        rig.said(u"wallpaper set "_s + rig.a);
        QCOMPARE(rig.said(u"wallpaper play"_s), u"1 动态壁纸已在播放"_s);
        QCOMPARE(rig.said(u"wallpaper pause"_s), u"0 动态壁纸：已暂停"_s);
        QCOMPARE(rig.said(u"wallpaper pause"_s), u"1 动态壁纸已经暂停"_s);
        QCOMPARE(rig.said(u"wallpaper play"_s), u"0 动态壁纸：播放中"_s);
    }

    void changesHowItPlays()
    {
        Rig rig;
        const std::pair<QString, QString> rows[] = {
            {u"mute"_s, u"0 声音：静音（音量 30%）"_s},
            {u"volume"_s, u"0 声音：静音（音量 30%）"_s},
            {u"volume 45"_s, u"0 声音：45%"_s},
            {u"volume 101"_s, u"1 “101”不可用，请用：音量（0–100）"_s},
            {u"mute"_s, u"0 声音：静音（音量 45%）"_s},
            {u"unmute"_s, u"0 声音：45%"_s},
            {u"speed 1.5"_s, u"0 速度：1.50×"_s},
            {u"speed nan"_s, u"1 “nan”不可用，请用：倍数（0.25–2）"_s},
            {u"gravity 适应"_s, u"0 画面填充：适应"_s},
            {u"gravity resize"_s, u"0 画面填充：拉伸"_s},
            {u"gravity x"_s, u"1 “x”不可用，请用：填充|裁剪|适应|拉伸|居中"_s},
            {u"gravity"_s, u"0 画面填充：拉伸"_s},
            {u"shuffle on"_s, u"0 随机顺序：开"_s},
            {u"shuffle 1"_s, u"1 “1”不可用，请用：on|off"_s},
            {u"playlist 7"_s, u"0 轮换：每 7 分钟，随机顺序"_s},
            {u"playlist 0"_s, u"1 “0”不可用，请用：分钟（1–1440）|off"_s},
            {u"shuffle off"_s, u"0 随机顺序：关"_s},
            {u"playlist off"_s, u"0 轮换：关"_s},
            {u"next"_s, u"1 还没有选择壁纸文件夹"_s},
            {u"yield on"_s, u"0 其他程序发声时静音：开"_s},
            {u"yield ja"_s, u"1 “ja”不可用，请用：on|off"_s},
            {u"use off"_s, u"1 请用 --display 指定一块副显示器；主显示器用 wallpaper clear"_s},
            {u"use off --display 2"_s, u"0 副屏：不放壁纸"_s},
            {u"clear --display 2"_s, u"0 副屏：跟随主显示器"_s},
            {u"clear --display 2"_s, u"1 副屏 本来就跟随主显示器"_s},
            {u"clear"_s, u"1 主显示器没有选择视频"_s},
            {u"clear --display 3"_s, u"1 没有编号为 3 的显示器（共 2 块）"_s},
        };
        for (const auto &[verb, answer] : rows)
            QCOMPARE(rig.said(u"wallpaper "_s + verb), answer);
        rig.host.otherSound.play(true);
        QCOMPARE(rig.said(u"wallpaper volume"_s), u"0 声音：45%（其他程序正在发声，暂时静音）"_s);
        rig.wallpaper().preferences().setWallpaperFolder(rig.files.path());
        QCOMPARE(rig.said(u"wallpaper next"_s), u"0 正在播放："_s + rig.a);
        QCOMPARE(rig.reply.data.value(u"speed"_s), 1.5);
        QCOMPARE(rig.reply.data.value(u"gravity"_s), u"resize"_s);
    }

    void tellsItsStatus()
    {
        Rig rig;
        QCOMPARE(rig.said(u"wallpaper status"_s),
                 u"0 动态壁纸：未播放\n视频：未选择\n内容：视频壁纸\n"
                 "声音：30%\n速度：1.00×\n画面填充：裁剪\n轮换：关\n"
                 "供电：电源\n桌面图标：未盖住\n面板：未隐藏"
                 u"\n显示器：\n"
                 "  1  内建显示器（主）  未播放  未选择视频\n  2  副屏  未播放  跟随主显示器"_s);
        QCOMPARE(rig.reply.data.value(u"file"_s), QJsonValue());
        rig.said(u"wallpaper set --display 2 "_s + rig.b);
        rig.said(u"wallpaper set "_s + rig.a);
        rig.said(u"wallpaper pause"_s);
        rig.wallpaper().preferences().setHideDesktopIconsEnabled(true);
        rig.wallpaper().toggleHideDesktopIcons();
        rig.wallpaper().dock().toggleDockAutoHide();
        QCOMPARE(
            rig.said(u"wallpaper status"_s),
            u"0 动态壁纸：已暂停\n视频：%"
            u"1\n内容：视频壁纸\n声音：静音（音量 30%）\n速度：1.00×\n画面填充：裁剪\n轮换：关\n供电：电源\n"
            "桌面图标：已盖住\n面板：已隐藏\n显示器：\n"
            "  1  内建显示器（主）  已暂停  %1\n  2  副屏  已暂停  %2"_s.arg(rig.a, rig.b));
        const auto display = [&](int number, const QString &name, const QString &file) {
            return QJsonObject{{u"number"_s, number},    {u"id"_s, number}, {u"name"_s, name},
                               {u"main"_s, number == 1}, {u"file"_s, file}, {u"used"_s, true},
                               {u"playing"_s, true}};
        };
        const QJsonArray displays = {display(1, u"内建显示器"_s, rig.a), display(2, u"副屏"_s, rig.b)};
        QCOMPARE(rig.reply.data, (QJsonObject{{u"state"_s, u"playing"_s},
                                              {u"paused"_s, true},
                                              {u"file"_s, rig.a},
                                              {u"failure"_s, u""_s},
                                              {u"notice"_s, u""_s},
                                              {u"onBattery"_s, false},
                                              {u"volume"_s, 30},
                                              {u"muted"_s, true},
                                              {u"yieldsSound"_s, false},
                                              {u"speed"_s, 1.0},
                                              {u"gravity"_s, u"aspectFill"_s},
                                              {u"playlistMinutes"_s, 0},
                                              {u"shuffle"_s, false},
                                              {u"displays"_s, displays},
                                              {u"iconsCovered"_s, true},
                                              {u"dockHidden"_s, true},
                                              {u"contentMode"_s, u"video"_s}}));
    }
};

QTEST_GUILESS_MAIN(WallpaperCommandsTest)
#include "WallpaperCommandsTest.moc"
