#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"
#include "wallpaper/WallpaperTypes.h"

class QLabel;
class QPushButton;

namespace velbrix {

class EmptyState;
class PreviewStage;
class SettingRow;
class WallpaperBadge;

// The chosen video: how it looks, what it is doing, and its controls. A video
// dropped here is played.
class WallpaperPreviewCard final : public Card {
public:
    explicit WallpaperPreviewCard(const ViewContext &context, QWidget *parent = nullptr);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    // The main display's video, else that of another display alone.
    struct Shown {
        QString path; // empty: none
        std::optional<WallpaperDisplayInfo> display;
    };
    Shown shown() const;
    QWidget *makeWords();
    QWidget *makeFailure();
    QWidget *makeButtons();
    void followWallpaper();
    void followPreview();
    void choose();
    void togglePreview();
    void showState();
    void showVideo();
    void showPicture();
    void showSound();
    void showHint();
    void loadLastVideo();

    ViewContext _context;
    EmptyState *_empty;
    PreviewStage *_stage;
    QWidget *_words = nullptr;
    QLabel *_name = nullptr;
    QLabel *_facts = nullptr;
    WallpaperBadge *_badge = nullptr;
    SettingRow *_failure = nullptr;
    QLabel *_hint = nullptr;
    QWidget *_buttons = nullptr;
    QPushButton *_toggle = nullptr;
    QPushButton *_stop = nullptr;
    QPushButton *_mute = nullptr;
    QPushButton *_next = nullptr;
    QString _previewed; // what the stage is for
    bool _hasLoadedLast = false;
};

} // namespace velbrix
