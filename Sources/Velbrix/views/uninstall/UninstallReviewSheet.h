#pragma once

#include "views/ViewContext.h"
#include "views/components/Sheet.h"

class QLabel;
class QPushButton;

namespace velbrix {

class JobBar;
class ReviewRows;
class RowList;
struct UninstallReview;

// Everything that would go with an application, to be ticked before anything
// moves. Follows the scanner's review.
class UninstallReviewSheet final : public Sheet {
public:
    UninstallReviewSheet(const ViewContext &context, const QString &appName, QWidget *page);

protected:
    void focusDefault() override;

private:
    QWidget *makeBody();
    void refresh();
    void showNotes(const UninstallReview &review);
    void toggle(const QModelIndex &index);
    void confirm();

    ViewContext _context;
    QLabel *_running = nullptr;
    QLabel *_packages = nullptr;
    QLabel *_mode = nullptr;
    JobBar *_job = nullptr;
    ReviewRows *_rows = nullptr;
    RowList *_list = nullptr;
    QLabel *_total = nullptr;
    QPushButton *_cancel = nullptr;
    QPushButton *_confirm = nullptr;
};

} // namespace velbrix
