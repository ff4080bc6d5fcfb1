#include "views/wallpaper/DesktopTidyCard.h"

#include "app/AppServices.h"
#include "app/HostText.h"
#include "platform/Platform.h"
#include "views/Follow.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"
#include "views/components/Switch.h"

#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString keyWords(const HotkeyManager &hotkeys, HotkeyAction action)
{
    if (!hotkeys.isAvailable(action))
        return {};
    const QString chord = hotkeys.chordText(action);
    const QString problem = hotkeys.problem(action);
    return problem.isEmpty() ? u"快捷键 %1"_s.arg(chord) : u"快捷键 %1 未生效：%2"_s.arg(chord, problem);
}

} // namespace

DesktopTidyCard::DesktopTidyCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context)
{
    setObjectName(u"desktopTidy"_s);
    addIcons();
    addDock();
    WallpaperController &wallpaper = context.services.wallpaper;
    const auto icons = [this] { showIcons(); };
    connect(&wallpaper, &WallpaperController::stateChanged, this, icons);
    connect(&wallpaper.displays(), &ConnectedDisplays::connectedDisplaysChanged, this, icons);
    connect(&wallpaper.preferences(), &WallpaperPreferences::hideDesktopIconsEnabledChanged, this, icons);
    connect(&wallpaper.preferences(), &WallpaperPreferences::isHidingDesktopIconsChanged, this, icons);
    showIcons();
    const auto dock = [this] { showDock(); };
    connect(&wallpaper.dock(), &DockHiding::isWorkingChanged, this, dock);
    connect(&wallpaper.dock(), &DockHiding::problemChanged, this, dock);
    connect(&wallpaper.preferences(), &WallpaperPreferences::isDockAutoHiddenChanged, this, dock);
    showDock();
    const HotkeyManager &hotkeys = context.services.hotkeys;
    const auto keys = [this] { showHotkeys(); };
    connect(&hotkeys, &HotkeyManager::hideDesktopIconsHotkeyChanged, this, keys);
    connect(&hotkeys, &HotkeyManager::hideDockHotkeyChanged, this, keys);
    follow(hotkeys, &HotkeyManager::problemsChanged, this, keys);
}

void DesktopTidyCard::addIcons()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    auto *allowed = new Switch(_context.theme, u"hideDesktopIconsEnabled"_s);
    _icons = new SettingRow(u"隐藏桌面文件"_s, u"开启后可用快捷键盖住桌面文件，并屏蔽触控/点击"_s, allowed);
    addRow(_icons);
    connect(allowed, &Switch::wanted, this,
            [&wallpaper](bool on) { wallpaper.preferences().setHideDesktopIconsEnabled(on); });
    follow(wallpaper.preferences(), &WallpaperPreferences::hideDesktopIconsEnabledChanged, this,
           [allowed, &wallpaper] { allowed->setOn(wallpaper.preferences().hideDesktopIconsEnabled()); });

    _coverButton = makeButton(_context.theme, {u"coverIcons"_s, {}, {}, {}});
    _cover = new SettingRow(u"桌面文件"_s, {}, _coverButton);
    _cover->setObjectName(u"coverIconsRow"_s);
    addRow(_cover);
    connect(_coverButton, &QPushButton::clicked, this, [&wallpaper] { wallpaper.toggleHideDesktopIcons(); });
}

void DesktopTidyCard::addDock()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    _dockButton = makeButton(_context.theme, {u"dockToggle"_s, {}, {}, {}});
    _dock = new SettingRow(hostText(u"隐藏 Dock"_s, _context.services.platform.family), {}, _dockButton);
    _dock->setObjectName(u"dockRow"_s);
    addRow(_dock);
    connect(_dockButton, &QPushButton::clicked, this,
            [&wallpaper] { wallpaper.dock().toggleDockAutoHide(); });
}

void DesktopTidyCard::showIcons()
{
    const WallpaperController &wallpaper = _context.services.wallpaper;
    const WallpaperPreferences &preferences = wallpaper.preferences();
    const bool isCovering = preferences.coversDesktopIcons();
    _cover->setVisible(preferences.hideDesktopIconsEnabled());
    const QString text = isCovering ? u"显示桌面文件"_s : u"盖住桌面文件"_s;
    _coverButton->setText(text);
    _coverButton->setAccessibleName(text);
    if (!wallpaper.isShowing())
        _cover->setNote(isCovering ? u"壁纸没有在播放，播放后才会盖住桌面文件"_s
                                   : u"需要先播放壁纸，才看得到效果"_s,
                        u"warning"_s);
    else
        _cover->setNote(isCovering ? u"已盖住桌面图标，并屏蔽点击（点不到桌面文件）"_s : QString(),
                        u"good"_s);
}

void DesktopTidyCard::showHotkeys()
{
    const HotkeyManager &hotkeys = _context.services.hotkeys;
    const bool works = hotkeys.problem(HotkeyAction::hideDesktopIcons).isEmpty();
    _icons->setNote(keyWords(hotkeys, HotkeyAction::hideDesktopIcons), works ? u"note"_s : u"warning"_s);
    const QString dockKey = keyWords(hotkeys, HotkeyAction::hideDock);
    const QString meaning = u"打开系统的自动隐藏，恢复时还原你原来的设置"_s;
    _dock->setDescription(dockKey.isEmpty() ? meaning : meaning + u"。"_s + dockKey);
}

void DesktopTidyCard::showDock()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    const DockHiding &dock = wallpaper.dock();
    QString text = wallpaper.preferences().isDockAutoHidden() ? u"恢复 Dock"_s : u"立即隐藏 Dock"_s;
    if (dock.isWorking())
        text = u"正在处理…"_s;
    text = hostText(text, _context.services.platform.family);
    _dockButton->setText(text);
    _dockButton->setAccessibleName(text);
    _dockButton->setEnabled(!dock.isWorking());
    _dock->setNote(dock.problem(), u"bad"_s);
}

} // namespace velbrix
