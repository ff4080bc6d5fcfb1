#pragma once

#include "platform/DesktopPicture.h"
#include "platform/linux/desktop/Gsettings.h"

namespace velbrix {

// The picture of GNOME, Cinnamon or MATE, which all show it by themselves.
class GsettingsPicture final : public DesktopPicture {
public:
    GsettingsPicture(Clock &clock, QString schema);

    QCoro::Task<Result<QJsonObject>> current() override;
    QCoro::Task<Result<void>> set(const QString path) override;
    QCoro::Task<Result<QStringList>> restore(const QJsonObject picture) override;

private:
    // Of those keys that this version of the desktop has.
    QCoro::Task<Result<QJsonObject>> pictureValues();

    Gsettings _settings;
};

} // namespace velbrix
