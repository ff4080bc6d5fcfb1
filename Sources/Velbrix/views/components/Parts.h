#pragma once

#include <QString>

class QAbstractSpinBox;
class QFrame;
class QLabel;
class QPushButton;
class QWidget;

namespace velbrix {

class Theme;

// A text in one of the style sheet's roles ("title", "note", …); it wraps.
QLabel *makeText(const QString &text, const QString &role, QWidget *parent = nullptr);

// A push button with its object name, which is also how tests find it. The
// roles are "", "primary", "destructive" and "plain"; the symbol may be empty.
struct ButtonLook {
    QString name;
    QString text;
    QString symbol;
    QString role;
};
QPushButton *makeButton(const Theme &theme, const ButtonLook &look, QWidget *parent = nullptr);

// Makes the field a plain one: numbers are typed or changed by the arrow keys,
// never by the wheel, which scrolls the form that it stands in.
void makeNumberField(QAbstractSpinBox &field, int width);

QFrame *makeHairline(QWidget *parent = nullptr);

// Gives a widget a value of the style sheet and has it drawn that way.
void setLook(QWidget *widget, const char *property, const QVariant &value);

} // namespace velbrix
