#pragma once

#include "maintenance/uninstall/UninstallTypes.h"
#include "views/ViewContext.h"
#include "views/components/Sheet.h"

class QButtonGroup;
class QLabel;
class QPushButton;

namespace velbrix {

// How much of an application goes: the mode, and in the custom mode the kinds
// of data.
class UninstallSettingsSheet final : public Sheet {
public:
    UninstallSettingsSheet(const ViewContext &context, QWidget *page);

protected:
    void focusDefault() override;
    void enter() override { Q_EMIT cancelled(); }

private:
    QWidget *makeModes();
    QWidget *makeModeRow(UninstallMode mode);
    QWidget *makeToggles();
    void showMode();
    void showSummary();

    ViewContext _context;
    QButtonGroup *_modes = nullptr;
    QWidget *_toggles = nullptr;
    QLabel *_summary = nullptr;
    QPushButton *_done = nullptr;
};

// What the mode and the options come to, in one sentence.
QString cleanupSummary(UninstallMode mode, const CleanupOptions &options, const QList<LibraryKind> &kinds);

} // namespace velbrix
