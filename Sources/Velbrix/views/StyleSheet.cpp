#include "views/StyleSheet.h"

#include "views/ThemeTokens.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Colours stand as @name; a colour with an opacity in percent as @name/40.
constexpr QStringView sheet = uR"(
QWidget { color: @text; outline: none; }
QMainWindow, QDialog { background: @window; }
QToolTip { background: @card; color: @text; border: 1px solid @hairline; padding: 4px 8px; }

QLabel { background: transparent; }
QLabel[role="title"] { font-size: 22px; font-weight: 600; }
QLabel[role="sheetTitle"] { font-size: 17px; font-weight: 600; }
QLabel[role="heading"] { font-size: 13px; font-weight: 600; }
QLabel[role="secondary"] { color: @secondary; }
QLabel[role="note"] { font-size: 12px; color: @secondary; }
QLabel[role="group"] { font-size: 11px; color: @secondary; padding: 0 12px; }
QLabel[role="warning"] { font-size: 12px; color: @warning; }
QLabel[role="bad"] { font-size: 12px; color: @bad; }
QLabel[role="good"] { font-size: 12px; color: @good; }
QLabel[role="goodHeading"] { font-size: 13px; font-weight: 600; color: @good; }
QLabel[role="badHeading"] { font-size: 13px; font-weight: 600; color: @bad; }
QLabel[role="badge"] { font-size: 11px; color: @accentText; background: @accent/12; border-radius: 4px;
                       padding: 1px 6px; }
QWidget[role="value"] { color: @secondary; }

QFrame[role="card"] QScrollArea, QFrame[role="card"] QScrollArea > QWidget > QWidget { background: transparent; }
QScrollArea, QWidget#pageColumn, QWidget#pageBody { background: @window; border: none; }
QWidget#sidebar { background: @sidebar; border: none; border-right: 1px solid @hairline; }
QFrame[role="card"] { background: @card; border: 1px solid @hairline; border-radius: 12px; }
QFrame[role="card"][dropping="true"] { border: 1px solid @accent; }
QFrame[role="hairline"] { background: @hairline; border: none; min-height: 1px; max-height: 1px; }

QPushButton { background: @control; border: 1px solid @hairline; border-radius: 6px; padding: 0 12px;
              min-height: 26px; font-size: 13px; }
QPushButton:hover { background: @hairline; }
QPushButton:pressed { background: @secondary/30; }
QPushButton:disabled { color: @secondary/70; background: @control/60; }
QPushButton[keyed="true"]:focus { border: 1px solid @accent; }
QPushButton[role="primary"] { background: @accentFill; border: 1px solid @accentFill; color: white; }
QPushButton[role="primary"]:hover { background: @accentFill/88; }
QPushButton[role="primary"]:pressed { background: @accentFill/76; }
QPushButton[role="primary"]:disabled { background: @control; border-color: @hairline; color: @secondary; }
QPushButton[role="primary"][keyed="true"]:focus { border: 2px solid @text; padding: 0 11px; min-height: 24px; }
QPushButton[large="true"] { min-height: 34px; min-width: 84px; font-size: 14px; }
QPushButton[large="true"][keyed="true"]:focus { min-height: 32px; }
QPushButton[role="destructive"] { background: @badFill; border: 1px solid @badFill; color: white; }
QPushButton[role="destructive"]:hover { background: @badFill/88; }
QPushButton[role="destructive"]:pressed { background: @badFill/76; }
QPushButton[role="destructive"][keyed="true"]:focus { border: 2px solid @text; padding: 0 11px; min-height: 24px; }
QPushButton[role="plain"] { background: transparent; border: 1px solid transparent; padding: 0 8px;
                            color: @accentText; }
QPushButton[role="plain"]:hover { background: @accent/12; }
QPushButton[role="plain"][keyed="true"]:focus { border-color: @accent; }
QPushButton[role="icon"] { background: transparent; border: 1px solid transparent; padding: 0; }
QPushButton[role="icon"]:hover { background: @secondary/12; }
QPushButton[role="icon"][keyed="true"]:focus { border-color: @accent; }
QPushButton[role="plainBad"] { background: transparent; border: 1px solid transparent; padding: 0 8px;
                               color: @bad; }
QPushButton[role="plain"]:disabled, QPushButton[role="plainBad"]:disabled { color: @secondary/70; }
QPushButton[role="plainBad"]:hover { background: @bad/12; }
QPushButton[role="plainBad"][keyed="true"]:focus { border-color: @bad; }
QPushButton[role="chord"] { min-width: 104px; font-size: 14px; }
QPushButton[role="chord"][capturing="true"] { border: 2px solid @accent; color: @accentText;
                                              padding: 0 11px; min-height: 24px; }
QPushButton[role="record"] { min-height: 42px; min-width: 128px; border-radius: 22px; font-size: 15px;
                             font-weight: 600; padding: 0 20px; background: @badFill; color: white;
                             border: 1px solid @badFill; }
QPushButton[role="record"]:hover { background: @badFill/88; }
QPushButton[role="record"]:pressed { background: @badFill/76; }
QPushButton[role="record"][keyed="true"]:focus { border: 2px solid @text; padding: 0 19px; min-height: 40px; }
QPushButton[role="record"][recording="true"] { background: @control; color: @bad; border-color: @bad; }
QPushButton[role="record"]:disabled { background: @control; border-color: @hairline; color: @secondary; }

QFrame[role="segments"] { background: @control; border: 1px solid @hairline; border-radius: 8px; }
QPushButton[role="segment"] { background: transparent; border: 1px solid transparent; border-radius: 6px;
                              min-height: 24px; padding: 0 12px; color: @text; }
QPushButton[role="segment"]:hover { background: @secondary/14; }
QPushButton[role="segment"]:checked { background: @segment; border-color: @segmentEdge; font-weight: 600; }
QPushButton[role="segment"][keyed="true"]:focus { border-color: @accent; }
QPushButton[role="segment"]:disabled { color: @secondary; }

QPushButton[role="tab"] { background: transparent; border: 1px solid transparent; border-radius: 8px;
                          min-height: 34px; padding: 0 10px; text-align: left; }
QPushButton[role="tab"]:hover { background: @secondary/12; }
QPushButton[role="tab"]:checked { background: @accentTint; }
QPushButton[role="tab"][keyed="true"]:focus { border-color: @accent; }

QPushButton[role="device"] { background: transparent; border: 1px solid transparent; border-radius: 8px;
                             min-height: 30px; padding: 0 10px; text-align: left; }
QPushButton[role="device"]:hover { background: @secondary/10; }
QPushButton[role="device"]:checked { background: @accent/14; }
QPushButton[role="device"][keyed="true"]:focus { border-color: @accent; }

QFrame[role="path"] { background: @control; border: 1px solid @hairline; border-radius: 6px; }
QFrame[role="path"][dropping="true"] { border: 1px solid @accent; background: @accent/14; }

QLineEdit, QPlainTextEdit, QSpinBox, QTimeEdit { background: @control; border: 1px solid @hairline;
    border-radius: 6px; min-height: 28px; padding: 0 8px; selection-background-color: @accentFill;
    selection-color: white; }
QPlainTextEdit { padding: 4px 4px; }
QLineEdit:focus, QPlainTextEdit:focus, QSpinBox:focus, QTimeEdit:focus { border-color: @accent; }

QRadioButton { spacing: 8px; }
QRadioButton::indicator { width: 14px; height: 14px; border: 1px solid @secondary; border-radius: 8px;
                          background: @control; }
QRadioButton::indicator:checked { width: 6px; height: 6px; border: 5px solid @accentFill; background: white; }
QRadioButton[keyed="true"]:focus { color: @accentText; }

QSlider::groove:horizontal { height: 4px; border-radius: 2px; background: @hairline; }
QSlider::sub-page:horizontal { height: 4px; border-radius: 2px; background: @accent; }
QSlider::sub-page:horizontal:disabled { background: @secondary/50; }
QSlider::handle:horizontal { width: 16px; height: 16px; margin: -7px 0; border-radius: 9px;
                             background: white; border: 1px solid @knobEdge; }
QSlider::handle:horizontal:focus { border: 2px solid @accent; width: 14px; height: 14px; }

QProgressBar { background: @hairline; border: none; border-radius: 2px; min-height: 4px; max-height: 4px; }
QProgressBar::chunk { background: @accent; border-radius: 2px; }

QListView { background: transparent; border: none; }
QListView[role="log"] { background: @control; border: 1px solid @hairline; border-radius: 8px;
                        padding: 6px 4px; font-size: 12px; }
QListView[role="log"][keyed="true"]:focus { border-color: @accent; }
QListView[role="entries"] { background: @control/60; border: 1px solid @hairline; border-radius: 8px;
                            padding: 3px; }
QListView[role="entries"][keyed="true"]:focus { border-color: @accent; }
QListView[role="log"]::item { padding: 2px 8px; color: @text; }
QListView[role="log"]::item:selected { background: @accent/22; color: @text; border-radius: 4px; }

QScrollBar:vertical { width: 10px; background: transparent; margin: 0; }
QScrollBar::handle:vertical { background: @secondary/45; border-radius: 3px; min-height: 32px; margin: 2px; }
QScrollBar::handle:vertical:hover { background: @secondary/75; }
QScrollBar:horizontal { height: 10px; background: transparent; margin: 0; }
QScrollBar::handle:horizontal { background: @secondary/45; border-radius: 3px; min-width: 32px; margin: 2px; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }

QMenu { background: @card; border: 1px solid @hairline; padding: 6px; }
QMenu::item { padding: 6px 24px 6px 12px; border-radius: 6px; }
QMenu::item:selected { background: @accentFill; color: white; }
QMenu::item:disabled { color: @secondary; background: transparent; }
QMenu::separator { height: 1px; background: @hairline; margin: 6px 8px; }
)";

QHash<QString, QColor> named(const ThemeTokens &tokens)
{
    return {{u"text"_s, tokens[ThemeColor::text]},
            {u"secondary"_s, tokens[ThemeColor::secondary]},
            {u"window"_s, tokens[ThemeColor::window]},
            {u"sidebar"_s, tokens[ThemeColor::sidebar]},
            {u"card"_s, tokens[ThemeColor::card]},
            {u"hairline"_s, tokens[ThemeColor::hairline]},
            {u"control"_s, tokens[ThemeColor::control]},
            {u"accent"_s, tokens[ThemeColor::accent]},
            {u"accentFill"_s, tokens[ThemeColor::accentFill]},
            {u"accentText"_s, tokens[ThemeColor::accentText]},
            {u"accentTint"_s, tokens[ThemeColor::accentTint]},
            {u"good"_s, tokens[ThemeColor::good]},
            {u"warning"_s, tokens[ThemeColor::warning]},
            {u"bad"_s, tokens[ThemeColor::bad]},
            {u"badFill"_s, tokens[ThemeColor::badFill]},
            {u"segment"_s, tokens.isDark() ? QColor(0x63, 0x63, 0x67) : QColor(Qt::white)},
            {u"segmentEdge"_s, tokens.isDark() ? QColor(0x6E, 0x6E, 0x73) : QColor(0xD6, 0xD6, 0xDB)},
            {u"knobEdge"_s, tokens.isDark() ? QColor(0x8E, 0x8E, 0x93) : QColor(0xC7, 0xC7, 0xCC)}};
}

QString rgba(const QColor &color, int percent)
{
    return u"rgba(%1,%2,%3,%4%)"_s.arg(color.red()).arg(color.green()).arg(color.blue()).arg(percent);
}

} // namespace

QString styleSheet(const ThemeTokens &tokens)
{
    const QHash<QString, QColor> colors = named(tokens);
    QString made;
    made.reserve(sheet.size() * 2);
    for (qsizetype at = 0; at < sheet.size();) {
        if (sheet[at] != u'@') {
            made += sheet[at++];
            continue;
        }
        qsizetype end = ++at;
        while (end < sheet.size() && sheet[end].isLetter())
            ++end;
        const QColor color = colors.value(sheet.sliced(at, end - at).toString());
        at = end;
        int percent = 100;
        if (at < sheet.size() && sheet[at] == u'/') {
            end = ++at;
            while (end < sheet.size() && sheet[end].isDigit())
                ++end;
            percent = sheet.sliced(at, end - at).toInt();
            at = end;
        }
        made += rgba(color, percent);
    }
    return made;
}

} // namespace velbrix
