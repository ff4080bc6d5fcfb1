#include "foundation/JsonSettingsFile.h"

#include "foundation/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>

#include <fcntl.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// The file's new name is safe only once its folder has reached the disk too.
void syncFolder(const QString &folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

void sweepTemporaries(const QFileInfo &file)
{
    // QSaveFile's own pattern: the file's name, a dot and six letters.
    const QStringList strays =
        file.dir().entryList({file.fileName() + u".??????"_s}, QDir::Files | QDir::Hidden);
    for (const QString &stray : strays)
        file.dir().remove(stray);
}

void setAside(const QString &path)
{
    QString aside = path + u".damaged"_s;
    for (int n = 2; QFile::exists(aside); ++n)
        aside = path + u".damaged-%1"_s.arg(n);
    const bool kept = QFile::rename(path, aside);
    log::line(u"Velbrix"_s,
              kept ? u"settings unreadable, kept as "_s + aside : u"settings unreadable: "_s + path);
}

} // namespace

JsonSettingsFile::JsonSettingsFile(QString path) : _path(std::move(path)) {}

QJsonObject JsonSettingsFile::load()
{
    sweepTemporaries(QFileInfo(_path));
    QFile file(_path);
    if (!file.exists())
        return {};
    if (file.open(QIODevice::ReadOnly)) {
        const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
        if (document.isObject())
            return document.object();
    }
    file.close();
    setAside(_path);
    return {};
}

Result<void> JsonSettingsFile::save(const QJsonObject &all, const QStringList &)
{
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
    syncFolder(folder);
    return {};
}

} // namespace velbrix
