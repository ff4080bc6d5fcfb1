#pragma once

#include "foundation/Result.h"

#include <QCoroTask>
#include <QJsonObject>

namespace velbrix {

// How one desktop keeps whether its panels hide: a value for each of them.
class PanelSettings {
public:
    virtual ~PanelSettings() = default;

    virtual QCoro::Task<Result<QJsonObject>> read() = 0;
    // Only what differs need be given.
    virtual QCoro::Task<Result<void>> write(const QJsonObject values) = 0;

    // Whether all hide with these values, and the values with which all do.
    virtual bool hides(const QJsonObject &values) const = 0;
    virtual QJsonObject hidden(QJsonObject values) const = 0;
    virtual QJsonObject shown(QJsonObject values) const = 0;
};

} // namespace velbrix
