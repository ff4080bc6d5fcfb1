#include "foundation/JsonSettingsFile.h"

#include "foundation/AtomicFile.h"
#include "foundation/Log.h"

#include <QFile>
#include <QJsonDocument>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

JsonSettingsFile::JsonSettingsFile(QString path) : _path(std::move(path)) {}

QJsonObject JsonSettingsFile::load()
{
    QFile file(_path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly)) {
        _isOutOfReach = true;
        _problem = u"设置文件无法读取，本次修改不会保存：%1 %2"_s.arg(_path, file.errorString());
    } else {
        const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
        if (document.isObject())
            return document.object();
        const auto aside = setAside(_path);
        _isOutOfReach = !aside;
        _problem = aside ? u"设置文件已损坏，已恢复默认设置；原文件保留为 %1"_s.arg(*aside)
                         : u"设置文件已损坏且无法移开，本次修改不会保存：%1"_s.arg(_path);
    }
    log::line(u"Velbrix"_s, _problem);
    return {};
}

void JsonSettingsFile::tidy()
{
    removeUnfinished(_path);
}

Result<void> JsonSettingsFile::save(const QJsonObject &all, const QStringList &)
{
    if (_isOutOfReach)
        return failure(_problem);
    return replaceFile(_path, QJsonDocument(all).toJson());
}

} // namespace velbrix
