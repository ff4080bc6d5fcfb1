#include "capture/UnfinishedRecordings.h"

#include "capture/RecorderLog.h"
#include "foundation/SettingsStore.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString key = u"Velbrix_ScreenRecord_unfinishedFiles"_s;

// A folder that is away may come back with its disk.
enum class Place { there, gone, away };

// Blocking.
Place placeOf(const QString &path)
{
    const QFileInfo file(path);
    if (file.isFile())
        return Place::there;
    return file.dir().exists() ? Place::gone : Place::away;
}

} // namespace

UnfinishedRecordings::UnfinishedRecordings(SettingsStore &settings, MovieFiles &movies, Clock &clock,
                                           RecorderLog &log, QObject *parent)
    : QObject(parent), _settings(settings), _movies(movies), _log(log), _looks(clock, 1)
{
}

QCoro::Task<> UnfinishedRecordings::findLeftovers()
{
    const QPointer self(this);
    QStringList present;
    const QStringList remembered = stored();
    for (const QString &path : remembered) {
        const auto place = co_await _looks.run([path] { return placeOf(path); });
        if (!self)
            co_return;
        if (place == Place::there)
            present.append(path);
        else if (place == Place::gone)
            end(path);
    }
    _leftovers = present;
    for (const QString &path : present)
        _log.append(u"发现未正常结束的录制：%1"_s.arg(QFileInfo(path).fileName()));
}

void UnfinishedRecordings::begin(const QString &path)
{
    store(stored() + QStringList{path});
    // The crash to be prepared for is the one that leaves no time to write.
    (void)_settings.flush();
}

void UnfinishedRecordings::end(const QString &path)
{
    QStringList rest = stored();
    rest.removeAll(path);
    store(rest);
}

void UnfinishedRecordings::repair(const QString &path)
{
    if (!_isRepairing && _leftovers.value().contains(path))
        runRepair(path);
}

void UnfinishedRecordings::dismiss(const QString &path)
{
    QStringList rest = _leftovers;
    rest.removeAll(path);
    _leftovers = rest;
    end(path);
}

QCoro::Task<> UnfinishedRecordings::runRepair(QString path)
{
    const QPointer self(this);
    const QString name = QFileInfo(path).fileName();
    _isRepairing = true;
    _problem = QString();
    _log.append(u"正在修复 %1…"_s.arg(name));
    const auto repaired = co_await _movies.repair(path);
    if (!self)
        co_return;
    _isRepairing = false;
    if (!repaired) {
        _problem = u"修复失败，文件保持原样：%1 %2"_s.arg(name, repaired.error().message);
        _log.append(u"❌ "_s + _problem.value());
        co_return;
    }
    _log.append(u"✅ 已修复 %1"_s.arg(name));
    dismiss(path);
}

QStringList UnfinishedRecordings::stored() const
{
    QStringList paths;
    const QJsonArray array = _settings.json(key).value_or(QJsonValue()).toArray();
    for (const auto &value : array) {
        if (value.isString() && !paths.contains(value.toString()))
            paths.append(value.toString());
    }
    return paths;
}

void UnfinishedRecordings::store(const QStringList &paths)
{
    if (paths.isEmpty())
        _settings.remove(key);
    else
        _settings.set(key, QJsonArray::fromStringList(paths));
}

} // namespace velbrix
