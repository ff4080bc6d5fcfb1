#pragma once

#include "views/ViewContext.h"
#include "views/components/Sheet.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace velbrix {

// An uninstall under way: of which application, what is being done, how far.
class UninstallProgressView final : public Sheet {
public:
    UninstallProgressView(const ViewContext &context, QWidget *page);

protected:
    void focusDefault() override;
    void escape() override {} // it is stopped by its button alone

private:
    void refresh();

    ViewContext _context;
    QLabel *_stage;
    QProgressBar *_bar;
    QPushButton *_stop;
};

} // namespace velbrix
