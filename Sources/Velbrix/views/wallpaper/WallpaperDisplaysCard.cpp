#include "views/wallpaper/WallpaperDisplaysCard.h"

#include "app/AppServices.h"
#include "app/WallpaperActions.h"
#include "views/Follow.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"
#include "views/components/SymbolLabel.h"
#include "views/wallpaper/DisplayMap.h"
#include "views/wallpaper/VideoPanel.h"
#include "views/wallpaper/WallpaperWords.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

// One display. It stays when only its video changes, and with it the focus.
class WallpaperDisplaysCard::Row final : public QWidget {
public:
    struct Buttons {
        QPushButton *choose;
        QPushButton *clear;
        QPushButton *use; // null for the main display
    };

    Row(const Theme &theme, const WallpaperDisplayInfo &display, const Buttons &buttons)
        : id(display.id), isMain(display.isMain), name(display.name), _clear(buttons.clear), _use(buttons.use)
    {
        setObjectName(u"display.%1"_s.arg(display.id));
        auto *pair = new QWidget;
        auto *stack = new QVBoxLayout(pair);
        stack->setContentsMargins(0, 0, 0, 0);
        stack->setSpacing(4);
        stack->addWidget(buttons.choose, 0, Qt::AlignRight);
        stack->addWidget(_clear, 0, Qt::AlignRight);
        if (_use)
            stack->addWidget(_use, 0, Qt::AlignRight);
        _row = new SettingRow(display.name, {}, pair);
        _row->setLeading(new SymbolLabel(theme, u"display"_s, 22, ThemeColor::secondary));
        auto *rows = new QVBoxLayout(this);
        rows->setContentsMargins(0, 0, 0, 0);
        rows->setSpacing(0);
        _line = makeHairline();
        rows->addWidget(_line);
        rows->addWidget(_row);
    }

    bool isOf(const WallpaperDisplayInfo &display) const
    {
        return id == display.id && isMain == display.isMain && name == display.name;
    }

    void show(const WallpaperDisplayInfo &display, bool isPaused, const QString &refusal)
    {
        const QString doing = isPaused ? u"已暂停"_s : u"播放中"_s;
        _row->setDescription(describeDisplay(display));
        if (!refusal.isEmpty())
            _row->setNote(refusal, u"bad"_s);
        else
            _row->setNote(display.isPlaying ? doing : QString(), isPaused ? u"warning"_s : u"good"_s);
        _clear->setVisible(display.videoPath.has_value() && display.isUsed);
        if (_use)
            _use->setText(display.isUsed ? u"该屏不放壁纸"_s : u"该屏恢复放壁纸"_s);
    }

    void setLine(bool visible) { _line->setVisible(visible); }

    const quint32 id;
    const bool isMain;
    const QString name;

private:
    SettingRow *_row;
    QFrame *_line;
    QPushButton *_clear;
    QPushButton *_use;
};

WallpaperDisplaysCard::WallpaperDisplaysCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context), _list(new QWidget)
{
    setObjectName(u"wallpaperDisplays"_s);
    addRow(makeTop());
    _map = new DisplayMap(context.theme);
    addDetail(_map);
    auto *rows = new QVBoxLayout(_list);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    addRow(_list);
    auto *hint = makeText(u"接上第二块显示器后点「检测多显示器」。插拔屏幕时也会自动适配："
                          u"新增屏幕会按该屏已保存视频（没有则跟主屏）开播。"_s,
                          u"note"_s);
    hint->setContentsMargins(0, 10, 0, 10);
    addRow(hint);
    WallpaperController &wallpaper = context.services.wallpaper;
    connect(&wallpaper, &WallpaperController::isPausedChanged, this, [this] { refresh(); });
    follow(wallpaper.displays(), &ConnectedDisplays::connectedDisplaysChanged, this, [this] { refresh(); });
}

QWidget *WallpaperDisplaysCard::makeTop()
{
    auto *top = new QWidget;
    top->setMinimumHeight(44);
    _count = makeText({}, u"body"_s);
    _count->setObjectName(u"displayCount"_s);
    QPushButton *const detect = makeButton(
        _context.theme, {u"detectDisplays"_s, u"检测多显示器"_s, u"arrow.clockwise"_s, u"plain"_s});
    auto *line = new QHBoxLayout(top);
    line->setContentsMargins(0, 8, 0, 8);
    line->addWidget(_count, 1);
    line->addWidget(detect);
    connect(detect, &QPushButton::clicked, this,
            [this] { _context.services.wallpaper.displays().detectDisplays(); });
    return top;
}

WallpaperDisplaysCard::Row *WallpaperDisplaysCard::makeRow(const WallpaperDisplayInfo &display)
{
    Row::Buttons buttons{};
    const QString text = display.isMain ? u"选择主屏视频"_s : u"选择该屏视频"_s;
    buttons.choose = makeButton(_context.theme, {u"displayChoose.%1"_s.arg(display.id), text, {}, {}});
    buttons.choose->setAccessibleDescription(display.name);
    connect(buttons.choose, &QPushButton::clicked, this, [this, display] { chooseFor(display); });
    const QString forget = display.isMain ? u"不再使用主屏视频"_s : u"清除该屏专属视频，回落主屏视频"_s;
    buttons.clear =
        makeButton(_context.theme, {u"displayClear.%1"_s.arg(display.id), forget, {}, u"plain"_s});
    buttons.clear->setAccessibleDescription(display.name);
    connect(buttons.clear, &QPushButton::clicked, this,
            [this, id = display.id] { _context.services.wallpaper.clearDisplayVideo(id); });
    if (!display.isMain) {
        buttons.use = makeButton(_context.theme, {u"displayUse.%1"_s.arg(display.id), {}, {}, u"plain"_s});
        buttons.use->setAccessibleDescription(display.name);
        connect(buttons.use, &QPushButton::clicked, this, [this, id = display.id] {
            WallpaperPreferences &preferences = _context.services.wallpaper.preferences();
            preferences.setDisplayUsed(id, preferences.unusedDisplays().contains(id));
        });
    }
    return new Row(_context.theme, display, buttons);
}

void WallpaperDisplaysCard::chooseFor(const WallpaperDisplayInfo &display)
{
    openVideoPanel(this, _context.services.wallpaper,
                   display.isMain ? u"选择主显示器视频壁纸"_s : u"选择副显示器视频壁纸"_s,
                   [this, id = display.id](const QString &path) { play(id, path); });
}

void WallpaperDisplaysCard::play(quint32 displayID, const QString &path)
{
    _refusals.remove(displayID);
    auto playing = _context.services.wallpaperActions.playVideoOn(displayID, path);
    playing.then([self = QPointer(this), displayID, path](const WallpaperActions::Outcome &outcome) {
        if (!self || outcome)
            return;
        self->_refusals.insert(displayID, u"%1：%2"_s.arg(fileName(path), outcome.error().message));
        self->refresh();
    });
}

void WallpaperDisplaysCard::refresh()
{
    const QList<WallpaperDisplayInfo> displays = _context.services.wallpaper.displays().connectedDisplays();
    _count->setText(countDisplays(displays.size()));
    const bool isPaused = _context.services.wallpaper.isPaused();
    _map->show(displays, isPaused);
    _map->setVisible(displays.size() > 1);
    const bool isSame = std::ranges::equal(
        _rows, displays, [](const Row *row, const auto &display) { return row->isOf(display); });
    if (!isSame) {
        for (Row *row : std::as_const(_rows)) {
            row->hide();
            _list->layout()->removeWidget(row);
            row->deleteLater(); // one of its buttons may have been clicked just now
        }
        _rows.clear();
        for (const WallpaperDisplayInfo &display : displays) {
            Row *const row = makeRow(display);
            row->setLine(!_rows.isEmpty());
            _list->layout()->addWidget(row);
            _rows.append(row);
        }
    }
    for (qsizetype index = 0; index < displays.size(); ++index)
        _rows[index]->show(displays[index], isPaused, _refusals.value(displays[index].id));
    _list->setVisible(!displays.isEmpty());
}

} // namespace velbrix
