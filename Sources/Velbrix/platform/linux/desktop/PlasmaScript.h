#pragma once

#include "foundation/Result.h"

#include <QCoroTask>
#include <QJsonDocument>
#include <QString>

namespace velbrix {

// Runs a script in Plasma's shell, where it sees `input`. What it prints must
// be JSON, or nothing.
QCoro::Task<Result<QJsonDocument>> runPlasmaScript(const QString script, const QJsonDocument input);

} // namespace velbrix
