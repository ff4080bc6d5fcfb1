#pragma once

#include <QVariantAnimation>
#include <QWidget>

class QFrame;

namespace velbrix {

class Theme;

// A card over everything else in its parent, and a shade between them. Nothing
// behind it can be reached by mouse or keyboard. Whoever opens it takes it away.
class Overlay : public QWidget {
    Q_OBJECT

public:
    Overlay(const Theme &theme, int cardWidth, QWidget *parent);

    // Whether one lies over the window.
    static bool covers(const QWidget *window);

protected:
    const Theme &theme() const { return _theme; }
    QFrame *card() const { return _card; }
    // After the content has changed.
    void place();

    // The keyboard goes here when the card appears.
    virtual void focusDefault() = 0;
    // Esc.
    virtual void escape() = 0;
    // Enter, unless a button has the focus, which is pressed then.
    virtual void enter() {}

    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    QList<QWidget *> stops() const;
    double shown() const;
    int cardHeight(int width) const;

    const Theme &_theme;
    int _cardWidth;
    QFrame *_card;
    QVariantAnimation _arrival; // 0 to 1
};

} // namespace velbrix
