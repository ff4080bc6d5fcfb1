#include "maintenance/backup/TreeComparison.h"

#include <QHash>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace velbrix {
namespace {

enum class Kind { file, folder, other };

struct Entry {
    Kind kind = Kind::other;
    qint64 bytes = 0;
};

// An open folder under which everything is found by its relative path.
class Tree {
public:
    explicit Tree(const QByteArray &path)
        : _root(path.isEmpty() ? -1 : ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
    }
    ~Tree()
    {
        if (_root >= 0)
            ::close(_root);
    }
    Tree(const Tree &) = delete;
    Tree &operator=(const Tree &) = delete;

    // Nothing when it cannot be read to its end.
    std::optional<QHash<QByteArray, Entry>> list(const QByteArray &path, bool wantsBytes) const
    {
        const int opened = path.isEmpty() ? ::openat(_root, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)
                                          : ::openat(_root, path.constData(),
                                                     O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (opened < 0)
            return std::nullopt;
        const std::unique_ptr<DIR, int (*)(DIR *)> folder(::fdopendir(opened), ::closedir);
        if (!folder) {
            ::close(opened);
            return std::nullopt;
        }
        QHash<QByteArray, Entry> entries;
        for (errno = 0; const dirent *found = ::readdir(folder.get()); errno = 0) {
            const QByteArray name(found->d_name);
            if (name != "." && name != "..")
                entries.insert(name, entryOf(opened, *found, wantsBytes));
        }
        return errno == 0 ? std::optional(std::move(entries)) : std::nullopt;
    }

private:
    static Entry entryOf(int folder, const dirent &found, bool wantsBytes)
    {
        const bool isKnown = found.d_type != DT_UNKNOWN && !(wantsBytes && found.d_type == DT_REG);
        if (isKnown)
            return {found.d_type == DT_DIR   ? Kind::folder
                    : found.d_type == DT_REG ? Kind::file
                                             : Kind::other};
        struct stat facts{};
        if (::fstatat(folder, found.d_name, &facts, AT_SYMLINK_NOFOLLOW) != 0)
            return {};
        if (S_ISDIR(facts.st_mode))
            return {Kind::folder};
        return S_ISREG(facts.st_mode) ? Entry{Kind::file, facts.st_size} : Entry{};
    }

    int _root;
};

class Comparison {
public:
    Comparison(const QByteArray &source, const QByteArray &mirror, const ExcludeRules &rules, bool wantsBytes)
        : _source(source), _mirror(mirror), _rules(rules), _wantsBytes(wantsBytes)
    {
    }

    TreeFacts run(const Cancellation &cancellation)
    {
        _waiting.push_back({{}, true, true, false});
        while (!_waiting.empty() && !cancellation.isCancelled()) {
            const Folder folder = std::move(_waiting.back());
            _waiting.pop_back();
            visit(folder);
        }
        _facts.isCancelled = cancellation.isCancelled();
        return _facts;
    }

private:
    using Entries = QHash<QByteArray, Entry>;

    struct Folder {
        QByteArray path;
        bool inSource = false;
        bool inMirror = false;
        bool isLost = false; // the source has no such folder
    };

    static QByteArray below(const Folder &folder, const QByteArray &name)
    {
        return folder.path.isEmpty() ? name : folder.path + '/' + name;
    }

    Entries withoutExcluded(const Folder &folder, Entries entries) const
    {
        if (!_rules.isEmpty())
            entries.removeIf([&](const auto &entry) {
                return _rules.excludes(below(folder, entry.key()), entry.value().kind == Kind::folder);
            });
        return entries;
    }

    void visit(const Folder &folder)
    {
        std::optional<Entries> ours;
        if (folder.inSource) {
            ours = _source.list(folder.path, _wantsBytes);
            if (ours)
                ours = withoutExcluded(folder, *std::move(ours));
            if (folder.path.isEmpty())
                _facts.isReadable = ours.has_value();
        }
        std::optional<Entries> theirs;
        if (folder.inMirror)
            theirs = _mirror.list(folder.path, false);
        if (theirs)
            theirs = withoutExcluded(folder, *std::move(theirs));
        // Nothing is deleted where the source cannot be read.
        visitMirror(folder, theirs.value_or(Entries()), ours);
        visitSource(folder, ours.value_or(Entries()), theirs.value_or(Entries()));
    }

    void visitMirror(const Folder &folder, const Entries &theirs, const std::optional<Entries> &ours)
    {
        for (auto it = theirs.cbegin(); it != theirs.cend(); ++it) {
            const auto own = ours ? ours->constFind(it.key()) : Entries::const_iterator();
            const bool isInSource = ours && own != ours->cend();
            const bool isFolder = it->kind == Kind::folder;
            const bool isLost = folder.isLost || (ours && !isInSource) ||
                                (isInSource && (own->kind == Kind::folder) != isFolder);
            if (!isFolder) {
                ++_facts.mirrorFiles;
                _facts.deletions += isLost ? 1 : 0;
            } else if (isLost || !isInSource) {
                _waiting.push_back({below(folder, it.key()), false, true, isLost});
            }
            _facts.deletedEntries += isLost ? 1 : 0;
        }
    }

    void visitSource(const Folder &folder, const Entries &ours, const Entries &theirs)
    {
        for (auto it = ours.cbegin(); it != ours.cend(); ++it) {
            ++_facts.entries;
            _facts.items += it->kind == Kind::folder ? 0 : 1;
            _facts.files += it->kind == Kind::file ? 1 : 0;
            _facts.bytes += it->bytes;
            if (it->kind != Kind::folder)
                continue;
            const auto other = theirs.constFind(it.key());
            const bool isInMirror = other != theirs.cend() && other->kind == Kind::folder;
            _waiting.push_back({below(folder, it.key()), true, isInMirror, false});
        }
    }

    Tree _source;
    Tree _mirror;
    const ExcludeRules &_rules;
    const bool _wantsBytes;
    std::vector<Folder> _waiting;
    TreeFacts _facts;
};

} // namespace

TreeFacts compareTrees(const QByteArray &source, const QByteArray &mirror, const ExcludeRules &rules,
                       const Cancellation &cancellation)
{
    return Comparison(source, mirror, rules, false).run(cancellation);
}

TreeFacts measureTree(const QByteArray &source, const ExcludeRules &rules, const Cancellation &cancellation)
{
    return Comparison(source, {}, rules, true).run(cancellation);
}

} // namespace velbrix
