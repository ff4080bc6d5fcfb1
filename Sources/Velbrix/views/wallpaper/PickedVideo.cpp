#include "views/wallpaper/PickedVideo.h"

#include "app/AppServices.h"
#include "platform/Platform.h"
#include "views/Theme.h"
#include "views/components/ElidedLabel.h"
#include "views/components/Parts.h"
#include "views/wallpaper/PreviewStage.h"
#include "views/wallpaper/WallpaperWords.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

PickedVideo::PickedVideo(const ViewContext &context, QWidget *parent)
    : QWidget(parent),
      _context(context),
      _stage(new PreviewStage(context.theme, u"pickedStage"_s, 108)),
      _name(new ElidedLabel({}, u"heading"_s, Qt::ElideMiddle)),
      _note(makeText({}, u"note"_s)),
      _problem(makeText({}, u"bad"_s)),
      _apply(makeButton(context.theme, {u"pickedApply"_s, u"设为壁纸"_s, {}, u"primary"_s}))
{
    setObjectName(u"pickedVideo"_s);
    _name->setObjectName(u"pickedName"_s);
    _problem->setObjectName(u"pickedProblem"_s);
    _stage->setFixedSize(192, 108);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addStretch(1);
    for (QLabel *label : {static_cast<QLabel *>(_name), _note, _problem})
        texts->addWidget(label);
    texts->addStretch(1);
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(16);
    line->addWidget(_stage);
    line->addLayout(texts, 1);
    line->addWidget(_apply);
    connect(_stage, &PreviewStage::pressed, this, &PickedVideo::togglePreview);
    connect(_apply, &QPushButton::clicked, this, &PickedVideo::apply);

    WallpaperController &wallpaper = context.services.wallpaper;
    const auto again = [this] { show(); };
    connect(&wallpaper, &WallpaperController::stateChanged, this, again);
    connect(&wallpaper.displays(), &ConnectedDisplays::connectedDisplaysChanged, this, again);
    connect(&wallpaper.displays(), &ConnectedDisplays::multiDisplayTargetIDChanged, this, again);
    connect(&wallpaper.preferences(), &WallpaperPreferences::gravityChanged, this, again);
    followPreview();
    show();
}

PickedVideo::~PickedVideo() = default;

void PickedVideo::followPreview()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    const auto picture = [this] { showPicture(); };
    connect(&wallpaper.preview(), &PreviewPlayer::frameChanged, this, picture);
    connect(&wallpaper.preview(), &PreviewPlayer::isPreviewPlayingChanged, this, picture);
    connect(&wallpaper.preview(), &PreviewPlayer::problemChanged, this, [this] { show(); });
    connect(&wallpaper.folder(), &VideoFolder::thumbnailChanged, this, picture);
}

void PickedVideo::pick(const QString &path)
{
    _path = path;
    _isAnswerDue = true;
    PreviewPlayer &preview = _context.services.wallpaper.preview();
    if (_context.services.platform.desktop->prefersReducedMotion())
        preview.load(path);
    else
        preview.play(path);
    show();
}

void PickedVideo::apply()
{
    if (_path.isEmpty())
        return;
    _isAnswerDue = true;
    _context.services.wallpaperActions.playChosenVideo(_path);
}

void PickedVideo::togglePreview()
{
    PreviewPlayer &preview = _context.services.wallpaper.preview();
    if (preview.isPreviewPlaying() && preview.previewItemURL() == _path)
        preview.pause();
    else
        preview.play(_path);
}

QString PickedVideo::problem() const
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    const WallpaperState state = wallpaper.state();
    if (_path.isEmpty())
        return {};
    if (state.kind == WallpaperState::Kind::failed && state.videoURL == _path)
        return u"无法播放。"_s + state.message;
    if (wallpaper.preview().previewItemURL() == _path && !wallpaper.preview().problem().isEmpty())
        return u"无法预览。"_s + wallpaper.preview().problem();
    return {};
}

void PickedVideo::show()
{
    ConnectedDisplays &displays = _context.services.wallpaper.displays();
    const auto display = displays.target();
    const bool isPicked = !_path.isEmpty();
    if (display && !display->frame.isEmpty())
        _stage->setDisplay(display->frame.size(),
                           layerGravity(_context.services.wallpaper.preferences().gravity()));
    _stage->setPlayable(isPicked);
    _name->setText(isPicked ? fileName(_path) : u"还没有点选视频"_s);
    const bool isOneOfMany = display && displays.connectedDisplays().size() > 1;
    _note->setText(isPicked && isOneOfMany ? u"用于 %1；双击也可以设为壁纸"_s.arg(display->name)
                   : isPicked              ? u"双击也可以设为壁纸"_s
                                           : u"点一下先预览，双击或按回车设为壁纸"_s);
    const QString problem = this->problem();
    _problem->setText(problem);
    _problem->setVisible(!problem.isEmpty());
    _apply->setEnabled(isPicked);
    showPicture();
    if (!problem.isEmpty() && std::exchange(_isAnswerDue, false))
        comeIntoView();
}

void PickedVideo::showPicture()
{
    WallpaperController &wallpaper = _context.services.wallpaper;
    const PreviewPlayer &preview = wallpaper.preview();
    const bool isPreview = !_path.isEmpty() && preview.previewItemURL() == _path;
    _stage->setPlaying(isPreview && preview.isPreviewPlaying());
    _stage->setPicture(isPreview && !preview.frame().isNull() ? preview.frame()
                                                              : wallpaper.folder().thumbnail(_path));
}

// Not before the second click of a double one has come: it belongs where the
// first one was.
void PickedVideo::comeIntoView()
{
    const std::chrono::milliseconds wait(QApplication::doubleClickInterval());
    _move = _context.services.clock.after(wait, [this] {
        for (QWidget *outer = parentWidget(); outer; outer = outer->parentWidget()) {
            if (auto *page = qobject_cast<QScrollArea *>(outer))
                page->ensureWidgetVisible(this);
        }
    });
}

} // namespace velbrix
