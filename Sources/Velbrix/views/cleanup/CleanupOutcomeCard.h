#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

class QLabel;
class QListView;
class QPushButton;
class QStringListModel;

namespace velbrix {

class SymbolLabel;
class SystemCleaner;

// How the last clean ended: the result, what was really freed, and what could
// not be removed.
class CleanupOutcomeCard final : public Card {
public:
    explicit CleanupOutcomeCard(const ViewContext &context, QWidget *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *makeResult();
    QWidget *makeProblems();
    void refresh();
    void showProblems(bool isOpened);
    void fitProblems();

    ViewContext _context;
    SystemCleaner &_cleaner;
    SymbolLabel *_mark = nullptr;
    QLabel *_result = nullptr;
    QLabel *_details = nullptr;
    QWidget *_problems = nullptr;
    QLabel *_problemCount = nullptr;
    QPushButton *_open = nullptr;
    QStringListModel *_lines;
    QListView *_list = nullptr;
};

} // namespace velbrix
