#include "maintenance/uninstall/DataMatch.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr qsizetype shortestCertainToken = 4;

QString comparable(const QString &text)
{
    return text.normalized(QString::NormalizationForm_C).toLower();
}

// A token of nothing but blanks would be found everywhere.
QString token(const QString &text)
{
    return text.trimmed().isEmpty() ? QString() : comparable(text);
}

bool continuesWord(QChar c)
{
    return c.isLetterOrNumber() || c == u'-' || c == u'_';
}

bool isWordAt(const QString &text, qsizetype start, qsizetype length)
{
    const qsizetype end = start + length;
    return (start == 0 || !continuesWord(text.at(start - 1))) &&
           (end == text.size() || !continuesWord(text.at(end)));
}

template <typename Test> bool isAnyOccurrence(const QString &text, const QString &part, Test test)
{
    for (qsizetype at = text.indexOf(part); at >= 0; at = text.indexOf(part, at + 1)) {
        if (test(at))
            return true;
    }
    return false;
}

// What a program writes under its bare identifier.
bool isDataSuffix(const QString &suffix)
{
    static const QSet<QString> suffixes = {u"plist"_s, u"savedstate"_s, u"binarycookies"_s, u"conf"_s,
                                           u"cfg"_s,   u"ini"_s,        u"json"_s,          u"toml"_s,
                                           u"yaml"_s,  u"xml"_s,        u"log"_s,           u"db"_s};
    return suffixes.contains(suffix);
}

// Folders of the session into which many programs write, whatever else is
// called so.
bool isEverybodys(const QString &entry)
{
    static const QSet<QString> names = {u"applications"_s,  u"autostart"_s,
                                        u"backgrounds"_s,   u"byhost"_s,
                                        u"cache"_s,         u"containers"_s,
                                        u"databases"_s,     u"dbus-1"_s,
                                        u"dconf"_s,         u"desktop-directories"_s,
                                        u"environment.d"_s, u"flatpak"_s,
                                        u"fontconfig"_s,    u"fonts"_s,
                                        u"icons"_s,         u"keyrings"_s,
                                        u"locale"_s,        u"menus"_s,
                                        u"metadata"_s,      u"mime"_s,
                                        u"preferences"_s,   u"sessions"_s,
                                        u"sounds"_s,        u"systemd"_s,
                                        u"themes"_s,        u"thumbnails"_s,
                                        u"trash"_s,         u"wayland-sessions"_s,
                                        u"xsessions"_s};
    return names.contains(entry);
}

} // namespace

DataMatcher::DataMatcher(const DataSubject &subject)
    : _name(token(subject.name)), _identifier(token(subject.identifier))
{
    for (const QString &other : subject.others) {
        if (const QString mark = token(other); !mark.isEmpty())
            _others.append(mark);
    }
    for (const QString &mark : {u"velbrix"_s, token(subject.own.name), token(subject.own.identifier)}) {
        if (!mark.isEmpty())
            _own.append(mark);
    }
}

std::optional<DataMatch> DataMatcher::match(const QString &entry, bool leadsElsewhere) const
{
    const QString text = comparable(entry);
    std::optional<DataMatch> found = find(text);
    if (!found || std::ranges::any_of(_own, [&](const QString &mark) { return text.contains(mark); }))
        return std::nullopt;
    found->caution = leadsElsewhere ? u"是指向别处的链接"_s : caution(text, found->reason);
    return found;
}

std::optional<DataMatch> DataMatcher::find(const QString &entry) const
{
    if (!_identifier.isEmpty() && entry.contains(_identifier))
        return DataMatch{MatchReason::identifier, u"名称包含标识 "_s + _identifier, {}};
    if (_name.isEmpty())
        return std::nullopt;
    if (const QString vendor = u"com."_s + _name; entry.contains(vendor))
        return DataMatch{MatchReason::vendorPrefix, u"名称包含 "_s + vendor, {}};
    if (entry.contains(_name))
        return DataMatch{MatchReason::name, u"名称包含应用名 "_s + _name, {}};
    return std::nullopt;
}

QString DataMatcher::caution(const QString &entry, MatchReason reason) const
{
    if (const QString other = otherOwner(entry); !other.isEmpty())
        return other == _identifier ? u"另一个已安装的应用使用相同的标识"_s
                                    : u"可能属于另一个应用："_s + other;
    const bool isIdentified = reason == MatchReason::identifier;
    const QString &used = isIdentified ? _identifier : _name;
    if (used.size() < shortestCertainToken)
        return u"匹配的文字「%1」太短"_s.arg(used);
    if (!isIdentified)
        return u"仅名称相似，可能属于其他应用"_s;
    if (isEverybodys(entry))
        return u"许多应用共用的文件夹"_s;
    // "com.vendor" or "editor" names more than one program.
    const bool isPrecise = _identifier.count(u'.') >= 2;
    if (isExactly(entry) || (isPrecise && hasWholeIdentifier(entry)))
        return {};
    return u"名称与标识不完全一致，可能属于其他应用"_s;
}

QString DataMatcher::otherOwner(const QString &entry) const
{
    for (const QString &other : _others) {
        const bool isWithinOwn = _identifier.contains(other) && other != _identifier;
        const auto counts = [&](qsizetype at) {
            if (other.size() < shortestCertainToken && !isWordAt(entry, at, other.size()))
                return false;
            // "com.acme.app" in "com.acme.app.pro" says nothing about whose it is.
            const auto covers = [&](qsizetype ours) {
                return ours <= at && at + other.size() <= ours + _identifier.size();
            };
            return !isWithinOwn || !isAnyOccurrence(entry, _identifier, covers);
        };
        if (isAnyOccurrence(entry, other, counts))
            return other;
    }
    return {};
}

bool DataMatcher::isExactly(const QString &entry) const
{
    const QString bare = entry.startsWith(u'.') && !_identifier.startsWith(u'.') ? entry.sliced(1) : entry;
    return bare == _identifier ||
           (bare.startsWith(_identifier + u'.') && isDataSuffix(bare.sliced(_identifier.size() + 1)));
}

bool DataMatcher::hasWholeIdentifier(const QString &entry) const
{
    return isAnyOccurrence(entry, _identifier,
                           [&](qsizetype at) { return isWordAt(entry, at, _identifier.size()); });
}

} // namespace velbrix
