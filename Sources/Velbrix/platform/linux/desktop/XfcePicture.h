#pragma once

#include "foundation/Clock.h"
#include "platform/DesktopPicture.h"
#include "platform/linux/desktop/Xfconf.h"

namespace velbrix {

// Xfce's desktop: a picture for every monitor and every workspace, which
// xfdesktop shows as soon as its settings say so.
class XfcePicture final : public DesktopPicture {
public:
    explicit XfcePicture(Clock &clock) : _clock(clock) {}

    QCoro::Task<Result<QJsonObject>> current() override;
    QCoro::Task<Result<void>> set(const QString path) override;
    QCoro::Task<Result<QStringList>> restore(const QJsonObject picture) override;

private:
    // Nothing where there is no value: back to the default.
    QCoro::Task<Result<void>> change(const QVariantMap values, const QVariantMap wanted);

    Clock &_clock;
    Xfconf _settings{QStringLiteral("xfce4-desktop")};
};

} // namespace velbrix
