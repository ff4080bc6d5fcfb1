#pragma once

#include "platform/DesktopPicture.h"

namespace velbrix {

// Plasma's pictures, one for every screen and activity, by the scripts of its shell.
class PlasmaPicture final : public DesktopPicture {
public:
    QCoro::Task<Result<QJsonObject>> current() override;
    QCoro::Task<Result<void>> set(const QString path) override;
    QCoro::Task<Result<QStringList>> restore(const QJsonObject picture) override;
};

} // namespace velbrix
