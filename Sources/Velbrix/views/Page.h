#pragma once

#include <QScrollArea>

class QVBoxLayout;

namespace velbrix {

// A tool's page: title, purpose, and a column of cards that scrolls.
class Page : public QScrollArea {
public:
    Page(const QString &name, const QString &title, const QString &purpose, QWidget *parent = nullptr);

    void add(QWidget *card);
    void add(const QString &heading, QWidget *card);

private:
    QVBoxLayout *_column;
};

} // namespace velbrix
