#include "views/wallpaper/WallpaperFolderCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/Theme.h"
#include "views/components/EmptyState.h"
#include "views/components/JobBar.h"
#include "views/components/Parts.h"
#include "views/components/PathField.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/ThumbnailGrid.h"
#include "views/wallpaper/PickedVideo.h"
#include "views/wallpaper/WallpaperWords.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

// "旅行/海边" below the folder, else what kind of file it is.
QString placeOf(const QString &path, const QString &folder)
{
    const qsizetype end = path.lastIndexOf(u'/');
    const qsizetype start = folder.size() + 1;
    if (path.startsWith(folder) && end > start)
        return path.sliced(start, end - start);
    const QString kind = path.sliced(path.lastIndexOf(u'.') + 1).toUpper();
    return kind + (kind == u"GIF" ? u" 动图"_s : u" 视频"_s);
}

QVBoxLayout *makeRows(QWidget *row, int above, int below)
{
    auto *rows = new QVBoxLayout(row);
    rows->setContentsMargins(0, above, 0, below);
    rows->setSpacing(8);
    return rows;
}

} // namespace

WallpaperFolderCard::WallpaperFolderCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context)
{
    setObjectName(u"wallpaperFolder"_s);
    addFolder();
    addTargets();
    addVideos();
    followFolder();
}

WallpaperFolderCard::~WallpaperFolderCard() = default;

void WallpaperFolderCard::addFolder()
{
    const Theme &theme = _context.theme;
    _unchosen = new EmptyState(theme, u"folderUnchosen"_s,
                               {u"folder"_s, u"还没有选择壁纸文件夹"_s,
                                u"选择后，这里列出其中的视频，点一下预览，双击换壁纸"_s, u"选择文件夹…"_s});
    addRow(_unchosen);
    _top = new QWidget;
    _field = new PathField(theme, u"wallpaperFolderField"_s, u"选择壁纸文件夹（将扫描其中的视频文件）"_s);
    _field->setAccessibleName(u"壁纸文件夹"_s);
    _count = makeText({}, u"body"_s);
    _count->setObjectName(u"folderCount"_s);
    _problem = makeText({}, u"bad"_s);
    _problem->setObjectName(u"folderProblem"_s);
    _search = new QLineEdit;
    _search->setObjectName(u"folderSearch"_s);
    _search->setAccessibleName(u"搜索视频"_s);
    _search->setPlaceholderText(u"搜索视频"_s);
    _search->setClearButtonEnabled(true);
    _search->addAction(theme.icon(u"magnifyingglass"_s, ThemeColor::secondary), QLineEdit::LeadingPosition);
    QPushButton *const rescan =
        makeButton(theme, {u"folderRescan"_s, u"重新扫描"_s, u"arrow.clockwise"_s, u"plain"_s});
    _order = new SegmentedChoice(u"folderOrder"_s, {u"名称"_s, u"日期"_s, u"时长"_s, u"大小"_s});
    _order->setAccessibleName(u"排序"_s);
    _job = new JobBar(theme, u"folderScan"_s);
    _job->setJob(u"正在扫描文件夹…"_s, 0, 0);
    auto *rows = makeRows(_top, 8, 10);
    auto *line = new QHBoxLayout;
    line->addWidget(_count, 1);
    line->addWidget(rescan);
    rows->addLayout(line);
    rows->addWidget(_field);
    rows->addWidget(_problem);
    rows->addWidget(_job);
    _tools = new QWidget;
    auto *tools = new QHBoxLayout(_tools);
    tools->setContentsMargins(0, 0, 0, 0);
    tools->addWidget(_search, 1);
    tools->addWidget(_order);
    rows->addWidget(_tools);
    addRow(_top);

    VideoFolder &folder = _context.services.wallpaper.folder();
    connect(_search, &QLineEdit::textChanged, this, [this] { showVideos(); });
    connect(_order, &SegmentedChoice::wanted, this,
            [&folder](int index) { folder.setOrder(allVideoOrders.at(static_cast<std::size_t>(index))); });
    connect(_unchosen, &EmptyState::acted, _field, &PathField::choose);
    connect(_field, &PathField::wanted, this, [&folder](const QString &path) { folder.choose(path); });
    connect(_field, &PathField::revealWanted, this, [this](const QString &path) { _context.reveal(path); });
    connect(rescan, &QPushButton::clicked, this, [&folder] { folder.rescan(); });
    connect(_job, &JobBar::cancelled, this, [&folder] { folder.cancelScan(); });
}

void WallpaperFolderCard::addTargets()
{
    _targetRow = new QWidget;
    _targetRow->setObjectName(u"targetRow"_s);
    _targetRow->setMinimumHeight(44);
    _targetLine = new QHBoxLayout(_targetRow);
    _targetLine->setContentsMargins(0, 8, 0, 8);
    _targetLine->addWidget(makeText(u"点选的视频用于"_s, u"body"_s), 1);
    addRow(_targetRow);
}

void WallpaperFolderCard::addVideos()
{
    const Theme &theme = _context.theme;
    _videos = new QWidget;
    _grid = new ThumbnailGrid(theme, u"videoGrid"_s, u"film"_s);
    _grid->setAccessibleName(u"文件夹中的视频"_s);
    _picked = new PickedVideo(_context);
    auto *rows = makeRows(_videos, 10, 10);
    rows->addWidget(_picked);
    rows->addWidget(_grid);
    addRow(_videos);
    const QStringList extensions = _context.services.wallpaper.folder().extensions();
    _empty = new EmptyState(theme, u"folderEmpty"_s,
                            {u"film"_s, u"这个文件夹里没有视频"_s,
                             u"能识别 %1"_s.arg(extensions.join(u"、"_s)), u"换一个文件夹…"_s});
    addRow(_empty);
    connect(_empty, &EmptyState::acted, _field, &PathField::choose);
    connect(_grid, &ThumbnailGrid::wanted, _picked, &PickedVideo::pick);
    connect(_grid, &ThumbnailGrid::confirmed, _picked, &PickedVideo::apply);
    connect(_grid, &ThumbnailGrid::visibleIdsChanged, this, [this] { lookSoon(); });
}

void WallpaperFolderCard::followFolder()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    const VideoFolder &folder = wallpaper.folder();
    connect(&folder, &VideoFolder::thumbnailChanged, this,
            [this](const QString &path) { showThumbnail(path); });
    const auto again = [this] { showFolder(); };
    connect(&folder, &VideoFolder::problemChanged, this, again);
    connect(&folder, &VideoFolder::isScanningChanged, this, again);
    connect(&folder, &VideoFolder::lengthsLeftChanged, this, again);
    // What could not be read may be readable by then.
    connect(&folder, &VideoFolder::scanned, this, [this] { lookSoon(); });
    follow(wallpaper.preferences(), &WallpaperPreferences::videoOrderChanged, this, [this] {
        const VideoOrder order = _context.services.wallpaper.preferences().videoOrder();
        _order->setCurrent(
            static_cast<int>(std::ranges::find(allVideoOrders, order) - allVideoOrders.begin()));
    });
    connect(&wallpaper.preferences(), &WallpaperPreferences::wallpaperFolderChanged, this, again);
    follow(folder, &VideoFolder::folderVideosChanged, this, [this] { showVideos(); });

    const auto chosen = [this] { showChosen(); };
    connect(&wallpaper.video(), &WallpaperVideo::videoURLChanged, this, chosen);
    connect(&wallpaper.displays(), &ConnectedDisplays::multiDisplayTargetIDChanged, this,
            [this] { showTargets(); });
    follow(wallpaper.displays(), &ConnectedDisplays::connectedDisplaysChanged, this,
           [this] { showTargets(); });
}

void WallpaperFolderCard::showFolder()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    const VideoFolder &folder = wallpaper.folder();
    const auto path = wallpaper.preferences().wallpaperFolder();
    const qsizetype count = folder.folderVideos().size();
    const bool hasProblem = !folder.problem().isEmpty();
    _field->setPath(path.value_or(QString()));
    _unchosen->setVisible(!path);
    _top->setVisible(path.has_value());
    const qsizetype found = _grid->model()->rowCount();
    QStringList words{count == 0 ? u"文件夹"_s : u"共 %1 个视频"_s.arg(count)};
    if (found != count)
        words.append(u"找到 %1 个"_s.arg(found));
    if (folder.lengthsLeft() > 0)
        words.append(u"正在读取时长，还剩 %1 个"_s.arg(folder.lengthsLeft()));
    _count->setText(words.join(u'，'));
    _tools->setVisible(count > 1);
    _problem->setText(folder.problem());
    _problem->setVisible(hasProblem);
    _job->setVisible(folder.isScanning());
    _videos->setVisible(count > 0);
    _empty->setVisible(path && count == 0 && _isScanned && !hasProblem && !folder.isScanning());
}

void WallpaperFolderCard::showVideos()
{
    const QString folder = _context.services.wallpaper.preferences().wallpaperFolder().value_or(QString());
    const QStringList videos = _context.services.wallpaper.folder().folderVideos();
    QList<ThumbnailItem> items;
    items.reserve(videos.size());
    // In the names of the folders below, too.
    for (const QString &path : videos) {
        if (path.mid(folder.size()).contains(_search->text(), Qt::CaseInsensitive))
            items.append({path, fileName(path), placeOf(path, folder)});
    }
    _grid->setItems(items);
    showFolder();
    lookSoon();
}

void WallpaperFolderCard::showTargets()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    QStringList names{u"主屏"_s};
    QList<std::optional<quint32>> targets{std::nullopt};
    const auto displays = wallpaper.displays().connectedDisplays();
    for (const WallpaperDisplayInfo &display : displays) {
        if (display.isMain)
            continue;
        names.append(display.name);
        targets.append(display.id);
    }
    if (!_target || _targetNames != names) {
        if (_target) {
            _target->hide();
            _target->deleteLater();
        }
        _targetNames = names;
        _target = new SegmentedChoice(u"wallpaperTarget"_s, names);
        _target->setAccessibleName(u"点选的视频用于"_s);
        _targetLine->addWidget(_target);
    }
    _target->disconnect(this);
    _target->setCurrent(static_cast<int>(
        std::max<qsizetype>(targets.indexOf(wallpaper.displays().multiDisplayTargetID()), 0)));
    connect(_target, &SegmentedChoice::wanted, this,
            [&wallpaper, targets](int index) { wallpaper.displays().setMultiDisplayTarget(targets[index]); });
    _targetRow->setVisible(targets.size() > 1);
    showChosen();
}

void WallpaperFolderCard::showChosen()
{
    const auto target = _context.services.wallpaper.displays().target();
    _grid->setChosen(target ? target->videoPath : std::nullopt);
}

void WallpaperFolderCard::lookSoon()
{
    fillFromMemory(_grid->visibleIds());
    if (!_look)
        _look = _context.services.clock.after(60ms, [this] { look(); });
}

void WallpaperFolderCard::fillFromMemory(const QStringList &ids)
{
    for (const QString &path : ids)
        showThumbnail(path);
}

void WallpaperFolderCard::look()
{
    _look.reset();
    if (!isVisible())
        return;
    const QStringList ids = _grid->visibleIds();
    _grid->keepPictures(ids);
    fillFromMemory(ids);
    _context.services.wallpaper.folder().wantThumbnails(ids);
}

void WallpaperFolderCard::showThumbnail(const QString &path)
{
    const VideoFolder &folder = _context.services.wallpaper.folder();
    if (folder.hasNoThumbnail(path))
        _grid->setProblem(path, u"无法读取"_s);
    else if (const QImage picture = folder.thumbnail(path); !picture.isNull())
        _grid->setPicture(path, picture, lengthText(folder.length(path)));
}

void WallpaperFolderCard::showEvent(QShowEvent *event)
{
    Card::showEvent(event);
    VideoFolder &folder = _context.services.wallpaper.folder();
    if (!_isScanned) {
        _isScanned = true;
        folder.rescan();
        showFolder();
    }
    folder.setWatched(true);
    lookSoon();
}

void WallpaperFolderCard::hideEvent(QHideEvent *event)
{
    // Nobody looks at the pictures any more.
    _look.reset();
    _grid->keepPictures({});
    _context.services.wallpaper.folder().setWatched(false);
    _context.services.wallpaper.folder().dropThumbnails();
    Card::hideEvent(event);
}

} // namespace velbrix
