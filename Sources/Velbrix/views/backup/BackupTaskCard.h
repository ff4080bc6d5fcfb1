#pragma once

#include "maintenance/backup/BackupTask.h"
#include "views/ViewContext.h"
#include "views/components/Card.h"

class QLabel;
class QPushButton;

namespace velbrix {

class ElidedLabel;
class JobBar;
class Switch;
class SymbolLabel;

// One task: what goes where and when, how the last run ended, and what can be
// done with it.
class BackupTaskCard final : public Card {
    Q_OBJECT

public:
    BackupTaskCard(const ViewContext &context, const BackupTask &task, QWidget *parent = nullptr);

    const QString &id() const { return _task.id; }
    void setTask(const BackupTask &task);

Q_SIGNALS:
    void editWanted(const QString &id);
    void archivesWanted(const QString &id);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QWidget *makeTop();
    QWidget *makeFacts();
    QWidget *makeButtons();
    void showTask();
    void showResult();
    void showRun();
    void askToRemove();
    void reveal();

    ViewContext _context;
    BackupTask _task;
    SymbolLabel *_symbol = nullptr;
    ElidedLabel *_name = nullptr;
    QLabel *_kind = nullptr;
    Switch *_enabled = nullptr;
    ElidedLabel *_source = nullptr;
    ElidedLabel *_destination = nullptr;
    QLabel *_plan = nullptr;
    SymbolLabel *_mark = nullptr;
    QLabel *_result = nullptr;
    ElidedLabel *_progress = nullptr;
    JobBar *_job = nullptr;
    QWidget *_running = nullptr;
    QPushButton *_run = nullptr;
    QPushButton *_archives = nullptr;
    QPushButton *_edit = nullptr;
};

} // namespace velbrix
