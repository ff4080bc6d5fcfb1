#pragma once

#include "maintenance/uninstall/UninstallTypes.h"
#include "views/ViewContext.h"
#include "views/components/Card.h"

#include <QCoroTask>

class QLabel;
class QLineEdit;
class QPushButton;

namespace velbrix {

class AppRows;
class EmptyState;
class JobBar;
class RowList;

// The installed applications, to search and to choose one of.
class AppListCard final : public Card {
    Q_OBJECT

public:
    explicit AppListCard(const ViewContext &context, QWidget *parent = nullptr);

    // The list takes as much room, at most.
    void setListRoom(int height);

Q_SIGNALS:
    void uninstallWanted(const AppInfo &app);
    void settingsWanted();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void addTop();
    void addList();
    void followScanner();
    void look();
    void showApps();
    void showState();
    QCoro::Task<> showRunning();
    void fit();

    ViewContext _context;
    QLineEdit *_search = nullptr;
    QLabel *_count = nullptr;
    QLabel *_problem = nullptr;
    QPushButton *_rescan = nullptr;
    JobBar *_job = nullptr;
    QWidget *_body = nullptr;
    AppRows *_rows = nullptr;
    RowList *_list = nullptr;
    EmptyState *_noMatch = nullptr;
    EmptyState *_none = nullptr;
    int _listRoom = 360;
    bool _hasLooked = false; // until then nothing is known
};

} // namespace velbrix
