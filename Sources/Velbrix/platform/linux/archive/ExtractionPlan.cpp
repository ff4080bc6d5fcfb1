#include "platform/linux/archive/ExtractionPlan.h"

#include <QSet>

#include <optional>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

std::optional<PlannedItem::Kind> kindOf(const ZipEntry &entry)
{
    const std::uint32_t kind = entry.mode & S_IFMT;
    if (kind == S_IFDIR || entry.name.endsWith('/'))
        return PlannedItem::Kind::folder;
    if (kind == S_IFLNK)
        return PlannedItem::Kind::link;
    if (kind == S_IFREG || kind == 0)
        return PlannedItem::Kind::file;
    return std::nullopt;
}

Result<QByteArrayList> safeParts(const ZipEntry &entry)
{
    const auto unsafe = failure(u"归档中有不安全的路径：“%1”，没有解压"_s.arg(shownName(entry)));
    if (entry.name.isEmpty() || entry.name.startsWith('/') || entry.name.contains('\0'))
        return unsafe;
    QByteArrayList parts;
    for (const QByteArray &part : entry.name.split('/')) {
        if (part == "..")
            return unsafe;
        if (!part.isEmpty() && part != ".")
            parts.append(part);
    }
    return parts;
}

} // namespace

Result<std::vector<PlannedItem>> extractionPlan(const std::vector<ZipEntry> &entries)
{
    std::vector<PlannedItem> plan;
    plan.reserve(entries.size());
    QSet<QByteArray> places;
    for (const ZipEntry &entry : entries) {
        const auto parts = safeParts(entry);
        if (!parts)
            return std::unexpected(parts.error());
        const auto kind = kindOf(entry);
        if (!kind || parts->isEmpty())
            continue;
        const qsizetype before = places.size();
        places.insert(parts->join('/'));
        if (places.size() == before)
            return failure(u"归档中有两个“%1”，没有解压"_s.arg(shownName(entry)));
        plan.push_back({*parts, *kind, &entry});
    }
    return plan;
}

} // namespace velbrix
