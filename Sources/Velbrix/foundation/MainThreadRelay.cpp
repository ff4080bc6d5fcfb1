#include "foundation/MainThreadRelay.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <utility>

namespace velbrix {

void onMainThread(std::function<void()> call)
{
    const QCoreApplication *application = QCoreApplication::instance();
    if (!application)
        return;
    // Never destroyed: the application object may go while another thread posts.
    static QObject *const receiver = [](QThread *main) {
        auto *object = new QObject;
        object->moveToThread(main);
        return object;
    }(application->thread());
    QMetaObject::invokeMethod(receiver, std::move(call), Qt::QueuedConnection);
}

} // namespace velbrix
