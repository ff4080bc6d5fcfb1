#pragma once

#include "maintenance/cleanup/CleanupTypes.h"

#include <QListView>

namespace velbrix {

class CleanupEntries;
class Theme;

// The entries of an opened row, however many: only those in sight are drawn.
// ↑↓ move, Space or a click leaves one out or takes it in again.
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
    class Line;
    void toggle(const QModelIndex &index);

    CleanupEntries *_entries;
};

} // namespace velbrix
