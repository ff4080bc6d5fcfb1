#pragma once

#include <QByteArray>
#include <QStringList>

#include <vector>

namespace velbrix {

// Which names a folder's copy leaves out. "*" and "?" stop at a slash unless
// the pattern has "**"; a slash at the end means folders only.
class ExcludePatterns {
public:
    explicit ExcludePatterns(const QStringList &patterns);

    // The path is below the source, without a slash at either end.
    bool matches(const QByteArray &path, bool isFolder) const;

private:
    struct Pattern {
        QByteArray text;
        bool onPath = false; // else on the last name alone
        bool foldersOnly = false;
        int flags = 0;
    };
    std::vector<Pattern> _patterns;
};

} // namespace velbrix
