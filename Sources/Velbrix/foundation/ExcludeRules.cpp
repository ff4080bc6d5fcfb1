#include "foundation/ExcludeRules.h"

#include <utility>

#include <fnmatch.h>

using namespace Qt::StringLiterals;

namespace velbrix {

ExcludeRules::ExcludeRules(const QStringList &patterns)
{
    for (const QString &text : patterns) {
        add({.pattern = text.toUtf8()});
        // A Mac's disk may have composed what was typed decomposed, and the other way round.
        for (const auto form : {QString::NormalizationForm_C, QString::NormalizationForm_D}) {
            if (const QString other = text.normalized(form); other != text)
                add({.pattern = other.toUtf8()});
        }
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

QStringList ExcludeRules::rsyncArguments() const
{
    QStringList arguments;
    for (const Rule &rule : _rules) {
        // The leading "- " keeps rsync from reading "+ x" or "!" as a rule of another kind.
        arguments.append(u"--exclude=- "_s + (rule.isPath ? u"/"_s : QString()) +
                         QString::fromUtf8(rule.pattern) + (rule.foldersOnly ? u"/"_s : QString()));
    }
    return arguments;
}

} // namespace velbrix
