#pragma once

#include <QByteArray>
#include <QStringList>

#include <vector>

namespace velbrix {

// Which names a copy of a folder leaves out. A pattern with a slash in it means
// paths below the folder, any other one the last name; a slash at its end means
// folders only. "*" and "?" stop at a slash unless the pattern has "**".
class ExcludeRules {
public:
    explicit ExcludeRules(const QStringList &patterns);

    bool isEmpty() const { return _rules.empty(); }
    // The path is below the folder, without a slash at either end.
    bool leavesOut(const QByteArray &path, bool isFolder) const;
    // Whether it or a folder above it is left out.
    bool leavesOutWithin(const QByteArray &folder) const;

    // The same for rsync's command line.
    QStringList rsyncArguments() const;

private:
    struct Rule {
        QByteArray pattern;
        bool isPath = false;
        bool foldersOnly = false;
        int flags = 0;
    };
    std::vector<Rule> _rules;
};

} // namespace velbrix
