#pragma once

#include "views/components/Overlay.h"

#include <QColor>
#include <QStringList>

class QLabel;
class QPushButton;
class QScrollArea;

namespace velbrix {

// A question or statement inside the window, over everything else in it. Esc
// cancels it; details that are too many scroll. Whoever opens it takes it away.
class NoticeSheet final : public Overlay {
    Q_OBJECT

public:
    struct Words {
        QString symbol;
        QList<QColor> colors; // the symbol's gradient
        QString title;
        QString message;
        QStringList details;
        QString confirm;
        QString cancel; // no such button when empty
        bool isDestructive = false;
    };

    NoticeSheet(const Theme &theme, const Words &words, QWidget *parent);

    void setMessage(const QString &message);
    void setConfirm(const QString &text, bool enabled);

Q_SIGNALS:
    void confirmed();
    void cancelled();

protected:
    void focusDefault() override;
    void escape() override { Q_EMIT cancelled(); }
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *details(const QStringList &lines);
    QWidget *buttons(const Words &words);

    QLabel *_message;
    QScrollArea *_details = nullptr;
    QPushButton *_confirm = nullptr;
    QPushButton *_cancel = nullptr;
    bool _isDestructive;
};

} // namespace velbrix
