#pragma once

#include "foundation/Observation.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace velbrix {

// The still picture behind everything, on every display. Main thread; the
// tasks of one host must not overlap.
class DesktopPicture {
public:
    virtual ~DesktopPicture() = default;

    // What restore() needs to bring back what is shown now: one entry for each
    // place that keeps a picture, which only this host understands. It may be
    // stored. An entry contains the paths of its pictures, or "ours": true where
    // the place shows what set() gave it and knows no path.
    virtual QCoro::Task<Result<QJsonObject>> current() = 0;
    // The file must stay as long as it is the picture.
    virtual QCoro::Task<Result<void>> set(const QString path) = 0;
    // Some of the entries do, too; a place without one stays as it is. Answers
    // the files that are gone; their places show the host's own default instead.
    virtual QCoro::Task<Result<QStringList>> restore(const QJsonObject picture) = 0;

    // A place has several pictures, of which only one is in view and reached:
    // one for each of its Spaces, for one.
    virtual bool hasHiddenPictures() const { return false; }
    // Calls after others have come into view, where there are any.
    virtual Observation observePictures(std::function<void()>) { return {}; }
};

} // namespace velbrix
