#pragma once

#include "maintenance/backup/BackupChecks.h"
#include "views/ViewContext.h"
#include "views/components/Sheet.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class QVBoxLayout;

namespace velbrix {

class BackupScheduleField;
class PathField;
class ScrollingBody;
class SegmentedChoice;
class Switch;

// The editor of a task, new or old. It goes when the task is saved.
class AddBackupTaskSheet final : public Sheet {
public:
    // A task without an id is a new one.
    AddBackupTaskSheet(const ViewContext &context, const BackupTask &task, QWidget *page);

protected:
    void focusDefault() override;
    void enter() override { save(); }

private:
    QWidget *makeForm();
    void addFolders(QVBoxLayout &rows);
    void addRules(QVBoxLayout &rows);
    PathField *makeFolderField(const QString &name, const QString &title, const QString &panelTitle);
    void showKind(int index);
    void save();
    void show(const BackupObstacle &obstacle);
    BackupTask entered() const;

    ViewContext _context;
    BackupTask _task;
    ScrollingBody *_body = nullptr;
    SegmentedChoice *_kind = nullptr;
    QLabel *_kindLine = nullptr;
    QLineEdit *_name = nullptr;
    PathField *_source = nullptr;
    QLabel *_sourceProblem = nullptr;
    PathField *_destination = nullptr;
    QLabel *_destinationProblem = nullptr;
    BackupScheduleField *_schedule = nullptr;
    QWidget *_keepRow = nullptr;
    QSpinBox *_keep = nullptr;
    QWidget *_asideRow = nullptr;
    Switch *_aside = nullptr;
    QPlainTextEdit *_excludes = nullptr;
    QLabel *_problem = nullptr;
    QPushButton *_save = nullptr;
};

} // namespace velbrix
