#pragma once

#include <QColor>
#include <QStringList>
#include <QVariantAnimation>
#include <QWidget>

class QFrame;
class QLabel;
class QPushButton;
class QScrollArea;

namespace velbrix {

class Theme;

// A question or statement inside the window, over everything else in it. It
// covers its parent, keeps the keyboard focus, and Esc cancels it; details that
// are too many scroll. Whoever opens it takes it away.
class NoticeSheet final : public QWidget {
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

    // Whether one lies over the window.
    static bool covers(const QWidget *window);

    void setMessage(const QString &message);
    void setConfirm(const QString &text, bool enabled);

Q_SIGNALS:
    void confirmed();
    void cancelled();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    QWidget *details(const QStringList &lines);
    QWidget *buttons(const Words &words);
    void scrollDetails(int key);
    void focusDefault();
    void place();

    const Theme &_theme;
    QFrame *_card;
    QLabel *_message;
    QScrollArea *_details = nullptr;
    QPushButton *_confirm = nullptr;
    QPushButton *_cancel = nullptr;
    bool _isDestructive;
    QVariantAnimation _arrival; // 0 to 1
};

} // namespace velbrix
