#pragma once

#include "foundation/Result.h"

#include <QCoroTask>
#include <QString>
#include <QVariant>

namespace velbrix {

// One channel of Xfce's settings, on the session bus, which starts their
// service where it is installed. Main thread.
class Xfconf {
public:
    explicit Xfconf(QString channel) : _channel(std::move(channel)) {}

    // Full property names below the base.
    QCoro::Task<Result<QVariantMap>> values(const QString base) const;
    // Keeps the type of the value.
    QCoro::Task<Result<void>> set(const QString property, const QVariant value) const;
    // Back to what the programs take for a default.
    QCoro::Task<Result<void>> reset(const QString property) const;

private:
    QString _channel;
};

} // namespace velbrix
