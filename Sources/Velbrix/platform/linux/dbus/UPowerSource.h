#pragma once

#include "foundation/Clock.h"
#include "platform/PowerSource.h"

#include <QCoroTask>
#include <QObject>
#include <QString>

#include <memory>

namespace velbrix {

// The UPower service of the system bus. Until it answers, and where there is no
// such service, the files of the kernel are polled.
class UPowerSource final : public QObject, public PowerSource {
public:
    // The clock must outlive it.
    explicit UPowerSource(Clock &clock, QString supplies = QStringLiteral("/sys/class/power_supply"));

    Result<Observation> observe(std::function<void()> changed) override;
    bool isOnBattery() const override { return _isOnBattery; }

private:
    QCoro::Task<> ask();
    void stop();
    void watchFiles();
    void take(bool isOnBattery);

    Clock &_clock;
    QString _supplies;
    ObserverList<void()> _observers;
    Observation _propertiesChanged;
    std::unique_ptr<Alarm> _poll;
    bool _isOnBattery = false;
};

} // namespace velbrix
