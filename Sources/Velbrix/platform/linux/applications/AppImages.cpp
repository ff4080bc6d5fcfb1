#include "platform/linux/applications/AppImages.h"

#include "foundation/Paths.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// No runtime that mounts itself is smaller; spares opening most downloads.
constexpr qint64 smallestImage = 64 << 10;

bool hasMark(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(11);
    return head.startsWith("\x7f"
                           "ELF") &&
           (head.endsWith("AI\x01") || head.endsWith("AI\x02"));
}

AppImage describe(const QString &path, const ApplicationPlaces &places, QList<Launcher> &launchers)
{
    const auto [name, version] = appImageName(path.section(u'/', -1));
    AppImage image{path, name, version, {}, {}, {}, {}};
    const QString file = canonicalPath(path);
    QList<ApplicationCompanion> icons;
    launchers.removeIf([&](const Launcher &launcher) {
        if (!launcher.isOwn || launcher.program.isEmpty() || canonicalPath(launcher.program) != file)
            return false;
        if (launcher.isShown && image.identifier.isEmpty()) {
            image.name = launcher.entry.name;
            image.identifier = launcher.id;
            image.iconName = launcher.entry.icon;
            image.iconFile = launcher.iconFile;
            if (!launcher.entry.version.isEmpty())
                image.version = launcher.entry.version;
        }
        image.companions.append({launcher.path, true});
        const ApplicationCompanion icon{launcher.iconFile, false};
        if (!launcher.iconFile.isEmpty() && places.isBelowHome(launcher.iconFile) && !icons.contains(icon))
            icons.append(icon);
        return true;
    });
    image.companions += icons;
    return image;
}

} // namespace

bool isAppImage(const QString &path)
{
    const QFileInfo file(path);
    if (!file.isFile())
        return false;
    return path.endsWith(u".AppImage"_s, Qt::CaseInsensitive) ||
           (file.size() >= smallestImage && hasMark(path));
}

AppImageName appImageName(const QString &fileName)
{
    static const QRegularExpression suffix(u"\\.appimage$"_s, QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression machine(
        u"[-_. ](x86[-_]64|amd64|x64|aarch64|arm64|armhf|armv7l|i[3-6]86)$"_s,
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression version(u"^(.+?)[-_ ]v?(\\d+(?:\\.\\d+)+\\S*)$"_s,
                                            QRegularExpression::CaseInsensitiveOption);
    QString stem = fileName;
    stem.remove(suffix);
    QString plain = stem;
    plain.remove(machine);
    const auto parts = version.match(plain);
    if (parts.hasMatch())
        return {parts.captured(1), parts.captured(2)};
    return {plain.isEmpty() ? fileName : plain, {}};
}

QList<AppImage> takeAppImages(const ApplicationPlaces &places, QList<Launcher> &launchers)
{
    QList<AppImage> images;
    for (const QString &folder : {places.home + u"/Applications"_s, places.home + u"/Downloads"_s}) {
        QDirIterator files(folder, QDir::Files);
        while (files.hasNext()) {
            const QString path = files.next();
            if (isAppImage(path))
                images.append(describe(path, places, launchers));
        }
    }
    for (Launcher &launcher : launchers)
        launcher.startsAppImage = !launcher.program.isEmpty() && isAppImage(launcher.program);
    return images;
}

} // namespace velbrix
