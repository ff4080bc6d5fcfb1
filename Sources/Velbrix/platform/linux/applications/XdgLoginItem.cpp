#include "platform/linux/applications/XdgLoginItem.h"

#include "foundation/AtomicFile.h"
#include "platform/linux/applications/DesktopEntry.h"

#include <QFile>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// One argument of an Exec line: quoted for its command line, then escaped as a
// string of the file, which is read the other way round.
QString execArgument(const QString &argument)
{
    QString quoted;
    for (const QChar character : argument) {
        if (u"\"`$\\"_s.contains(character))
            quoted += u'\\';
        quoted += character;
        if (character == u'%')
            quoted += u'%';
    }
    return u'"' + quoted.replace(u'\\', u"\\\\"_s) + u'"';
}

QString entryText(const QString &program)
{
    return u"[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Velbrix\n"
           "Comment=桌面工具箱\n"
           "Icon=velbrix\n"
           "Exec=%1 --background\n"
           "Terminal=false\n"
           "StartupNotify=false\n"_s.arg(execArgument(program));
}

} // namespace

XdgLoginItem::XdgLoginItem(QString file, QString program)
    : _file(std::move(file)), _program(std::move(program))
{
}

bool XdgLoginItem::isEnabled() const
{
    QFile file(_file);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const DesktopEntryKeys keys = desktopEntryKeys(file.readAll());
    return keys.contains("Exec") && keys.value("Hidden") != "true" &&
           keys.value("X-GNOME-Autostart-enabled") != "false";
}

Result<void> XdgLoginItem::setEnabled(bool enabled)
{
    if (!enabled) {
        QFile file(_file);
        if (file.exists() && !file.remove())
            return failure(u"无法删除 "_s + _file + u"："_s + file.errorString());
        return {};
    }
    return replaceFile(_file, entryText(_program).toUtf8());
}

} // namespace velbrix
