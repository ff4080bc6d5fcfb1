#include "platform/linux/x11/MonitorNames.h"

#include <algorithm>
#include <numeric>
#include <set>

namespace velbrix {

namespace {

// FNV-1a: settings are kept under these numbers, so it must never change.
quint32 hash(const QByteArray &name)
{
    quint32 value = 2166136261U;
    for (const char byte : name)
        value = (value ^ static_cast<quint8>(byte)) * 16777619U;
    return value;
}

} // namespace

std::vector<quint32> displayIds(const std::vector<QByteArray> &connectors)
{
    std::vector<std::size_t> order(connectors.size());
    std::iota(order.begin(), order.end(), 0U);
    std::ranges::sort(order, {}, [&](std::size_t index) { return std::pair(connectors[index], index); });
    std::vector<quint32> ids(connectors.size());
    std::set<quint32> taken{0};
    for (const std::size_t index : order) {
        quint32 id = hash(connectors[index]);
        while (!taken.insert(id).second)
            ++id;
        ids[index] = id;
    }
    return ids;
}

QString edidName(const QByteArray &edid)
{
    constexpr qsizetype firstDescriptor = 54;
    constexpr qsizetype descriptorSize = 18;
    constexpr qsizetype descriptors = 4;
    constexpr qsizetype textOffset = 5;
    for (qsizetype i = 0; i < descriptors; ++i) {
        const QByteArray descriptor = edid.mid(firstDescriptor + i * descriptorSize, descriptorSize);
        if (descriptor.size() < descriptorSize || !descriptor.startsWith(QByteArray("\0\0\0\xfc", 4)))
            continue;
        QByteArray text = descriptor.mid(textOffset);
        const qsizetype end = text.indexOf('\n');
        return QString::fromLatin1(end < 0 ? text : text.left(end)).simplified();
    }
    return {};
}

} // namespace velbrix
