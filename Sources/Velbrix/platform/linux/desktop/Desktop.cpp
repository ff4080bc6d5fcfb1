#include "platform/linux/desktop/Desktop.h"

#include "platform/linux/desktop/GnomeDock.h"
#include "platform/linux/desktop/GsettingsPicture.h"
#include "platform/linux/desktop/PcmanfmPicture.h"
#include "platform/linux/desktop/PlasmaPanels.h"
#include "platform/linux/desktop/PlasmaPicture.h"
#include "platform/linux/desktop/XfcePanels.h"
#include "platform/linux/desktop/XfcePicture.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Of managers that serve several desktops the session says which one it is.
const QStringList sharedManagers{u"mutter"_s, u"metacity"_s, u"compiz"_s};

bool containsAny(const QString &text, const QStringList &parts)
{
    return std::ranges::any_of(
        parts, [&text](const QString &part) { return text.contains(part, Qt::CaseInsensitive); });
}

const Desktop *find(QStringList Desktop::*parts, const QString &text)
{
    const auto found = std::ranges::find_if(
        desktops(), [&](const Desktop &desktop) { return containsAny(text, desktop.*parts); });
    return found == desktops().end() ? nullptr : &*found;
}

} // namespace

QString DesktopSigns::name() const
{
    if (!session.isEmpty())
        return session;
    return windowManager.isEmpty() ? u"未知"_s : windowManager;
}

const std::vector<Desktop> &desktops()
{
    static const std::vector<Desktop> all{
        {.key = u"xfce"_s,
         .backdropClasses = {u"xfdesktop"_s},
         .makePicture = [](const PictureRequest &request) -> std::unique_ptr<DesktopPicture> {
             return std::make_unique<XfcePicture>(request.clock);
         },
         .publishesPicture = true,
         .makePanels = [](Clock &) -> std::unique_ptr<PanelSettings> {
             return std::make_unique<XfcePanels>();
         },
         .panelService = u"org.xfce.Panel"_s,
         .saverService = u"org.xfce.ScreenSaver"_s,
         .saverPath = u"/org/xfce/ScreenSaver"_s},
        // LXQt's file manager takes its orders in another way than its namesake.
        {.key = u"lxqt"_s, .backdropClasses = {u"pcmanfm-qt"_s}},
        {.key = u"pcmanfm"_s, // LXDE
         .backdropClasses = {u"pcmanfm"_s},
         .makePicture = [](const PictureRequest &request) -> std::unique_ptr<DesktopPicture> {
             return std::make_unique<PcmanfmPicture>(request);
         },
         .publishesPicture = true,
         .readProfile = pcmanfmProfile},
        {.key = u"plasma"_s,
         .backdropClasses = {u"plasmashell"_s},
         .managers = {u"kwin"_s},
         .sessions = {u"kde"_s},
         .makePicture = [](const PictureRequest &) -> std::unique_ptr<DesktopPicture> {
             return std::make_unique<PlasmaPicture>();
         },
         .makePanels = [](Clock &) -> std::unique_ptr<PanelSettings> {
             return std::make_unique<PlasmaPanels>();
         },
         .panelService = u"org.kde.plasmashell"_s},
        {.key = u"cinnamon"_s,
         .backdropClasses = {u"nemo"_s},
         .managers = {u"muffin"_s},
         .sessions = {u"cinnamon"_s},
         .makePicture = [](const PictureRequest &request) -> std::unique_ptr<DesktopPicture> {
             return std::make_unique<GsettingsPicture>(request.clock, u"org.cinnamon.desktop.background"_s);
         },
         .saverService = u"org.cinnamon.ScreenSaver"_s,
         .saverPath = u"/org/cinnamon/ScreenSaver"_s},
        {.key = u"mate"_s,
         .backdropClasses = {u"caja"_s},
         .managers = {u"marco"_s},
         .sessions = {u"mate"_s},
         .makePicture = [](const PictureRequest &request) -> std::unique_ptr<DesktopPicture> {
             return std::make_unique<GsettingsPicture>(request.clock, u"org.mate.background"_s);
         },
         .publishesPicture = true,
         .saverService = u"org.mate.ScreenSaver"_s,
         .saverPath = u"/org/mate/ScreenSaver"_s},
        {.key = u"gnome"_s,
         .backdropClasses = {u"nautilus"_s, u"gjs"_s},
         .managers = {u"gnome shell"_s, u"budgie"_s, u"gala"_s},
         .sessions = {u"unity"_s, u"gnome"_s},
         .makePicture = [](const PictureRequest &request) -> std::unique_ptr<DesktopPicture> {
             return std::make_unique<GsettingsPicture>(request.clock, u"org.gnome.desktop.background"_s);
         },
         .makePanels = [](Clock &clock) -> std::unique_ptr<PanelSettings> {
             return std::make_unique<GnomeDock>(clock);
         },
         .panelService = u"org.gnome.Shell"_s,
         .saverService = u"org.gnome.ScreenSaver"_s,
         .saverPath = u"/org/gnome/ScreenSaver"_s},
    };
    return all;
}

const Desktop *recognisedDesktop(const DesktopSigns &signs)
{
    if (const Desktop *shown = find(&Desktop::backdropClasses, signs.backdropClass))
        return shown;
    if (const Desktop *managed = find(&Desktop::managers, signs.windowManager))
        return managed;
    return containsAny(signs.windowManager, sharedManagers) ? find(&Desktop::sessions, signs.session)
                                                            : nullptr;
}

} // namespace velbrix
