#include "views/ViewContext.h"

#include "app/AppServices.h"
#include "platform/Platform.h"

using namespace Qt::StringLiterals;

namespace velbrix {

void ViewContext::reveal(const QString &path) const
{
    const auto revealed = services.platform.desktop->revealInFolder(path);
    if (!revealed)
        services.toasts.show({.title = u"无法打开文件夹"_s,
                              .body = revealed.error().message,
                              .icon = u"exclamationmark.triangle.fill"_s,
                              .tone = ToastTone::warning});
}

} // namespace velbrix
