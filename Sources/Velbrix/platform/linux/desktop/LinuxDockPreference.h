#pragma once

#include "platform/DockPreference.h"
#include "platform/linux/desktop/DesktopSession.h"

#include <QString>

namespace velbrix {

// The bars of whichever desktop runs: Xfce's panels, GNOME's dock extension or
// Plasma's panels. Desktops know more than hiding and not hiding ("when a
// window needs the room"); what all bars were set to is kept in the file until
// they are shown again, so each gets its own back.
class LinuxDockPreference final : public DockPreference {
public:
    // The clock must outlive every task.
    LinuxDockPreference(Clock &clock, std::shared_ptr<const DesktopSession> session, QString formerFile);

    QCoro::Task<Result<bool>> autoHide() override;
    QCoro::Task<Result<void>> setAutoHide(bool hides) override;

private:
    Clock &_clock;
    std::shared_ptr<const DesktopSession> _session;
    QString _formerFile;
};

} // namespace velbrix
