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

std::optional<QList<UninstallRecord>> read(const QByteArray &content)
{
    const QJsonDocument document = QJsonDocument::fromJson(content);
    const QJsonValue list = document.object().value("records"_L1);
    if (!list.isArray())
        return std::nullopt;
    QList<UninstallRecord> records;
    for (const auto &each : list.toArray()) {
        const auto record = uninstallRecordFromJson(each.toObject());
        if (!record)
            return std::nullopt;
        records.append(*record);
    }
    return records;
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
    const auto records = file.open(QIODevice::ReadOnly) ? read(file.readAll()) : std::nullopt;
    if (!records) {
        const auto aside = setAside(_file);
        log::line(u"Uninstall"_s, aside ? u"卸载记录已损坏，原文件保留为 %1"_s.arg(*aside)
                                        : u"卸载记录已损坏且无法移开：%1"_s.arg(aside.error().message));
        return;
    }
    _records = records->first(std::min(records->size(), keptRecords));
    for (UninstallRecord &record : _records)
        record.moved.removeIf(
            [](const MovedItem &item) { return item.trashed.isEmpty() && isThere(item.original); });
    _records.removeIf(isEmpty);
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
    const QFuture<Result<void>> written = QtConcurrent::run(&writer(), write, _file, _records);
    const Result<void> result = co_await written;
    co_return result;
}

} // namespace velbrix
