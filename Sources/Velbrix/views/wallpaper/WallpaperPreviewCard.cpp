#include "views/wallpaper/WallpaperPreviewCard.h"

#include "app/AppServices.h"
#include "app/HostText.h"
#include "app/WallpaperActions.h"
#include "platform/Platform.h"
#include "views/Follow.h"
#include "views/ShownText.h"
#include "views/Theme.h"
#include "views/components/EmptyState.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"
#include "views/components/SymbolLabel.h"
#include "views/wallpaper/PreviewStage.h"
#include "views/wallpaper/VideoPanel.h"
#include "views/wallpaper/WallpaperBadge.h"
#include "views/wallpaper/WallpaperWords.h"

#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

WallpaperPreviewCard::WallpaperPreviewCard(const ViewContext &context, QWidget *parent)
    : Card(parent),
      _context(context),
      _empty(new EmptyState(context.theme, u"wallpaperEmpty"_s,
                            {u"photo.on.rectangle"_s, u"还没有选择壁纸视频"_s,
                             u"把一个视频拖到这里，或从磁盘中选择"_s, u"选择视频…"_s})),
      _stage(new PreviewStage(context.theme, u"wallpaperStage"_s, 300))
{
    setObjectName(u"wallpaperPreview"_s);
    setAcceptDrops(true);
    addDetail(_empty);
    auto *picture = new QWidget;
    auto *room = new QVBoxLayout(picture);
    room->setContentsMargins(0, 12, 0, 4);
    room->addWidget(_stage);
    addDetail(picture);
    addDetail(makeWords());
    addDetail(makeFailure());
    addDetail(makeButtons());

    connect(_empty, &EmptyState::acted, this, &WallpaperPreviewCard::choose);
    connect(_stage, &PreviewStage::pressed, this, &WallpaperPreviewCard::togglePreview);
    followWallpaper();
    followPreview();
}

QWidget *WallpaperPreviewCard::makeWords()
{
    _words = new QWidget;
    _name = makeText({}, u"heading"_s);
    _name->setObjectName(u"wallpaperName"_s);
    _facts = makeText({}, u"note"_s);
    _facts->setObjectName(u"wallpaperFacts"_s);
    _hint = makeText({}, u"warning"_s);
    _hint->setObjectName(u"wallpaperNotice"_s);
    auto *line = new QHBoxLayout(_words);
    line->setContentsMargins(0, 8, 0, 4);
    line->setSpacing(16);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(2);
    for (QLabel *label : {_name, _facts, _hint})
        texts->addWidget(label);
    line->addLayout(texts, 1);
    _badge = new WallpaperBadge(_context.theme);
    line->addWidget(_badge, 0, Qt::AlignTop);
    return _words;
}

QWidget *WallpaperPreviewCard::makeFailure()
{
    QPushButton *const seen =
        makeButton(_context.theme, {u"wallpaperFailureSeen"_s, u"知道了"_s, {}, u"plain"_s});
    _failure = new SettingRow(u"视频无法播放"_s, {}, seen);
    _failure->setObjectName(u"wallpaperFailure"_s);
    _failure->setLeading(new SymbolLabel(_context.theme, u"xmark.circle.fill"_s, 22, ThemeColor::bad));
    connect(seen, &QPushButton::clicked, this, [this] { _context.services.wallpaper.dismissFailure(); });
    return _failure;
}

QWidget *WallpaperPreviewCard::makeButtons()
{
    _buttons = new QWidget;
    _toggle = makeButton(_context.theme, {u"wallpaperToggle"_s, u"播放"_s, u"play.fill"_s, u"primary"_s});
    _stop = makeButton(_context.theme, {u"wallpaperStop"_s, u"停止"_s, u"stop.fill"_s, {}});
    _next = makeButton(_context.theme, {u"wallpaperNext"_s, u"下一个"_s, u"forward.end.fill"_s, {}});
    _mute = makeButton(_context.theme, {u"wallpaperMute"_s, {}, {}, {}});
    QPushButton *const video =
        makeButton(_context.theme, {u"wallpaperChoose"_s, u"选择视频…"_s, u"folder"_s, {}});
    auto *line = new QHBoxLayout(_buttons);
    line->setContentsMargins(0, 4, 0, 12);
    line->setSpacing(8);
    line->addWidget(_toggle);
    line->addWidget(_stop);
    line->addWidget(_next);
    line->addWidget(_mute);
    line->addStretch(1);
    line->addWidget(video);
    connect(_toggle, &QPushButton::clicked, this,
            [this] { _context.services.wallpaperActions.togglePlayPause(); });
    connect(_stop, &QPushButton::clicked, this, [this] { _context.services.wallpaperActions.stop(); });
    WallpaperPreferences &preferences = _context.services.wallpaper.preferences();
    connect(_mute, &QPushButton::clicked, this,
            [&preferences] { preferences.setMuted(!preferences.isMuted()); });
    connect(_next, &QPushButton::clicked, this, [this] { _context.services.wallpaperActions.playNext(); });
    follow(preferences, &WallpaperPreferences::wallpaperFolderChanged, this,
           [this, &preferences] { _next->setVisible(preferences.wallpaperFolder().has_value()); });
    follow(preferences, &WallpaperPreferences::isMutedChanged, this, [this] { showSound(); });
    connect(&_context.theme, &Theme::changed, this, [this] { showSound(); });
    connect(video, &QPushButton::clicked, this, &WallpaperPreviewCard::choose);
    return _buttons;
}

void WallpaperPreviewCard::followWallpaper()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    const auto again = [this] {
        showVideo();
        showState();
    };
    connect(&wallpaper, &WallpaperController::stateChanged, this, again);
    connect(&wallpaper, &WallpaperController::isPausedChanged, this, again);
    connect(&wallpaper, &WallpaperController::isApplyingChanged, this, again);
    connect(&wallpaper.displays(), &ConnectedDisplays::connectedDisplaysChanged, this, again);
    connect(&wallpaper.preferences(), &WallpaperPreferences::gravityChanged, this, again);
    const WallpaperVideo &video = wallpaper.video();
    connect(&video, &WallpaperVideo::videoURLChanged, this, again);
    connect(&video, &WallpaperVideo::videoSizeChanged, this, again);
    connect(&video, &WallpaperVideo::videoFPSChanged, this, again);
    connect(&video, &WallpaperVideo::videoDurationChanged, this, again);
    connect(&video, &WallpaperVideo::isLoadingChanged, this, again);
    again();
    const auto noted = [this] {
        showState();
        showHint();
    };
    connect(&wallpaper, &WallpaperController::hintChanged, this, noted);
    connect(&wallpaper.power(), &PowerPolicy::isOnBatteryPowerChanged, this, noted);
    connect(&wallpaper.preferences(), &WallpaperPreferences::pauseOnBatteryChanged, this, noted);
}

void WallpaperPreviewCard::followPreview()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    PreviewPlayer &preview = wallpaper.preview();
    const auto again = [this] { showPicture(); };
    connect(&preview, &PreviewPlayer::frameChanged, this, again);
    connect(&wallpaper.video(), &WallpaperVideo::currentFrameChanged, this, again);
    connect(&preview, &PreviewPlayer::problemChanged, this, [this] { showHint(); });
    follow(preview, &PreviewPlayer::isPreviewPlayingChanged, this, again);
    showHint();
}

void WallpaperPreviewCard::choose()
{
    const QString title = hostText(u"选择一个视频作为 macOS 动态壁纸"_s, _context.services.platform.family);
    openVideoPanel(this, _context.services.wallpaper, title,
                   [this](const QString &path) { _context.services.wallpaperActions.playVideo(path); });
}

void WallpaperPreviewCard::togglePreview()
{
    PreviewPlayer &preview = _context.services.wallpaper.preview();
    const QString path = shown().path;
    if (preview.isPreviewPlaying() && preview.previewItemURL() == path)
        preview.pause();
    else
        preview.play(path);
}

WallpaperPreviewCard::Shown WallpaperPreviewCard::shown() const
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    const auto displays = wallpaper.displays().connectedDisplays();
    const auto find = [&displays](bool isMain) -> std::optional<WallpaperDisplayInfo> {
        const auto found = std::ranges::find_if(displays, [isMain](const WallpaperDisplayInfo &display) {
            return display.isMain == isMain && (isMain || display.videoPath);
        });
        return found == displays.end() ? std::nullopt : std::optional(*found);
    };
    const auto chosen = wallpaper.video().videoURL();
    if (const auto path = chosen ? chosen : wallpaper.preferences().lastVideoPath())
        return {*path, find(true)};
    if (const auto other = find(false))
        return {*other->videoPath, other};
    return {{}, find(true)};
}

void WallpaperPreviewCard::showState()
{
    const WallpaperController &wallpaper = _context.services.wallpaper;
    _badge->show(lookOf(wallpaper));
    const bool isPlaying = wallpaper.isShowing() && !wallpaper.isPaused();
    const QString text = isPlaying ? u"暂停"_s : wallpaper.isShowing() ? u"继续"_s : u"播放"_s;
    const bool canPress = wallpaper.canToggle();
    _toggle->setText(text);
    _toggle->setAccessibleName(text);
    _toggle->setEnabled(canPress);
    _toggle->setIcon(_context.theme.icon(isPlaying ? u"pause.fill"_s : u"play.fill"_s,
                                         canPress ? ThemeColor::onFill : ThemeColor::secondary));
    _stop->setEnabled(wallpaper.canStop());

    const WallpaperState state = wallpaper.state();
    QStringList refused;
    if (!state.videoURL.isEmpty())
        refused << fileName(state.videoURL);
    if (wallpaper.isShowing())
        refused << u"原来的壁纸仍在播放"_s;
    _failure->setDescription(refused.join(u" · "_s));
    _failure->setNote(state.message, u"bad"_s);
    _failure->setVisible(state.kind == WallpaperState::Kind::failed);
}

void WallpaperPreviewCard::showSound()
{
    const bool isMuted = _context.services.wallpaper.preferences().isMuted();
    const QString text = isMuted ? u"打开声音"_s : u"静音"_s;
    _mute->setText(text);
    _mute->setAccessibleName(text);
    _mute->setIcon(
        _context.theme.icon(isMuted ? u"speaker.slash.fill"_s : u"speaker.wave.2.fill"_s, ThemeColor::text));
}

void WallpaperPreviewCard::showVideo()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    const WallpaperVideo &video = wallpaper.video();
    const Shown now = shown();
    const QString &path = now.path;
    const bool isOther = now.display && !now.display->isMain;
    PreviewPlayer &preview = wallpaper.preview();
    if (const QString before = std::exchange(_previewed, path);
        before != path && preview.previewItemURL() == before)
        preview.stop();
    const bool isEmpty = path.isEmpty() && !video.isLoading() && !wallpaper.content().canShow();
    if (now.display && !now.display->frame.isEmpty())
        _stage->setDisplay(now.display->frame.size(), layerGravity(wallpaper.preferences().gravity()));
    _empty->setVisible(isEmpty);
    _stage->parentWidget()->setVisible(!isEmpty);
    _words->setVisible(!isEmpty);
    _buttons->setVisible(!isEmpty);
    _stage->setPlayable(isOther || video.videoURL().has_value());

    _name->setText(fileName(path));
    _name->setToolTip(plainTip(path));
    _name->setVisible(!path.isEmpty());
    QString facts = describeVideo(video.videoSize(), video.videoFPS(), video.videoDuration());
    if (video.isLoading())
        facts = u"正在读取视频…"_s;
    else if (isOther)
        facts = u"只在 %1 上播放"_s.arg(now.display->name);
    else if (path.isEmpty())
        facts = u"已选视频的显示器没有接上"_s;
    else if (!video.videoURL())
        facts = !wallpaper.files().isMissing(path) ? u"上次的视频"_s : u"上次的视频已不在原处，请重新选择"_s;
    _facts->setText(facts);
    _facts->setVisible(!facts.isEmpty());
    // Nobody else has its first picture.
    if (isOther && isVisible() && !preview.previewItemURL())
        preview.load(path);
    showPicture();
}

void WallpaperPreviewCard::showPicture()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    const PreviewPlayer &preview = wallpaper.preview();
    const bool isPreview = preview.previewItemURL() == _previewed;
    _stage->setPlaying(isPreview && preview.isPreviewPlaying());
    _stage->setPicture(isPreview && !preview.frame().isNull()
                           ? preview.frame()
                           : wallpaper.video().currentFrame().value_or(QImage()));
}

void WallpaperPreviewCard::showHint()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    QString text;
    if (wallpaper.preview().previewItemURL() == _previewed)
        text = wallpaper.preview().problem();
    if (text.isEmpty())
        text = wallpaper.power().blocks() ? stoppedOnBattery : wallpaper.hint();
    _hint->setText(text);
    _hint->setVisible(!_hint->text().isEmpty());
}

void WallpaperPreviewCard::dragEnterEvent(QDragEnterEvent *event)
{
    if (draggedVideo(event->mimeData(), _context.services.wallpaper.folder().extensions()).isEmpty())
        return;
    setLook(this, "dropping", true);
    event->acceptProposedAction();
}

void WallpaperPreviewCard::dragLeaveEvent(QDragLeaveEvent *)
{
    setLook(this, "dropping", false);
}

void WallpaperPreviewCard::dropEvent(QDropEvent *event)
{
    setLook(this, "dropping", false);
    if (const QString path =
            draggedVideo(event->mimeData(), _context.services.wallpaper.folder().extensions());
        !path.isEmpty()) {
        event->acceptProposedAction();
        _context.services.wallpaperActions.playVideo(path);
    }
}

void WallpaperPreviewCard::loadLastVideo()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    // A load under way would be outdated by this one.
    if (_hasLoadedLast || wallpaper.video().videoURL() || wallpaper.video().isLoading())
        return;
    // It is about to be played anyway.
    if (wallpaper.preferences().autoPlay() && !wallpaper.power().blocks())
        return;
    const auto last = wallpaper.preferences().lastVideoPath();
    if (!last || wallpaper.files().isMissing(*last) ||
        !_context.services.privacy.hasAcceptedFirstLaunchNotice())
        return;
    _hasLoadedLast = true;
    wallpaper.setVideo(*last);
}

void WallpaperPreviewCard::showEvent(QShowEvent *event)
{
    Card::showEvent(event);
    loadLastVideo();
    showVideo();
}

void WallpaperPreviewCard::hideEvent(QHideEvent *event)
{
    // Nobody looks at it any more.
    _context.services.wallpaper.preview().stop();
    Card::hideEvent(event);
}

} // namespace velbrix
