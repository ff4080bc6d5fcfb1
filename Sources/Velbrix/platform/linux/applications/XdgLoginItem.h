#pragma once

#include "platform/LoginItem.h"

#include <QString>

namespace velbrix {

// A desktop entry in the user's autostart folder (freedesktop.org's Desktop
// Application Autostart).
class XdgLoginItem final : public LoginItem {
public:
    // The entry's file, and the program it starts as an absolute path.
    XdgLoginItem(QString file, QString program);

    bool isEnabled() const override;
    Result<void> setEnabled(bool enabled) override;
    // Its command line says so.
    QCoro::Task<bool> hasStartedThisCopy() override { co_return false; }

private:
    const QString _file;
    const QString _program;
};

} // namespace velbrix
