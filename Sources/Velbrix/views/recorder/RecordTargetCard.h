#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

class EmptyState;
class JobBar;
class SegmentedChoice;
class ThumbnailGrid;

// The whole screen or one window, and which window.
class RecordTargetCard final : public Card {
public:
    explicit RecordTargetCard(const ViewContext &context, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    SegmentedChoice *addMode();
    void addWindows();
    void followWindows();
    void showMode();
    void showWindows();
    void showJob();

    ViewContext _context;
    QWidget *_windows;
    ThumbnailGrid *_grid;
    EmptyState *_empty;
    JobBar *_job;
};

} // namespace velbrix
