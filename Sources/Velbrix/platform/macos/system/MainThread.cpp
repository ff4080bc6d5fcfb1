#include "platform/macos/system/MainThread.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <utility>

namespace velbrix {

void onMainThread(std::function<void()> call)
{
    if (QCoreApplication *application = QCoreApplication::instance())
        QMetaObject::invokeMethod(application, std::move(call), Qt::QueuedConnection);
}

} // namespace velbrix
