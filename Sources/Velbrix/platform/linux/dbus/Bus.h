#pragma once

#include "foundation/Observation.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <chrono>
#include <functional>
#include <optional>

namespace velbrix {

enum class Bus { session, system };

// One object on a bus, as somebody calls it or listens to it.
struct BusObject {
    Bus bus = Bus::session;
    QString service;
    QString path; // empty: any, for those who only listen
    QString interface;
    // Of the log lines about calls that fail; empty where that is to be expected.
    QString category = {};
    bool mayStart = true; // a call may have the bus start the service
    std::chrono::milliseconds deadline{5000};
};

// For services that a call may have to start first, and those that a busy
// login may keep waiting.
constexpr std::chrono::milliseconds startDeadline{25000};

// Nothing where the session has no such bus. Asking never starts one.
std::optional<QDBusConnection> busConnection(Bus bus);

// What the service answers; fails at the object's deadline. Main thread.
QCoro::Task<Result<QVariantList>> callBus(const BusObject object, const QString method,
                                          const QVariantList arguments);
QCoro::Task<Result<QVariant>> busProperty(const BusObject object, const QString name);
// The names on the session bus whose programs run; none without a bus.
QCoro::Task<QStringList> runningServices();

// Calls back with every such signal of the object, whoever sends it. Main thread.
Observation observeBus(const BusObject &object, const QString &signal,
                       std::function<void(const QDBusMessage &)> heard);

} // namespace velbrix
