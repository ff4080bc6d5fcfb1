#pragma once

#include "maintenance/cleanup/CleanupTypes.h"
#include "views/ViewContext.h"

#include <QWidget>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace velbrix {

class CheckBox;
class CleanupEntryList;
class ElidedLabel;
class SystemCleaner;
class TabularLabel;

// One item of the cleaner: whether it is cleaned, what it is, how large it is,
// and, opened, what is in it.
class CleanupRow final : public QWidget {
public:
    CleanupRow(const ViewContext &context, const CleanupItem &item, QWidget *parent = nullptr);

    const QString &id() const { return _id; }

private:
    QWidget *makeLine(const CleanupItem &item);
    QWidget *makeWords(const CleanupItem &item);
    QWidget *makeBusyMark(const CleanupItem &item);
    QWidget *makeContents(const CleanupItem &item);
    void addButtons(QWidget *line, const CleanupItem &item);
    void showItem();
    void showBusy();
    void showContents();
    void showOpened(bool isOpened);

    ViewContext _context;
    SystemCleaner &_cleaner;
    const QString _id;
    CheckBox *_check = nullptr;
    TabularLabel *_size = nullptr;
    QWidget *_busy = nullptr;
    QLabel *_busyText = nullptr;
    CheckBox *_force = nullptr;
    QPushButton *_open = nullptr;
    QPushButton *_remove = nullptr; // of custom folders only
    QWidget *_contents = nullptr;   // made when first opened
    QLabel *_contentsText = nullptr;
    CleanupEntryList *_entries = nullptr;
};

} // namespace velbrix
