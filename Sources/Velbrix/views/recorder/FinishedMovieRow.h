#pragma once

#include "views/ViewContext.h"

#include <QWidget>

#include <optional>

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace velbrix {

class ElidedLabel;
class MovieTile;

// The file of the last recording, and what the user may do with it.
class FinishedMovieRow final : public QWidget {
public:
    explicit FinishedMovieRow(const ViewContext &context, QWidget *parent = nullptr);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *makeButtons();
    void refresh();
    QString factsText() const;
    QString noteText() const;
    void play();
    void editName(const QString &name);
    void rename();
    void endEditing();
    void reopenRefused();

    ViewContext _context;
    MovieTile *_tile;
    QLabel *_title;
    ElidedLabel *_name;
    QLineEdit *_newName;
    std::optional<QString> _enteredName; // the last one
    QLabel *_facts;
    QLabel *_note;
    QPushButton *_play = nullptr;
    QPushButton *_reveal = nullptr;
    QPushButton *_rename = nullptr;
    QPushButton *_trash = nullptr;
    QPushButton *_putBack = nullptr;
};

} // namespace velbrix
