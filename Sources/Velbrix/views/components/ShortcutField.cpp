#include "views/components/ShortcutField.h"

#include "app/HotkeyManager.h"
#include "views/Follow.h"
#include "views/Theme.h"
#include "views/components/Parts.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {

ShortcutField::ShortcutField(const Theme &theme, HotkeyManager &hotkeys, HotkeyAction action, QWidget *parent)
    : QWidget(parent), _hotkeys(hotkeys), _action(action)
{
    const HotkeyActionInfo &info = hotkeyActionInfo(action);
    setObjectName(u"shortcut."_s + info.name);
    setMinimumHeight(44);
    _chord = makeButton(theme, {objectName() + u".chord"_s, {}, {}, u"chord"_s});
    _chord->setFocusPolicy(Qt::StrongFocus);
    _chord->installEventFilter(this);
    _reset = makeButton(theme, {objectName() + u".reset"_s, u"恢复默认"_s, {}, u"plain"_s});
    _hint = makeText({}, u"note"_s);
    _hint->setObjectName(objectName() + u".hint"_s);

    auto *line = new QHBoxLayout;
    line->setSpacing(4);
    line->addWidget(makeText(_hotkeys.label(action), u"body"_s), 1);
    line->addWidget(_reset);
    line->addWidget(_chord);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 8, 0, 8);
    rows->setSpacing(4);
    rows->addLayout(line);
    rows->addWidget(_hint);

    connect(_chord, &QPushButton::clicked, this, &ShortcutField::press);
    connect(_reset, &QPushButton::clicked, this, [this] {
        const auto reset = _hotkeys.resetToDefault(_action);
        _refusal = reset ? QString() : reset.error().message;
        refresh();
    });
    const auto again = [this] { refresh(); };
    for (const auto signal : {&HotkeyManager::captureTargetChanged, &HotkeyManager::captureHintChanged,
                              &HotkeyManager::problemsChanged})
        connect(&hotkeys, signal, this, again);
    // The conflict may have gone with the other chord.
    const auto anew = [this] {
        _refusal = QString();
        refresh();
    };
    for (const auto signal :
         {&HotkeyManager::recordToggleHotkeyChanged, &HotkeyManager::hideDesktopIconsHotkeyChanged,
          &HotkeyManager::hideDockHotkeyChanged, &HotkeyManager::windowSwitcherHotkeyChanged,
          &HotkeyManager::screenshotHotkeyChanged, &HotkeyManager::clipboardHistoryHotkeyChanged})
        connect(&hotkeys, signal, this, anew);
    refresh();
}

bool ShortcutField::isCapturing() const
{
    return _hotkeys.captureTarget() == _action;
}

void ShortcutField::press()
{
    _refusal = QString();
    if (isCapturing())
        _hotkeys.cancelCapture();
    else
        _hotkeys.beginCapture(_action);
    _chord->setFocus();
}

bool ShortcutField::eventFilter(QObject *, QEvent *event)
{
    // Keys that are typed elsewhere are not meant for this field.
    if (event->type() == QEvent::FocusOut && isCapturing())
        _hotkeys.cancelCapture();
    return false;
}

void ShortcutField::hideEvent(QHideEvent *event)
{
    if (isCapturing())
        _hotkeys.cancelCapture();
    _refusal = QString();
    QWidget::hideEvent(event);
}

void ShortcutField::refresh()
{
    const bool capturing = isCapturing();
    const HotkeyChord chord = _hotkeys.chord(_action);
    const QString text = capturing ? u"按下新快捷键"_s : _hotkeys.chordText(_action);
    _chord->setText(text);
    _chord->setAccessibleName(u"%1：%2"_s.arg(_hotkeys.label(_action), text));
    setLook(_chord, "capturing", capturing);
    _reset->setVisible(!capturing && chord != hotkeyActionInfo(_action).defaultChord);

    const QString problem = _hotkeys.problem(_action);
    if (capturing) {
        _hint->setText(_hotkeys.captureHint());
        setLook(_hint, "role", _hotkeys.isCaptureRefused() ? u"warning"_s : u"note"_s);
    } else {
        const QString unused = problem.isEmpty() ? QString() : u"未生效："_s + problem;
        _hint->setText(_refusal.isEmpty() ? unused : _refusal);
        setLook(_hint, "role", u"warning"_s);
    }
    _hint->setVisible(!_hint->text().isEmpty());
}

} // namespace velbrix
