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
    services.toasts.show({.title = u"无法打开文件夹"_s,
                          .body = revealed.error().message,
                          .icon = u"exclamationmark.triangle.fill"_s,
                          .tone = ToastTone::warning});
}

} // namespace velbrix
