#include "platform/linux/applications/DesktopEntry.h"

#include "foundation/Text.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr qint64 sizeLimit = 1 << 20;
constexpr qsizetype nameLimit = 200;

QString unescaped(const QByteArray &value)
{
    const QString text = QString::fromUtf8(value);
    QString plain;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] != u'\\' || at + 1 == text.size()) {
            plain += text[at];
            continue;
        }
        switch (text[++at].unicode()) {
        case u's':
            plain += u' ';
            break;
        case u'n':
            plain += u'\n';
            break;
        case u't':
            plain += u'\t';
            break;
        case u'r':
            plain += u'\r';
            break;
        default:
            plain += text[at];
        }
    }
    return plain;
}

QStringList listed(const QByteArray &value)
{
    return QString::fromUtf8(value).split(u';', Qt::SkipEmptyParts);
}

QString nameOf(const DesktopEntryKeys &values)
{
    for (const auto &key : {"Name[zh_CN]", "Name[zh]", "Name"}) {
        const QString name = oneLine(unescaped(values.value(key))).simplified();
        if (!name.isEmpty())
            return name.left(nameLimit);
    }
    return {};
}

} // namespace

DesktopEntryKeys desktopEntryKeys(const QByteArray &text)
{
    DesktopEntryKeys values;
    bool isMain = false;
    qsizetype at = 0;
    while (at < text.size()) {
        qsizetype end = text.indexOf('\n', at);
        if (end < 0)
            end = text.size();
        const QByteArrayView line = QByteArrayView(text).sliced(at, end - at).trimmed();
        at = end + 1;
        if (line.startsWith('[')) {
            if (isMain)
                break;
            isMain = line == "[Desktop Entry]";
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (!isMain || equals <= 0 || line.startsWith('#'))
            continue;
        const QByteArray key = line.first(equals).trimmed().toByteArray();
        if (!values.contains(key))
            values.insert(key, line.sliced(equals + 1).trimmed().toByteArray());
    }
    return values;
}

bool DesktopEntry::isShown(const QStringList &desktops) const
{
    const auto isHere = [&](const QString &desktop) { return desktops.contains(desktop); };
    if (isHidden || std::ranges::any_of(notShowIn, isHere))
        return false;
    if (!onlyShowIn.isEmpty() && !std::ranges::any_of(onlyShowIn, isHere))
        return false;
    if (tryExec.isEmpty())
        return true;
    return tryExec.startsWith(u'/') ? QFileInfo(tryExec).isExecutable()
                                    : !QStandardPaths::findExecutable(tryExec).isEmpty();
}

std::optional<DesktopEntry> parseDesktopEntry(const QByteArray &text)
{
    if (text.contains('\0'))
        return std::nullopt;
    const DesktopEntryKeys values = desktopEntryKeys(text);
    const QString name = nameOf(values);
    const QString exec = unescaped(values.value("Exec"));
    const bool starts = !exec.isEmpty() || values.value("DBusActivatable") == "true";
    const bool isHidden = values.value("Hidden") == "true" || values.value("NoDisplay") == "true";
    // One that says no more than that it is hidden hides others of its id.
    if (!isHidden && (values.value("Type") != "Application" || name.isEmpty() || !starts))
        return std::nullopt;
    return DesktopEntry{name,
                        exec,
                        unescaped(values.value("TryExec")),
                        unescaped(values.value("Icon")),
                        oneLine(unescaped(values.value("X-AppImage-Version"))).simplified().left(nameLimit),
                        unescaped(values.value("X-Flatpak")),
                        unescaped(values.value("X-SnapInstanceName")),
                        isHidden,
                        listed(values.value("OnlyShowIn")),
                        listed(values.value("NotShowIn"))};
}

std::optional<DesktopEntry> readDesktopEntry(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || file.size() > sizeLimit || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return parseDesktopEntry(file.read(sizeLimit));
}

QStringList execArguments(const QString &exec)
{
    QStringList arguments;
    QString current;
    bool isQuoted = false;
    bool hasArgument = false;
    const auto finish = [&] {
        const bool isFieldCode = current.size() == 2 && current[0] == u'%' && current[1] != u'%';
        if (hasArgument && !isFieldCode)
            arguments.append(current.replace(u"%%"_s, u"%"_s));
        current.clear();
        hasArgument = false;
    };
    for (qsizetype at = 0; at < exec.size(); ++at) {
        const QChar character = exec[at];
        if (character == u'"') {
            isQuoted = !isQuoted;
            hasArgument = true;
        } else if (character == u'\\' && isQuoted && at + 1 < exec.size()) {
            current += exec[++at];
        } else if (!isQuoted && (character == u' ' || character == u'\t')) {
            finish();
        } else {
            current += character;
            hasArgument = true;
        }
    }
    if (isQuoted)
        return {};
    finish();
    return arguments;
}

} // namespace velbrix
