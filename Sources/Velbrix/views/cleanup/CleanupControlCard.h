#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

class QLabel;
class QPushButton;

namespace velbrix {

class JobBar;
class SystemCleaner;
class TabularLabel;

// How much is selected, and the cleaning itself.
class CleanupControlCard final : public Card {
public:
    explicit CleanupControlCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    QWidget *makeTotals();
    QWidget *makeTools();
    void showTotals();
    void showJob();
    // Consent comes first, and the question last: between its answer and the
    // cleaning nothing else can happen.
    void cleanWithConsent();
    void ask();

    ViewContext _context;
    SystemCleaner &_cleaner;
    TabularLabel *_total = nullptr;
    QLabel *_selection = nullptr;
    QPushButton *_clean = nullptr;
    QPushButton *_all = nullptr;
    QPushButton *_none = nullptr;
    QPushButton *_recalculate = nullptr;
    JobBar *_job = nullptr;
};

} // namespace velbrix
