#pragma once

#include <QFrame>

class QVBoxLayout;

namespace velbrix {

// A group of rows on one surface, with hairlines between them.
class Card : public QFrame {
public:
    explicit Card(QWidget *parent = nullptr);

    // A hairline stands above every row that follows a visible one.
    void addRow(QWidget *row);
    // Belongs to the row above: no hairline.
    void addDetail(QWidget *detail);

private:
    class Slot;
    void add(QWidget *content, bool line);
    void arrangeLines();

    QVBoxLayout *_rows;
    QList<Slot *> _slots;
};

} // namespace velbrix
