#include "maintenance/uninstall/UninstallJournal.h"

#include "foundation/AtomicFile.h"
#include "foundation/Log.h"
#include "maintenance/uninstall/DataSearch.h"

#include <QCoroFuture>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// One thread keeps the writes in order.
QThreadPool &writer()
{
    static auto *const pool = [] {
        auto *const one = new QThreadPool;
        one->setMaxThreadCount(1);
        return one;
    }();
    return *pool;
}

Result<void> write(const QString &path, const QList<UninstallRecord> &records)
{
    QJsonArray list;
    for (const UninstallRecord &record : records)
        list.append(toJson(record));
    return replaceFile(path, QJsonDocument(QJsonObject{{u"records"_s, list}}).toJson());
}

struct Content {
    QList<UninstallRecord> records;
    bool isWhole = true; // all that was there is a record
};

Content read(const QByteArray &bytes)
{
    const QJsonValue list = QJsonDocument::fromJson(bytes).object().value("records"_L1);
    Content content{{}, list.isArray()};
    for (const auto &each : list.toArray()) {
        if (const auto record = uninstallRecordFromJson(each.toObject()))
            content.records.append(*record);
        else
            content.isWhole = false;
    }
    return content;
}

bool isEmpty(const UninstallRecord &record)
{
    return record.moved.isEmpty() && record.removedPackage.isEmpty();
}

} // namespace

UninstallJournal::UninstallJournal(QString file) : _file(std::move(file))
{
    load();
}

void UninstallJournal::load()
{
    QFile file(_file);
    if (!file.exists())
        return;
    if (!file.open(QIODevice::ReadOnly)) {
        _isOutOfReach = true;
        _problem = u"卸载记录无法读取，不能卸载：%1 %2"_s.arg(_file, file.errorString());
        log::line(u"Uninstall"_s, _problem);
        return;
    }
    const Content content = read(file.readAll());
    _records = content.records.first(std::min(content.records.size(), keptRecords));
    for (UninstallRecord &record : _records)
        record.moved.removeIf(
            [](const MovedItem &item) { return item.trashed.isEmpty() && isThere(item.original); });
    _records.removeIf(isEmpty);
    if (!content.isWhole)
        keepAside();
}

void UninstallJournal::keepAside()
{
    const auto aside = setAside(_file);
    _isOutOfReach = !aside;
    if (!aside)
        _problem = u"卸载记录已损坏且无法移开，不能卸载：%1"_s.arg(aside.error().message);
    else if (_records.isEmpty())
        _problem = u"卸载记录已损坏，原文件保留为 %1"_s.arg(*aside);
    else
        _problem = u"部分卸载记录已损坏，其余的仍可放回；原文件保留为 %1"_s.arg(*aside);
    log::line(u"Uninstall"_s, _problem);
    if (aside && !_records.isEmpty())
        (void)write(_file, _records); // else they are written with the next one
}

QCoro::Task<Result<void>> UninstallJournal::put(UninstallRecord record)
{
    const auto found = std::ranges::find(_records, record.id, &UninstallRecord::id);
    if (found == _records.end())
        _records.prepend(record);
    else
        *found = record;
    _records.removeIf(isEmpty);
    while (_records.size() > keptRecords)
        _records.removeLast();
    return save();
}

QCoro::Task<Result<void>> UninstallJournal::remove(QString id)
{
    _records.removeIf([&](const UninstallRecord &record) { return record.id == id; });
    return save();
}

QCoro::Task<Result<void>> UninstallJournal::save()
{
    if (_isOutOfReach)
        co_return failure(_problem);
    const QFuture<Result<void>> written = QtConcurrent::run(&writer(), write, _file, _records);
    const Result<void> result = co_await written;
    co_return result;
}

} // namespace velbrix
