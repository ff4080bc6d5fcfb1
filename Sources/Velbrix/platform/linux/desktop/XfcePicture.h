#pragma once

#include "platform/DesktopPicture.h"
#include "platform/linux/desktop/Xfconf.h"

namespace velbrix {

// Xfce's desktop: a picture for every monitor and every workspace, which
// xfdesktop shows as soon as its settings say so.
class XfcePicture final : public DesktopPicture {
public:
    QCoro::Task<Result<QJsonObject>> current() override;
    QCoro::Task<Result<void>> set(const QString path) override;
    QCoro::Task<Result<void>> restore(const QJsonObject picture) override;

private:
    Xfconf _settings{QStringLiteral("xfce4-desktop")};
};

} // namespace velbrix
