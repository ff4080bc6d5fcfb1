#pragma once

#include "app/HotkeyActions.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace velbrix {

class HotkeyManager;
class Theme;

// The shortcut of one action. A click listens for a new one; hints, conflicts
// and the reason why a key does not work stand under it.
class ShortcutField final : public QWidget {
public:
    ShortcutField(const Theme &theme, HotkeyManager &hotkeys, HotkeyAction action, QWidget *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    bool isCapturing() const;
    void press();
    void refresh();

    HotkeyManager &_hotkeys;
    HotkeyAction _action;
    QPushButton *_chord;
    QPushButton *_reset;
    QLabel *_hint;
    QString _refusal; // why the default chord cannot be had
};

} // namespace velbrix
