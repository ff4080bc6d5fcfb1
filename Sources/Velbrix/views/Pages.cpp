#include "views/Pages.h"

#include "views/backup/FileBackupView.h"
#include "views/cleanup/SystemCleanupView.h"
#include "views/recorder/RecorderPage.h"
#include "views/settings/SettingsPage.h"
#include "views/uninstall/UninstallContentView.h"
#include "views/wallpaper/WallpaperPage.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

using Maker = QWidget *(*)(const ViewContext &context);

template <typename Page> QWidget *make(const ViewContext &context)
{
    return new Page(context);
}

} // namespace

QWidget *makePage(const QString &tool, const ViewContext &context)
{
    // By the identifiers in app/tools/.
    static const QHash<QString, Maker> makers = {
        {u"wallpaper"_s, make<WallpaperPage>}, {u"recorder"_s, make<RecorderPage>},
        {u"clean"_s, make<SystemCleanupView>}, {u"apps"_s, make<UninstallContentView>},
        {u"backup"_s, make<FileBackupView>},   {u"settings"_s, make<SettingsPage>},
    };
    const Maker maker = makers.value(tool);
    return maker ? maker(context) : nullptr;
}

} // namespace velbrix
