#pragma once

#include "maintenance/backup/FileBackupController.h"
#include "views/ViewContext.h"
#include "views/components/Sheet.h"

class QPushButton;

namespace velbrix {

// Whether a sync may delete as much as it would.
class DeletionQuestionSheet final : public Sheet {
public:
    DeletionQuestionSheet(const ViewContext &context, const BackupQuestion &question, QWidget *page);

protected:
    void focusDefault() override;

private:
    QPushButton *_cancel;
};

} // namespace velbrix
