#include "views/recorder/RecordTargetCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/components/EmptyState.h"
#include "views/components/JobBar.h"
#include "views/components/Parts.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/SettingRow.h"
#include "views/components/ThumbnailGrid.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {

RecordTargetCard::RecordTargetCard(const ViewContext &context, QWidget *parent)
    : Card(parent),
      _context(context),
      _windows(new QWidget),
      _grid(new ThumbnailGrid(context.theme, u"windowGrid"_s, u"macwindow"_s)),
      _empty(new EmptyState(context.theme, u"windowsEmpty"_s,
                            {u"macwindow"_s, u"没有找到窗口"_s, u"打开目标应用后点刷新"_s, {}})),
      _job(new JobBar(context.theme, u"thumbnailJob"_s))
{
    SegmentedChoice *const mode = addMode();
    addWindows();
    RecorderPreferences &preferences = context.services.recorder.preferences();
    follow(preferences, &RecorderPreferences::recordModeChanged, this, [this, mode, &preferences] {
        mode->setCurrent(preferences.recordMode() == RecordMode::window ? 1 : 0);
        showMode();
    });
    followWindows();
}

SegmentedChoice *RecordTargetCard::addMode()
{
    QStringList names;
    for (const RecordMode mode : allRecordModes)
        names.append(rawValue(mode));
    auto *choice = new SegmentedChoice(u"recordMode"_s, names);
    addRow(new SettingRow(u"录制模式"_s, u"全屏录制主显示器，或只录制一个窗口"_s, choice));
    connect(choice, &SegmentedChoice::wanted, this, [this](int index) {
        _context.services.recorder.preferences().setRecordMode(
            allRecordModes.at(static_cast<std::size_t>(index)));
    });
    return choice;
}

void RecordTargetCard::addWindows()
{
    _grid->setAccessibleName(u"可录制的窗口"_s);
    QPushButton *const refresh =
        makeButton(_context.theme, {u"refreshWindows"_s, u"刷新"_s, u"arrow.clockwise"_s, u"plain"_s});
    auto *rows = new QVBoxLayout(_windows);
    rows->setContentsMargins(0, 8, 0, 8);
    rows->setSpacing(4);
    auto *top = new QHBoxLayout;
    top->addWidget(makeText(u"选择窗口"_s, u"body"_s), 1);
    top->addWidget(refresh);
    rows->addLayout(top);
    rows->addWidget(_grid);
    rows->addWidget(_empty);
    rows->addWidget(_job);
    addRow(_windows);
    connect(refresh, &QPushButton::clicked, this,
            [this] { _context.services.recorder.windows().refreshWindows(); });
}

void RecordTargetCard::followWindows()
{
    WindowCatalog &catalog = _context.services.recorder.windows();
    connect(_grid, &ThumbnailGrid::wanted, this,
            [&catalog](const QString &id) { catalog.select(std::optional(id)); });
    connect(_job, &JobBar::cancelled, this, [&catalog] { catalog.cancelThumbnails(); });
    connect(&_context.services.privacy, &PrivacyManager::hasAcceptedFirstLaunchNoticeChanged, this,
            [this] { showMode(); });
    follow(catalog, &WindowCatalog::availableWindowsChanged, this, [this] { showWindows(); });
    follow(catalog, &WindowCatalog::windowThumbnailsChanged, this, [this, &catalog] {
        _grid->setPictures(catalog.windowThumbnails());
        showJob();
    });
    follow(catalog, &WindowCatalog::isLoadingWindowThumbsChanged, this, [this] { showJob(); });
    follow(catalog, &WindowCatalog::selectedWindowIDChanged, this,
           [this, &catalog] { _grid->setChosen(catalog.selectedWindowID()); });
}

void RecordTargetCard::showEvent(QShowEvent *event)
{
    Card::showEvent(event);
    showMode();
}

void RecordTargetCard::hideEvent(QHideEvent *event)
{
    // Nobody looks at the pictures any more.
    _context.services.recorder.windows().cancelThumbnails();
    Card::hideEvent(event);
}

void RecordTargetCard::showMode()
{
    const bool isWindowMode = _context.services.recorder.preferences().recordMode() == RecordMode::window;
    _windows->setVisible(isWindowMode);
    // Nothing looks at the screen before the user has agreed to the statement.
    if (!isVisible() || !_context.services.privacy.hasAcceptedFirstLaunchNotice())
        return;
    if (isWindowMode)
        _context.services.recorder.windows().refreshWindows();
    else
        _context.services.recorder.windows().cancelThumbnails();
}

void RecordTargetCard::showWindows()
{
    const QList<WindowItem> windows = _context.services.recorder.windows().availableWindows();
    QList<ThumbnailItem> items;
    for (const WindowItem &window : windows)
        items.append({window.id, window.title, window.appName});
    _grid->setItems(items);
    _grid->setVisible(!items.isEmpty());
    _empty->setVisible(items.isEmpty());
}

void RecordTargetCard::showJob()
{
    const WindowCatalog &catalog = _context.services.recorder.windows();
    _job->setJob(u"生成缩略图…"_s, static_cast<int>(catalog.windowThumbnails().size()),
                 static_cast<int>(catalog.availableWindows().size()));
    _job->setVisible(catalog.isLoadingWindowThumbs());
}

} // namespace velbrix
