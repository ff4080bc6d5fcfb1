#pragma once

#include "maintenance/cleanup/CleanupTypes.h"

#include <QListView>

namespace velbrix {

class Theme;

// The entries of an opened row, however many: only the visible ones are drawn.
// ↑↓ move, Space or a click excludes one or takes it in again. What stays keeps
// its place: the current line, the selection and the scroll position survive
// measuring and sorting.
class CleanupEntryList final : public QListView {
    Q_OBJECT

public:
    CleanupEntryList(const Theme &theme, const QString &name, QWidget *parent = nullptr);

    void showEntries(const QList<CleanupEntry> &entries);

Q_SIGNALS:
    void wanted(const QByteArray &path, bool isIncluded);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    class Entries;
    class Line;
    void toggle(const QModelIndex &index);

    Entries *_entries;
};

} // namespace velbrix
