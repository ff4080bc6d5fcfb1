#include "foundation/JsonSettingsFile.h"

#include "foundation/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>
#include <QThreadPool>

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// The file's new name survives a power cut only once its folder has reached the disk too. Any thread.
void syncFolder(const QString &folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

// QSaveFile ends its names in six letters of both cases; a "settings.json.backup"
// is the user's own.
bool isTemporaryName(const QString &name)
{
    const QStringView suffix = QStringView(name).last(6);
    const auto all = [&](auto &&test) { return std::ranges::all_of(suffix, test); };
    return all([](QChar c) { return c.isLetter(); }) && !all([](QChar c) { return c.isLower(); }) &&
           !all([](QChar c) { return c.isUpper(); });
}

// The name under which the file is kept now; empty when it could not be moved.
QString setAside(const QString &path)
{
    QString aside = path + u".damaged"_s;
    for (int n = 2; QFile::exists(aside); ++n)
        aside = path + u".damaged-%1"_s.arg(n);
    return QFile::rename(path, aside) ? aside : QString();
}

} // namespace

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
        const QString aside = setAside(_path);
        _isOutOfReach = aside.isEmpty();
        _problem = _isOutOfReach ? u"设置文件已损坏且无法移开，本次修改不会保存：%1"_s.arg(_path)
                                 : u"设置文件已损坏，已恢复默认设置；原文件保留为 %1"_s.arg(aside);
    }
    log::line(u"Velbrix"_s, _problem);
    return {};
}

void JsonSettingsFile::tidy()
{
    const QFileInfo file(_path);
    const QStringList strays =
        file.dir().entryList({file.fileName() + u".??????"_s}, QDir::Files | QDir::Hidden);
    for (const QString &stray : strays) {
        if (isTemporaryName(stray))
            file.dir().remove(stray);
    }
}

Result<void> JsonSettingsFile::save(const QJsonObject &all, const QStringList &)
{
    if (_isOutOfReach)
        return failure(_problem);
    const QString folder = QFileInfo(_path).absolutePath();
    if (!QDir().mkpath(folder))
        return failure(u"无法创建文件夹 "_s + folder);
    QSaveFile file(_path);
    if (!file.open(QIODevice::WriteOnly))
        return failure(file.errorString());
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    file.write(QJsonDocument(all).toJson(QJsonDocument::Indented));
    if (!file.commit())
        return failure(file.errorString());
    // The old content or the new is safe already; this can take its time, and the end of the program waits
    // for it.
    QThreadPool::globalInstance()->start([folder] { syncFolder(folder); });
    return {};
}

} // namespace velbrix
