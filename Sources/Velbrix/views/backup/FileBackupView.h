#pragma once

#include "maintenance/backup/BackupTask.h"
#include "views/Page.h"
#include "views/ViewContext.h"

#include <QPointer>

class QLabel;
class QVBoxLayout;

namespace velbrix {

class BackupTaskCard;
class EmptyState;
class Sheet;

// Scheduled archives and mirrors of folders.
class FileBackupView final : public Page {
public:
    explicit FileBackupView(const ViewContext &context, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QWidget *makeTop();
    QWidget *makeEmpty();
    void addProblem();
    void showTasks();
    void showQuestion();
    void edit(const BackupTask &task);
    void editById(const QString &id);
    void openArchives(const QString &id);

    ViewContext _context;
    QWidget *_top = nullptr;
    QLabel *_count = nullptr;
    QWidget *_empty = nullptr;
    QWidget *_cards = nullptr;
    QVBoxLayout *_list = nullptr;
    QList<BackupTaskCard *> _shown;
    QPointer<Sheet> _question;
};

} // namespace velbrix
