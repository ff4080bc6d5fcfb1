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
#include <iterator>

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

Content contentOf(const QByteArray &bytes)
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

UninstallJournal::UninstallJournal(const QString &file)
    : _state(std::make_shared<State>(State{.file = file})),
      _reading(QtConcurrent::run(&writer(), &UninstallJournal::read, file))
{
}

UninstallJournal::State UninstallJournal::read(const QString &path)
{
    State state{.file = path};
    removeUnfinished(path);
    QFile file(path);
    if (!file.exists())
        return state;
    if (!file.open(QIODevice::ReadOnly)) {
        state.isOutOfReach = true;
        state.problem = u"卸载记录无法读取，不能卸载：%1 %2"_s.arg(path, file.errorString());
        log::line(u"Uninstall"_s, state.problem);
        return state;
    }
    const Content content = contentOf(file.readAll());
    state.records = content.records.first(std::min(content.records.size(), keptRecords));
    for (UninstallRecord &record : state.records)
        record.moved.removeIf(
            [](const MovedItem &item) { return item.trashed.isEmpty() && isThere(item.original); });
    state.records.removeIf(isEmpty);
    if (!content.isWhole)
        keepAside(state);
    return state;
}

void UninstallJournal::keepAside(State &state)
{
    const auto aside = setAside(state.file);
    state.isOutOfReach = !aside;
    if (!aside)
        state.problem = u"卸载记录已损坏且无法移开，不能卸载：%1"_s.arg(aside.error().message);
    else if (state.records.isEmpty())
        state.problem = u"卸载记录已损坏，原文件保留为 %1"_s.arg(*aside);
    else
        state.problem = u"部分卸载记录已损坏，其余的仍可放回；原文件保留为 %1"_s.arg(*aside);
    log::line(u"Uninstall"_s, state.problem);
    if (aside && !state.records.isEmpty())
        (void)write(state.file, state.records); // else they are written with the next one
}

QCoro::Task<> UninstallJournal::loaded() const
{
    return load(_state, _reading);
}

QCoro::Task<> UninstallJournal::load(std::shared_ptr<State> state, QFuture<State> reading)
{
    if (state->isLoaded)
        co_return;
    const State found = co_await reading;
    if (!state->isLoaded) {
        *state = found;
        state->isLoaded = true;
    }
}

QCoro::Task<Result<void>> UninstallJournal::put(UninstallRecord record)
{
    const std::shared_ptr<State> state = _state;
    const QFuture<State> reading = _reading;
    co_await load(state, reading);
    QList<UninstallRecord> &records = state->records;
    const auto found = std::ranges::find(records, record.id, &UninstallRecord::id);
    if (found == records.end())
        records.prepend(record);
    else
        *found = record;
    records.removeIf(isEmpty);
    while (records.size() > keptRecords)
        records.removeLast();
    const Result<void> saved = co_await save(state);
    co_return saved;
}

QCoro::Task<Result<void>> UninstallJournal::remove(QString id)
{
    const std::shared_ptr<State> state = _state;
    const QFuture<State> reading = _reading;
    co_await load(state, reading);
    QList<UninstallRecord> &records = state->records;
    const auto found = std::ranges::find(records, id, &UninstallRecord::id);
    if (found == records.end())
        co_return Result<void>();
    const qsizetype place = std::distance(records.begin(), found);
    const UninstallRecord record = records.takeAt(place);
    const Result<void> saved = co_await save(state);
    if (!saved && std::ranges::find(records, id, &UninstallRecord::id) == records.end())
        records.insert(std::min(place, records.size()), record);
    co_return saved;
}

QCoro::Task<Result<void>> UninstallJournal::save(std::shared_ptr<State> state)
{
    if (state->isOutOfReach)
        co_return failure(state->problem);
    const QFuture<Result<void>> written = QtConcurrent::run(&writer(), write, state->file, state->records);
    const Result<void> result = co_await written;
    co_return result;
}

} // namespace velbrix
