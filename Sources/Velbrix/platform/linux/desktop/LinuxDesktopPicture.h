#pragma once

#include "platform/linux/desktop/DesktopSession.h"

namespace velbrix {

// The picture of whichever desktop runs in this session, and of the root
// window unless that desktop keeps it itself.
class LinuxDesktopPicture final : public DesktopPicture {
public:
    // What must be kept of a former picture goes into the folder. The clock
    // must outlive every task.
    LinuxDesktopPicture(Clock &clock, std::shared_ptr<const DesktopSession> session, QString folder);

    QCoro::Task<Result<QJsonObject>> current() override;
    QCoro::Task<Result<void>> set(const QString path) override;
    QCoro::Task<Result<QStringList>> restore(const QJsonObject picture) override;

private:
    Clock &_clock;
    std::shared_ptr<const DesktopSession> _session;
    QString _folder;
};

} // namespace velbrix
