#include "platform/linux/desktop/GnomeDock.h"

#include <QFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString schema = u"org.gnome.shell.extensions.dash-to-dock"_s;
const QString fixedKey = u"dock-fixed"_s;
const QString autoHideKey = u"autohide"_s;
const QString dodgeKey = u"intellihide"_s;
const QString yes = u"true"_s;
const QString no = u"false"_s;

} // namespace

QCoro::Task<Result<QString>> GnomeDock::findSchema()
{
    QStringList folders{QString()};
    for (const QString &extension : {u"dash-to-dock@micxgx.gmail.com"_s, u"ubuntu-dock@ubuntu.com"_s}) {
        folders += QStandardPaths::locateAll(QStandardPaths::GenericDataLocation,
                                             u"gnome-shell/extensions/%1/schemas"_s.arg(extension),
                                             QStandardPaths::LocateDirectory);
    }
    for (const QString &folder : std::as_const(folders)) {
        Gsettings settings(_clock, schema, folder);
        const auto keys = co_await settings.keys();
        if (keys && keys->contains(fixedKey) && keys->contains(autoHideKey) && keys->contains(dodgeKey))
            co_return folder;
    }
    co_return failure(u"GNOME 没有安装 Dash to Dock 扩展，没有可以自动隐藏的 Dock"_s);
}

QCoro::Task<Result<QJsonObject>> GnomeDock::read()
{
    const auto folder = co_await findSchema();
    if (!folder)
        co_return std::unexpected(folder.error());
    Gsettings settings(_clock, schema, *folder);
    const QStringList keys{fixedKey, autoHideKey, dodgeKey};
    co_return co_await settings.values(keys);
}

QCoro::Task<Result<void>> GnomeDock::write(const QJsonObject values)
{
    const auto folder = co_await findSchema();
    if (!folder)
        co_return std::unexpected(folder.error());
    Gsettings settings(_clock, schema, *folder);
    co_return co_await settings.set(values);
}

bool GnomeDock::hides(const QJsonObject &values) const
{
    return values.value(fixedKey) == no && values.value(autoHideKey) == yes && values.value(dodgeKey) == no;
}

QJsonObject GnomeDock::hidden(QJsonObject values) const
{
    values.insert(fixedKey, no);
    values.insert(autoHideKey, yes);
    values.insert(dodgeKey, no); // it would stay until a window needs its room
    return values;
}

QJsonObject GnomeDock::shown(QJsonObject values) const
{
    values.insert(fixedKey, yes);
    return values;
}

} // namespace velbrix
