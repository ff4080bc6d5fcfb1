#include "views/Reveal.h"

#include "app/AppServices.h"
#include "platform/Platform.h"

using namespace Qt::StringLiterals;

namespace velbrix {

void revealOrTell(AppServices &services, const QString &path)
{
    const auto revealed = services.platform.desktop->revealInFolder(path);
    if (revealed)
        return;
    Toast toast;
    toast.title = u"无法打开文件夹"_s;
    toast.body = revealed.error().message;
    toast.icon = u"exclamationmark.triangle.fill"_s;
    services.toasts.show(toast);
}

} // namespace velbrix
