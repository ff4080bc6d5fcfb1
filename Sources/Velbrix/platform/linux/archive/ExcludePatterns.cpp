#include "platform/linux/archive/ExcludePatterns.h"

#include <fnmatch.h>

namespace velbrix {

ExcludePatterns::ExcludePatterns(const QStringList &patterns)
{
    for (const QString &text : patterns) {
        Pattern pattern{.text = text.toUtf8()};
        while (pattern.text.endsWith('/')) {
            pattern.foldersOnly = true;
            pattern.text.chop(1);
        }
        pattern.onPath = pattern.text.contains('/');
        if (pattern.text.startsWith('/'))
            pattern.text.remove(0, 1);
        pattern.flags = pattern.text.contains("**") ? 0 : FNM_PATHNAME;
        if (!pattern.text.isEmpty())
            _patterns.push_back(pattern);
    }
}

bool ExcludePatterns::matches(const QByteArray &path, bool isFolder) const
{
    const char *const name = path.constData() + path.lastIndexOf('/') + 1;
    for (const Pattern &pattern : _patterns) {
        if (pattern.foldersOnly && !isFolder)
            continue;
        const char *const subject = pattern.onPath ? path.constData() : name;
        if (::fnmatch(pattern.text.constData(), subject, pattern.flags) == 0)
            return true;
    }
    return false;
}

} // namespace velbrix
