#include "platform/linux/desktop/RunningDesktop.h"

#include "platform/linux/x11/X11Connection.h"

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

using Program = RunningDesktop::Program;
using Name = std::pair<QLatin1StringView, Program>;

// Parts of names, in any case.
constexpr std::array windowClasses{
    Name("xfdesktop"_L1, Program::Xfce),     Name("pcmanfm"_L1, Program::Pcmanfm),
    Name("plasmashell"_L1, Program::Plasma), Name("nemo"_L1, Program::Cinnamon),
    Name("caja"_L1, Program::Mate),          Name("nautilus"_L1, Program::Gnome),
    Name("gjs"_L1, Program::Gnome)};
constexpr std::array managers{Name("gnome shell"_L1, Program::Gnome), Name("budgie"_L1, Program::Gnome),
                              Name("gala"_L1, Program::Gnome),        Name("muffin"_L1, Program::Cinnamon),
                              Name("marco"_L1, Program::Mate),        Name("kwin"_L1, Program::Plasma)};
// Of managers that serve several desktops the session says which one it is.
constexpr std::array sharedManagers{"mutter"_L1, "metacity"_L1, "compiz"_L1};
constexpr std::array sessions{Name("cinnamon"_L1, Program::Cinnamon), Name("mate"_L1, Program::Mate),
                              Name("kde"_L1, Program::Plasma), Name("unity"_L1, Program::Gnome),
                              Name("gnome"_L1, Program::Gnome)};

std::optional<Program> match(std::span<const Name> names, const QString &text)
{
    for (const auto &[part, program] : names) {
        if (text.contains(part, Qt::CaseInsensitive))
            return program;
    }
    return std::nullopt;
}

bool isShared(const QString &manager)
{
    return std::ranges::any_of(sharedManagers, [&manager](QLatin1StringView name) {
        return manager.contains(name, Qt::CaseInsensitive);
    });
}

struct DesktopClient {
    QString windowClass;
    std::uint32_t pid = 0;
};

// The other program's window that lies behind all others.
std::optional<DesktopClient> desktopClient(X11Connection &x11)
{
    const XProperty clients = x11.property(x11.root(), "_NET_CLIENT_LIST", 65536);
    for (int i = 0; i < clients.count(); ++i) {
        const xcb_window_t window = clients.value(i);
        const XProperty type = x11.property(window, "_NET_WM_WINDOW_TYPE");
        const std::uint32_t pid = x11.property(window, "_NET_WM_PID").value(0);
        if (type.value(0) != x11.atom("_NET_WM_WINDOW_TYPE_DESKTOP") ||
            pid == static_cast<std::uint32_t>(::getpid()))
            continue;
        return DesktopClient{QString::fromLatin1(x11.property(window, "WM_CLASS").bytes), pid};
    }
    return std::nullopt;
}

QString windowManager(X11Connection &x11)
{
    const xcb_window_t window = x11.property(x11.root(), "_NET_SUPPORTING_WM_CHECK").value(0);
    return window ? QString::fromUtf8(x11.property(window, "_NET_WM_NAME").bytes) : QString();
}

QString pcmanfmProfile(std::uint32_t pid)
{
    QFile file(u"/proc/%1/cmdline"_s.arg(pid));
    const QByteArray line = file.open(QIODevice::ReadOnly) ? file.read(65536) : QByteArray();
    const QList<QByteArray> words = line.split('\0');
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (words[i].startsWith("--profile="))
            return QFile::decodeName(words[i].mid(10));
        if ((words[i] == "--profile" || words[i] == "-p") && i + 1 < words.size())
            return QFile::decodeName(words[i + 1]);
    }
    return u"default"_s;
}

} // namespace

RunningDesktop RunningDesktop::find()
{
    RunningDesktop found;
    const QString session = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    const auto x11 = X11Connection::open();
    const QString manager = x11 ? windowManager(**x11) : QString();
    found.name = !session.isEmpty() ? session : !manager.isEmpty() ? manager : u"未知"_s;
    const auto client = x11 ? desktopClient(**x11) : std::nullopt;
    if (const auto program = client ? match(windowClasses, client->windowClass) : std::nullopt) {
        found.program = *program;
        if (*program == Program::Pcmanfm)
            found.profile = pcmanfmProfile(client->pid);
        // LXQt's namesake takes its orders differently.
        if (client->windowClass.contains("pcmanfm-qt"_L1, Qt::CaseInsensitive))
            found.program = Program::RootWindow;
    } else if (const auto byManager = match(managers, manager)) {
        found.program = *byManager;
    } else if (isShared(manager)) {
        found.program = match(sessions, session).value_or(Program::RootWindow);
    }
    return found;
}

} // namespace velbrix
