#pragma once

#include "views/components/Overlay.h"

#include <QPointer>

class QLabel;
class QHBoxLayout;
class QPushButton;
class QVBoxLayout;

namespace velbrix {

struct ButtonLook;

// A panel inside the window, with a title, a body and buttons under it. It
// belongs to a page and is hidden while the page is.
class Sheet : public Overlay {
    Q_OBJECT

public:
    struct Words {
        QString name; // its object name
        QString title;
        QString message; // may be empty
    };

    Sheet(const Theme &theme, const Words &words, int width, QWidget *page);

    void open();
    // Takes it away for good and gives the keyboard back.
    void dismiss();

Q_SIGNALS:
    void cancelled(); // by Esc

protected:
    void setTitle(const QString &title);
    void setMessage(const QString &message);
    // Takes what room there is.
    void setBody(QWidget *body);
    // Beside the buttons, on the left.
    void setFoot(QWidget *foot);
    // From left to right.
    QPushButton *addButton(const ButtonLook &look);

    void escape() override { Q_EMIT cancelled(); }
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QWidget> _page;
    QPointer<QWidget> _focusBefore;
    QLabel *_title;
    QLabel *_message;
    QVBoxLayout *_rows;
    QHBoxLayout *_buttons;
};

} // namespace velbrix
