#pragma once

#include "maintenance/backup/FileBackupController.h"
#include "views/ViewContext.h"
#include "views/components/Sheet.h"

class QLabel;
class QPushButton;

namespace velbrix {

class EmptyState;
class JobBar;
class RowList;

// The archives of a task, to bring one back into a folder.
class BackupArchivesSheet final : public Sheet {
public:
    BackupArchivesSheet(const ViewContext &context, const BackupTask &task, QWidget *page);
    ~BackupArchivesSheet() override;

protected:
    void focusDefault() override;

private:
    class Rows;

    QWidget *makeBody();
    void look();
    void refresh();
    void chooseFolder();

    ViewContext _context;
    BackupTask _task;
    Rows *_rows;
    RowList *_list = nullptr;
    EmptyState *_empty = nullptr;
    JobBar *_job = nullptr;
    QLabel *_result = nullptr;
    QPushButton *_restore = nullptr;
    QPushButton *_close = nullptr;
    bool _hasLooked = false;
    bool _hasRestored = false; // the result is of this sheet
};

} // namespace velbrix
