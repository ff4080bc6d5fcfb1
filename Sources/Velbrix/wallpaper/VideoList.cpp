#include "wallpaper/VideoList.h"

#include "wallpaper/WallpaperTypes.h"

#include <QCollator>
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

QStringList sorted(const QString &folder, const QStringList &paths)
{
    QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    // Sort keys: comparing 20,000 names pair by pair takes seconds.
    std::vector<std::pair<QCollatorSortKey, QString>> keyed;
    keyed.reserve(static_cast<size_t>(paths.size()));
    for (const QString &path : paths)
        keyed.emplace_back(collator.sortKey(path.sliced(folder.size())), path);
    std::ranges::sort(keyed, [](const auto &a, const auto &b) { return a.first < b.first; });
    QStringList result;
    result.reserve(paths.size());
    for (auto &entry : keyed)
        result.append(std::move(entry.second));
    return result;
}

} // namespace

QStringList videosBelow(const QString &folder, const Cancellation &cancellation)
{
    QStringList found;
    QStringList folders = {folder};
    while (!folders.isEmpty()) {
        QDirIterator entries(folders.takeLast(), QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
        while (entries.hasNext()) {
            if (cancellation.isCancelled())
                return {};
            const QString path = entries.next();
            const QFileInfo info = entries.fileInfo();
            if (!info.isDir()) {
                if (hasVideoExtension(path))
                    found.append(path);
            } else if (!info.isSymLink() && !isPackage(info.fileName())) {
                folders.append(path);
            }
        }
    }
    return sorted(folder, found);
}

} // namespace velbrix
