#include "foundation/ExcludeRules.h"

#include <utility>

#include <fnmatch.h>

using namespace Qt::StringLiterals;

namespace velbrix {

ExcludeRules::ExcludeRules(const QStringList &patterns)
{
    // A Mac's disk may have composed what was typed decomposed, and the other way round.
    for (const QString &text : patterns) {
        for (const QString &spelling : spellings(text))
            add({.pattern = spelling.toUtf8()});
    }
}

void ExcludeRules::add(Rule rule)
{
    while (rule.pattern.endsWith('/')) {
        rule.foldersOnly = true;
        rule.pattern.chop(1);
    }
    rule.isPath = rule.pattern.contains('/');
    while (rule.pattern.startsWith('/'))
        rule.pattern.remove(0, 1);
    rule.flags = rule.pattern.contains("**") ? 0 : FNM_PATHNAME;
    if (!rule.pattern.isEmpty())
        _rules.push_back(std::move(rule));
}

bool ExcludeRules::excludes(const QByteArray &path, bool isFolder) const
{
    const QByteArray name = path.sliced(path.lastIndexOf('/') + 1);
    for (const Rule &rule : _rules) {
        if (rule.foldersOnly && !isFolder)
            continue;
        const QByteArray &subject = rule.isPath ? path : name;
        if (::fnmatch(rule.pattern.constData(), subject.constData(), rule.flags) == 0)
            return true;
    }
    return false;
}

bool ExcludeRules::excludesWithin(const QByteArray &folder) const
{
    for (auto end = folder.indexOf('/'); end >= 0; end = folder.indexOf('/', end + 1)) {
        if (excludes(folder.first(end), true))
            return true;
    }
    return excludes(folder, true);
}

QByteArrayList ExcludeRules::rsyncPatterns() const
{
    QByteArrayList patterns;
    for (const Rule &rule : _rules) {
        // The leading "- " keeps rsync from reading "+ x", "!" or "#x" as a rule of another kind.
        patterns.append("- " + QByteArray(rule.isPath ? "/" : "") + rule.pattern +
                        (rule.foldersOnly ? "/" : ""));
    }
    return patterns;
}

QStringList spellings(const QString &pattern)
{
    QStringList all{pattern};
    if (pattern.contains(u'['))
        return all;
    for (const auto form : {QString::NormalizationForm_C, QString::NormalizationForm_D}) {
        if (const QString other = pattern.normalized(form); !all.contains(other))
            all.append(other);
    }
    return all;
}

Result<std::shared_ptr<QTemporaryFile>> patternFile(const QByteArrayList &patterns)
{
    QByteArray lines;
    for (const QByteArray &pattern : patterns)
        lines += QByteArray(pattern).replace('\n', '?') + '\n'; // a line break cannot be written
    auto file = std::make_shared<QTemporaryFile>();
    // One that is cut off would have what was to be left alone copied over, and deleted.
    if (!file->open() || file->write(lines) != lines.size() || !file->flush())
        return failure(u"无法写入临时文件：%1"_s.arg(file->errorString()));
    return file;
}

} // namespace velbrix
