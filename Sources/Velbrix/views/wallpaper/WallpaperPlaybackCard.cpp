#include "views/wallpaper/WallpaperPlaybackCard.h"

#include "app/AppServices.h"
#include "platform/Platform.h"
#include "views/Follow.h"
#include "views/components/PacedSlider.h"
#include "views/components/Parts.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/SettingRow.h"
#include "views/components/Switch.h"
#include "views/components/ValueSlider.h"

#include <QPushButton>

#include <algorithm>
#include <array>
#include <iterator>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr double speedStep = 0.05;                 // one place of the slider
constexpr std::array turns = {0, 5, 30, 60, 1440}; // minutes

QString turnText(int minutes)
{
    if (minutes == 0)
        return u"不换"_s;
    if (minutes == 1440)
        return u"每天"_s;
    return minutes % 60 == 0 ? u"%1 小时"_s.arg(minutes / 60) : u"%1 分钟"_s.arg(minutes);
}

} // namespace

WallpaperPlaybackCard::WallpaperPlaybackCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context)
{
    setObjectName(u"wallpaperPlayback"_s);
    addGravity();
    addSliders();
    addPlaylist();
    addReturn();
    addSwitches();
    addBattery();
}

void WallpaperPlaybackCard::addGravity()
{
    WallpaperPreferences &preferences = _context.services.wallpaper.preferences();
    QStringList names;
    for (const WallpaperGravity gravity : allWallpaperGravities)
        names.append(rawValue(gravity));
    auto *choice = new SegmentedChoice(u"wallpaperGravity"_s, names);
    addRow(new SettingRow(u"画面填充"_s, u"视频与屏幕比例不同时怎样铺满"_s, choice));
    connect(choice, &SegmentedChoice::wanted, this, [&preferences](int index) {
        preferences.setGravity(allWallpaperGravities.at(static_cast<std::size_t>(index)));
    });
    follow(preferences, &WallpaperPreferences::gravityChanged, this, [choice, &preferences] {
        const auto found = std::ranges::find(allWallpaperGravities, preferences.gravity());
        choice->setCurrent(static_cast<int>(std::distance(allWallpaperGravities.begin(), found)));
    });
}

void WallpaperPlaybackCard::addSliders()
{
    WallpaperPreferences &preferences = _context.services.wallpaper.preferences();
    Clock &clock = _context.services.clock;
    auto *volume = new ValueSlider(u"wallpaperVolume"_s, {0, 100, 30, u"%"_s});
    auto *row = new SettingRow(u"音量"_s, u"只有主屏的视频出声，副屏始终静音"_s, volume);
    row->setObjectName(u"wallpaperVolumeRow"_s);
    addRow(row);
    auto *volumePace = new PacedSlider(volume, clock, [&preferences](int percent) {
        preferences.setVolume(percent / 100.0);
        preferences.setMuted(false);
    });
    const SoundPolicy &sound = _context.services.wallpaper.sound();
    const auto tellSilence = [row, &preferences, &sound] {
        const QString reason = sound.silenceReason();
        if (preferences.isMuted())
            row->setNote(u"现在静音；拖动滑块或点“打开声音”后出声"_s, u"note"_s);
        else
            row->setNote(reason.isEmpty() ? QString() : reason + u"，壁纸暂时静音"_s, u"note"_s);
    };
    follow(preferences, &WallpaperPreferences::isMutedChanged, this, tellSilence);
    follow(sound, &SoundPolicy::silenceReasonChanged, this, tellSilence);
    follow(preferences, &WallpaperPreferences::volumeChanged, this,
           [volumePace, &preferences] { volumePace->show(qRound(preferences.volume() * 100)); });

    auto *yields = new Switch(_context.theme, u"wallpaperYieldsSound"_s);
    addRow(
        new SettingRow(u"其他程序发声时静音"_s, u"播放音乐、视频或通话时让出声音，结束后自动恢复"_s, yields));
    connect(yields, &Switch::wanted, this, [&preferences](bool on) { preferences.setYieldsSound(on); });
    follow(preferences, &WallpaperPreferences::yieldsSoundChanged, this,
           [yields, &preferences] { yields->setOn(preferences.yieldsSound()); });

    auto *speed = new ValueSlider(
        u"wallpaperSpeed"_s,
        {5, 40, 20, {}, [](int place) { return QString::number(place * speedStep, 'f', 2) + u"×"_s; }});
    addRow(new SettingRow(u"播放速度"_s, {}, speed));
    auto *speedPace =
        new PacedSlider(speed, clock, [&preferences](int place) { preferences.setSpeed(place * speedStep); });
    follow(preferences, &WallpaperPreferences::speedChanged, this,
           [speedPace, &preferences] { speedPace->show(qRound(preferences.speed() / speedStep)); });
}

void WallpaperPlaybackCard::addPlaylist()
{
    WallpaperPreferences &preferences = _context.services.wallpaper.preferences();
    QStringList names;
    for (const int minutes : turns)
        names.append(turnText(minutes));
    auto *turn = new SegmentedChoice(u"wallpaperPlaylist"_s, names);
    auto *row = new SettingRow(u"轮换壁纸文件夹里的视频"_s, {}, turn);
    row->setObjectName(u"wallpaperPlaylistRow"_s);
    addRow(row);
    auto *shuffled = new Switch(_context.theme, u"wallpaperShuffle"_s);
    auto *order = new SettingRow(u"随机顺序"_s, u"每个视频都放过一次，才会再放"_s, shuffled);
    addRow(order);
    connect(turn, &SegmentedChoice::wanted, this, [&preferences](int index) {
        preferences.setPlaylistMinutes(turns.at(static_cast<std::size_t>(index)));
    });
    connect(shuffled, &Switch::wanted, this,
            [&preferences](bool on) { preferences.setPlaylistShuffled(on); });
    follow(preferences, &WallpaperPreferences::playlistMinutesChanged, this, [turn, row, &preferences] {
        const int minutes = preferences.playlistMinutes();
        const auto found = std::ranges::find(turns, minutes);
        if (found != turns.end())
            turn->setCurrent(static_cast<int>(std::distance(turns.begin(), found)));
        // The command line knows more of them.
        row->setNote(found == turns.end() ? u"现在每 %1 换一个"_s.arg(turnText(minutes)) : QString(),
                     u"note"_s);
    });
    follow(preferences, &WallpaperPreferences::isPlaylistShuffledChanged, this,
           [shuffled, &preferences] { shuffled->setOn(preferences.isPlaylistShuffled()); });
}

void WallpaperPlaybackCard::addReturn()
{
    WallpaperPreferences &preferences = _context.services.wallpaper.preferences();
    auto *restore = new Switch(_context.theme, u"wallpaperAutoPlay"_s);
    addRow(new SettingRow(u"开机自动恢复壁纸"_s, u"启动 Velbrix 时自动播放上次的壁纸"_s, restore));
    connect(restore, &Switch::wanted, this, [&preferences](bool on) { preferences.setAutoPlay(on); });
    QPushButton *const atLogin =
        makeButton(_context.theme, {u"wallpaperLoginItem"_s, u"去“设置”打开"_s, {}, u"plain"_s});
    _login = new SettingRow(u"还没有打开“登录时启动”"_s,
                            u"开机后 Velbrix 不会自己启动，要先打开它，壁纸才会恢复"_s, atLogin);
    _login->setObjectName(u"wallpaperLogin"_s);
    addRow(_login);
    connect(atLogin, &QPushButton::clicked, this, [this] { _context.services.router.show(u"settings"_s); });
    follow(preferences, &WallpaperPreferences::autoPlayChanged, this, [this, restore, &preferences] {
        restore->setOn(preferences.autoPlay());
        showLogin();
    });
}

void WallpaperPlaybackCard::showLogin()
{
    const bool starts = _context.services.platform.loginItem->isEnabled();
    _login->setVisible(_context.services.wallpaper.preferences().autoPlay() && !starts);
}

// It is changed on another page, and by other programs.
void WallpaperPlaybackCard::showEvent(QShowEvent *event)
{
    Card::showEvent(event);
    showLogin();
}

void WallpaperPlaybackCard::addSwitches()
{
    WallpaperPreferences &preferences = _context.services.wallpaper.preferences();
    auto *covered = new Switch(_context.theme, u"wallpaperPauseWhenCovered"_s);
    addRow(new SettingRow(u"被窗口遮住时暂停"_s, u"窗口全屏或最大化后看不见的壁纸不耗电；露出后自动继续"_s,
                          covered));
    connect(covered, &Switch::wanted, this, [&preferences](bool on) { preferences.setPauseWhenCovered(on); });
    follow(preferences, &WallpaperPreferences::pauseWhenCoveredChanged, this,
           [covered, &preferences] { covered->setOn(preferences.pauseWhenCovered()); });
}

void WallpaperPlaybackCard::addBattery()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    auto *battery = new Switch(_context.theme, u"wallpaperPauseOnBattery"_s);
    auto *row = new SettingRow(u"使用电池时停止播放"_s, u"拔掉电源就停止，接上电源后自动恢复"_s, battery);
    row->setObjectName(u"wallpaperBattery"_s);
    addRow(row);
    connect(battery, &Switch::wanted, this,
            [&wallpaper](bool on) { wallpaper.preferences().setPauseOnBattery(on); });
    const auto note = [row, &wallpaper] {
        row->setNote(wallpaper.power().blocks() ? stoppedOnBattery : QString(), u"warning"_s);
    };
    connect(&wallpaper.power(), &PowerPolicy::isOnBatteryPowerChanged, row, note);
    follow(wallpaper.preferences(), &WallpaperPreferences::pauseOnBatteryChanged, this,
           [battery, note, &wallpaper] {
               battery->setOn(wallpaper.preferences().pauseOnBattery());
               note();
           });
}

} // namespace velbrix
