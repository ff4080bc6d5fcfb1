#pragma once

#include "foundation/Result.h"

#include <QByteArrayList>
#include <QStringList>
#include <QTemporaryFile>

#include <memory>
#include <vector>

namespace velbrix {

// Which names are excluded from a copy of a folder. A pattern with a slash in it means
// paths below the folder, any other one the last name; a slash at its end means
// folders only. "*" and "?" stop at a slash unless the pattern has "**". A pattern
// means names of the same text in whichever Unicode normal form.
class ExcludeRules {
public:
    explicit ExcludeRules(const QStringList &patterns);

    bool isEmpty() const { return _rules.empty(); }
    // The path is below the folder, without a slash at either end.
    bool excludes(const QByteArray &path, bool isFolder) const;
    // Whether it or a folder above it is excluded.
    bool excludesWithin(const QByteArray &folder) const;

    // The same as lines of a file for rsync's --exclude-from.
    QByteArrayList rsyncPatterns() const;

private:
    struct Rule {
        QByteArray pattern;
        bool isPath = false;
        bool foldersOnly = false;
        int flags = 0;
    };
    void add(Rule rule);

    std::vector<Rule> _rules;
};

// A pattern as it is typed and in both normal forms, each once. One with a set of
// characters stands for itself: decomposed, the set would have more of them.
QStringList spellings(const QString &pattern);

// A file of one pattern a line that ends with the answer: among its arguments a Mac
// passes nothing on composed. Blocking.
Result<std::shared_ptr<QTemporaryFile>> patternFile(const QByteArrayList &patterns);

} // namespace velbrix
