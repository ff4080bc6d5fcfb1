#pragma once

#include "foundation/Observation.h"

#include <QCoroTask>
#include <QObject>

namespace velbrix {

// What the user prefers to see, from the desktop's settings portal. Without a
// portal: the palette that Qt found when this object was made, before the
// program set its own. Main thread.
class DesktopAppearance final : public QObject {
    Q_OBJECT

public:
    DesktopAppearance();

    bool prefersDark() const { return _colorScheme == 0 ? _isPaletteDark : _colorScheme == 1; }
    bool prefersReducedMotion() const { return _reducesMotion; }
    Q_SIGNAL void preferencesChanged();

private:
    QCoro::Task<> ask();
    void take(uint colorScheme, bool reducesMotion);

    Observation _settingChanged;
    bool _isPaletteDark = false;
    uint _colorScheme = 0; // 0 no preference, 1 dark, 2 light
    bool _reducesMotion = false;
};

} // namespace velbrix
