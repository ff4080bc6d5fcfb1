#pragma once

#include "foundation/Result.h"

#include <QCoroTask>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace velbrix {

// A call on the session bus that fails after five seconds at most.
QCoro::Task<Result<QVariantList>> callSessionBus(const QString service, const QString path,
                                                 const QString interface, const QString method,
                                                 const QVariantList arguments);
// The names on the session bus whose programs run; none without a bus.
QCoro::Task<QStringList> runningServices();

} // namespace velbrix
