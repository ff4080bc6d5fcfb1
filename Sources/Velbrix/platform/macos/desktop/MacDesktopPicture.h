#pragma once

#include "platform/DesktopPicture.h"

namespace velbrix {

// NSWorkspace's desktop pictures. The system keeps one for each screen and
// Space; only the Space on show is read and written.
class MacDesktopPicture final : public DesktopPicture {
public:
    QCoro::Task<Result<QJsonObject>> current() override;
    QCoro::Task<Result<void>> set(const QString path) override;
    QCoro::Task<Result<QStringList>> restore(const QJsonObject picture) override;
    bool hasHiddenPictures() const override { return true; }
    Observation observePictures(std::function<void()> changed) override;
};

} // namespace velbrix
