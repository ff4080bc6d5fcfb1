#pragma once

#include <QWidget>

class QHBoxLayout;
class QLabel;

namespace velbrix {

// What a setting is called, what it means, and the control for it.
class SettingRow final : public QWidget {
public:
    // The control may be null. It is announced by the row's title.
    SettingRow(const QString &title, const QString &description, QWidget *control, QWidget *parent = nullptr);

    // Before the title.
    void setLeading(QWidget *widget);
    // Empty texts take no room.
    void setDescription(const QString &text);
    // The role is the style sheet's: "note", "warning", "bad", "good".
    void setNote(const QString &text, const QString &role);

private:
    QHBoxLayout *_line;
    QLabel *_description;
    QLabel *_note;
};

} // namespace velbrix
