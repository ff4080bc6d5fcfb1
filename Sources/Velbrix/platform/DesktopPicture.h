#pragma once

#include "foundation/Result.h"

#include <QCoroTask>
#include <QJsonObject>
#include <QString>

namespace velbrix {

// The still picture behind everything, on every display. Main thread; the
// tasks of one host must not overlap.
class DesktopPicture {
public:
    virtual ~DesktopPicture() = default;

    // What restore() needs to bring back what is shown now. Only this host
    // understands it; it may be stored, and contains the paths of the pictures.
    virtual QCoro::Task<Result<QJsonObject>> current() = 0;
    // The file must stay as long as it is the picture.
    virtual QCoro::Task<Result<void>> set(const QString path) = 0;
    virtual QCoro::Task<Result<void>> restore(const QJsonObject picture) = 0;
};

} // namespace velbrix
