#pragma once

#include "platform/TrashCan.h"
#include "support/AnswerTime.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdio>
#include <optional>

namespace velbrix::test {

// Really moves what it is given, into a folder of its own.
class FakeTrashCan final : public TrashCan {
public:
    QHash<QString, QString> refused; // why a path cannot be moved, or a trashed one not put back
    std::optional<QString> emptyFailure;
    std::optional<RemovalReport> emptyReport; // instead of what was counted
    QStringList calls;                        // "trash …", "put back …", "empty"

    QCoro::Task<Result<QString>> moveToTrash(const QString path) override
    {
        calls.append(QStringLiteral("trash ") + path);
        co_await _answer.after();
        if (refused.contains(path))
            co_return failure(refused.value(path));
        QString item = path;
        while (item.endsWith(u'/'))
            item.chop(1);
        const QString name = item.section(u'/', -1);
        if (!item.startsWith(u'/') || name == u"." || name == u".." || !isThere(item))
            co_return failure(QStringLiteral("文件不存在"));
        if (item == _folder.path() || isTrashed(item))
            co_return failure(QStringLiteral("已经在废纸篓里"));
        const QString place = QStringLiteral("%1/%2").arg(_folder.path()).arg(++_count);
        const QString trashed = place + u'/' + name;
        if (!QDir().mkpath(place) || !move(item, trashed))
            co_return failure(QStringLiteral("不能移到废纸篓"));
        co_return QString(trashed);
    }
    QCoro::Task<Result<void>> putBack(const QString trashed, const QString original) override
    {
        calls.append(QStringLiteral("put back ") + original);
        co_await _answer.after();
        if (refused.contains(trashed))
            co_return failure(refused.value(trashed));
        if (!isThere(trashed))
            co_return failure(QStringLiteral("废纸篓里已经没有它了"));
        if (!isTrashed(trashed))
            co_return failure(QStringLiteral("不在废纸篓里"));
        if (isThere(original))
            co_return failure(QStringLiteral("原来的位置已经有同名的项目"));
        if (!QDir().mkpath(QFileInfo(original).path()) || !move(trashed, original))
            co_return failure(QStringLiteral("不能放回原处"));
        co_return Result<void>();
    }
    QCoro::Task<Result<RemovalReport>> empty(RemovalRules, Cancellation cancellation) override
    {
        calls.append(QStringLiteral("empty"));
        co_await _answer.after();
        if (emptyFailure)
            co_return failure(*emptyFailure);
        RemovalReport report;
        const QDir folder(_folder.path());
        const QStringList places = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        for (const QString &place : places) {
            if (cancellation.isCancelled())
                break;
            QDir(folder.filePath(place)).removeRecursively();
            ++report.removedFiles;
        }
        co_return emptyReport.value_or(report);
    }
    QStringList folders() const override { return {_folder.path()}; }

private:
    bool isTrashed(const QString &path) const { return path.startsWith(_folder.path() + u'/'); }
    static bool isThere(const QString &path)
    {
        const QFileInfo item(path);
        return item.exists() || item.isSymLink();
    }
    static bool move(const QString &from, const QString &to)
    {
        return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
    }

    AnswerTime _answer;
    QTemporaryDir _folder;
    int _count = 0;
};

} // namespace velbrix::test
