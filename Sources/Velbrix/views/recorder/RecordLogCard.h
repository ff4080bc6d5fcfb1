#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

class QListView;
class QStringListModel;

namespace velbrix {

// What the recorder reports, newest at the bottom.
class RecordLogCard final : public Card {
public:
    explicit RecordLogCard(const ViewContext &context, QWidget *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void refresh();
    void copy();

    ViewContext _context;
    QStringListModel *_lines;
    QListView *_list;
};

} // namespace velbrix
