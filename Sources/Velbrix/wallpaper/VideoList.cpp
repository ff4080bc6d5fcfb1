#include "wallpaper/VideoList.h"

#include <QCollator>
#include <QDateTime>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Folders that a user sees as one file.
bool isPackage(const QString &name)
{
    static const QStringList endings = {
        u".app"_s,       u".bundle"_s,        u".framework"_s, u".plugin"_s,       u".kext"_s,
        u".pkg"_s,       u".photoslibrary"_s, u".tvlibrary"_s, u".musiclibrary"_s, u".imovielibrary"_s,
        u".fcpbundle"_s, u".rtfd"_s,          u".xcodeproj"_s, u".theater"_s};
    return std::ranges::any_of(
        endings, [&](const QString &ending) { return name.endsWith(ending, Qt::CaseInsensitive); });
}

struct Found {
    QString path;
    qint64 rank = 0; // the highest first, whatever the name
};

qint64 rank(const QFileInfo &info, VideoOrder order)
{
    switch (order) {
    case VideoOrder::date:
        return info.lastModified().toMSecsSinceEpoch();
    case VideoOrder::size:
        return info.size();
    case VideoOrder::name:
    case VideoOrder::length:
        break;
    }
    return 0; // asks the disk for nothing
}

QStringList sorted(const QString &folder, std::vector<Found> found)
{
    QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    // Sort keys: comparing 20,000 names pair by pair takes seconds.
    std::vector<std::pair<QCollatorSortKey, Found>> keyed;
    keyed.reserve(found.size());
    for (Found &each : found) {
        QCollatorSortKey key = collator.sortKey(each.path.sliced(folder.size()));
        keyed.emplace_back(std::move(key), std::move(each));
    }
    std::ranges::sort(keyed, [](const auto &a, const auto &b) {
        return a.second.rank != b.second.rank ? a.second.rank > b.second.rank : a.first < b.first;
    });
    QStringList result;
    result.reserve(static_cast<qsizetype>(keyed.size()));
    for (auto &entry : keyed)
        result.append(std::move(entry.second.path));
    return result;
}

} // namespace

VideoList videosBelow(const QString &folder, const QStringList &extensions, VideoOrder order,
                      const Cancellation &cancellation)
{
    std::vector<Found> found;
    QStringList folders = {folder};
    for (qsizetype i = 0; i < folders.size(); ++i) {
        QDirIterator entries(folders[i], QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
        while (entries.hasNext()) {
            if (cancellation.isCancelled())
                return {};
            const QString path = entries.next();
            const QFileInfo info = entries.fileInfo();
            if (!info.isDir()) {
                if (hasExtension(path, extensions))
                    found.push_back({path, rank(info, order)});
            } else if (!info.isSymLink() && !isPackage(info.fileName())) {
                folders.append(path);
            }
        }
    }
    return {sorted(folder, std::move(found)), folders};
}

} // namespace velbrix
