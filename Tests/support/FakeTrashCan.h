#pragma once

#include "platform/TrashCan.h"

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
    bool tellsWhere = true;
    std::optional<QString> emptyFailure;
    std::optional<RemovalReport> emptyReport; // instead of what was counted
    QStringList calls;                        // "trash …", "put back …", "empty"
    QList<RemovalRules> emptyRules;

    QCoro::Task<Result<QString>> moveToTrash(const QString path) override
    {
        calls.append(QStringLiteral("trash ") + path);
        if (refused.contains(path))
            co_return failure(refused.value(path));
        const QString place = QStringLiteral("%1/%2").arg(_folder.path()).arg(++_count);
        const QString trashed = place + u'/' + QFileInfo(path).fileName();
        if (!QDir().mkpath(place) || !move(path, trashed))
            co_return failure(QStringLiteral("cannot move"));
        co_return tellsWhere ? QString(trashed) : QString();
    }
    QCoro::Task<Result<void>> putBack(const QString trashed, const QString original) override
    {
        calls.append(QStringLiteral("put back ") + original);
        if (refused.contains(trashed))
            co_return failure(refused.value(trashed));
        const QFileInfo there(original);
        const bool isFree = !there.exists() && !there.isSymLink();
        if (!trashed.startsWith(_folder.path() + u'/') || !isFree || !QDir().mkpath(there.path()) ||
            !move(trashed, original))
            co_return failure(QStringLiteral("cannot put back"));
        co_return Result<void>();
    }
    QCoro::Task<Result<RemovalReport>> empty(RemovalRules rules, Cancellation) override
    {
        calls.append(QStringLiteral("empty"));
        emptyRules.append(rules);
        if (emptyFailure)
            co_return failure(*emptyFailure);
        RemovalReport report;
        const QDir folder(_folder.path());
        for (const QString &place : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            QDir(folder.filePath(place)).removeRecursively();
            ++report.removedFiles;
        }
        co_return emptyReport.value_or(report);
    }
    QStringList folders() const override { return {_folder.path()}; }

private:
    static bool move(const QString &from, const QString &to)
    {
        return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
    }

    QTemporaryDir _folder;
    int _count = 0;
};

} // namespace velbrix::test
