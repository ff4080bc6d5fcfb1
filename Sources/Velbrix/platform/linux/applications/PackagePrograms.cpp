#include "platform/linux/applications/PackagePrograms.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace velbrix {

PackagePrograms PackagePrograms::ofThisHost()
{
    const auto found = [](const QString &name) {
        return QStandardPaths::findExecutable(name, {u"/usr/bin"_s, u"/bin"_s});
    };
    return {found(u"dpkg-query"_s), found(u"apt-get"_s), found(u"rpm"_s),     found(u"dnf"_s),
            found(u"zypper"_s),     found(u"pacman"_s),  found(u"flatpak"_s), found(u"snap"_s),
            found(u"pkexec"_s),     found(u"env"_s)};
}

} // namespace velbrix
