#include "views/ViewContext.h"

#include "app/AppServices.h"
#include "platform/Platform.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

void tellFailure(AppServices &services, const QString &title, const Result<void> &done)
{
    if (!done)
        services.toasts.show({.title = title,
                              .body = done.error().message,
                              .icon = u"exclamationmark.triangle.fill"_s,
                              .tone = ToastTone::warning});
}

} // namespace

void ViewContext::reveal(const QString &path) const
{
    tellFailure(services, u"无法打开文件夹"_s, services.platform.desktop->revealInFolder(path));
}

void ViewContext::open(const QString &path) const
{
    tellFailure(services, u"无法打开文件"_s, services.platform.desktop->openFile(path));
}

} // namespace velbrix
