#pragma once

#include "foundation/Clock.h"
#include "views/ViewContext.h"
#include "views/components/Card.h"

#include <QStringList>

#include <memory>

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace velbrix {

class EmptyState;
class JobBar;
class PathField;
class PickedVideo;
class SegmentedChoice;
class ThumbnailGrid;

// The videos of a folder, to choose one by its picture.
class WallpaperFolderCard final : public Card {
public:
    explicit WallpaperFolderCard(const ViewContext &context, QWidget *parent = nullptr);
    ~WallpaperFolderCard() override;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void addFolder();
    void addTargets();
    void addVideos();
    void followFolder();
    void showFolder();
    void showVideos();
    void showTargets();
    void showChosen();
    void fillFromMemory(const QStringList &ids);
    void lookSoon();
    void look();
    void showThumbnail(const QString &path);

    ViewContext _context;
    QWidget *_top = nullptr;
    PathField *_field = nullptr;
    QLabel *_count = nullptr;
    QLabel *_problem = nullptr;
    QWidget *_tools = nullptr;
    QLineEdit *_search = nullptr;
    SegmentedChoice *_order = nullptr;
    EmptyState *_unchosen = nullptr;
    EmptyState *_empty = nullptr;
    JobBar *_job = nullptr;
    QWidget *_targetRow = nullptr;
    QHBoxLayout *_targetLine = nullptr;
    SegmentedChoice *_target = nullptr;
    QStringList _targetNames;
    QWidget *_videos = nullptr;
    PickedVideo *_picked = nullptr;
    ThumbnailGrid *_grid = nullptr;
    std::unique_ptr<Alarm> _look;
    bool _isScanned = false;
};

} // namespace velbrix
