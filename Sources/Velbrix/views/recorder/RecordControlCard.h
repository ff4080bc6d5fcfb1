#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

class QPushButton;
class QLabel;

namespace velbrix {

// Start and stop, with what the recording is doing.
class RecordControlCard final : public Card {
public:
    explicit RecordControlCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    QWidget *makeBadge();
    void refresh();
    void showStatus(bool isRunning);

    ViewContext _context;
    QPushButton *_button;
    QLabel *_status;
    QWidget *_badge;
};

} // namespace velbrix
