#pragma once

#include "maintenance/cleanup/CleanupCatalog.h"
#include "views/ViewContext.h"
#include "views/components/Card.h"

#include <QList>

class QPushButton;

namespace velbrix {

class CleanupRow;
class SystemCleaner;

// The built-in items under one heading. Those with nothing in them stand
// behind one line, until it is opened.
class CleanupGroupCard final : public Card {
public:
    CleanupGroupCard(const ViewContext &context, CleanupGroup group, QWidget *parent = nullptr);

    // This machine has none of them.
    bool isEmpty() const { return _rows.isEmpty(); }

private:
    QWidget *makeFold(CleanupGroup group);
    void fold();

    ViewContext _context;
    SystemCleaner &_cleaner;
    QList<CleanupRow *> _rows;
    QPushButton *_fold = nullptr;
    bool _isUnfolded = false;
};

} // namespace velbrix
