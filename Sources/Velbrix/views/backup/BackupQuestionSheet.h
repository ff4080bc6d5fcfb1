#pragma once

#include "maintenance/backup/FileBackupController.h"
#include "views/ViewContext.h"
#include "views/components/Sheet.h"

class QPushButton;

namespace velbrix {

// Whether a run may do what it is in doubt about.
class BackupQuestionSheet final : public Sheet {
public:
    BackupQuestionSheet(const ViewContext &context, const BackupQuestion &question, QWidget *page);

protected:
    void focusDefault() override;

private:
    QPushButton *_cancel;
};

} // namespace velbrix
