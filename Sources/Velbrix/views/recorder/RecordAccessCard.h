#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

class QPushButton;

namespace velbrix {

class SettingRow;

// What to do while the system does not let the recorder see the screen.
class RecordAccessCard final : public Card {
public:
    explicit RecordAccessCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    QWidget *makeButtons();
    void check();
    void refresh();

    ViewContext _context;
    SettingRow *_row = nullptr;
    QPushButton *_settings = nullptr;
    bool _isChecked = false; // until then nothing is known
};

} // namespace velbrix
