#include "maintenance/backup/TreeComparison.h"

#include <QHash>
#include <QSet>

#include <algorithm>
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
    qint64 allocated = 0;
};

constexpr qint64 blockSize = 512; // of st_blocks
// What smaller files need more than those that they replace fills no disk, and is not worth a look at each.
constexpr qint64 largeFile = 1 << 20;

qint64 allocated(const struct stat &facts)
{
    return std::min<qint64>(facts.st_size, facts.st_blocks * blockSize);
}

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
    std::optional<QHash<QByteArray, Entry>> list(const QByteArray &path, bool wantsSizes) const
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
                entries.insert(name, entryOf(opened, *found, wantsSizes));
        }
        return errno == 0 ? std::optional(std::move(entries)) : std::nullopt;
    }

    // Of the entry itself, also when it is a link.
    std::optional<struct stat> facts(const QByteArray &path) const
    {
        struct stat facts{};
        if (::fstatat(_root, path.constData(), &facts, AT_SYMLINK_NOFOLLOW) != 0)
            return std::nullopt;
        return facts;
    }

private:
    static Entry entryOf(int folder, const dirent &found, bool wantsSizes)
    {
        if (found.d_type != DT_UNKNOWN && !(wantsSizes && found.d_type == DT_REG))
            return {found.d_type == DT_DIR   ? Kind::folder
                    : found.d_type == DT_REG ? Kind::file
                                             : Kind::other};
        struct stat facts{};
        if (::fstatat(folder, found.d_name, &facts, AT_SYMLINK_NOFOLLOW) != 0)
            return {found.d_type == DT_REG ? Kind::file : Kind::other};
        if (S_ISDIR(facts.st_mode))
            return {Kind::folder};
        if (!S_ISREG(facts.st_mode))
            return {};
        return {Kind::file, facts.st_size, allocated(facts)};
    }

    int _root;
};

class Comparison {
public:
    Comparison(const QByteArray &source, const QByteArray &mirror, const ExcludeRules &rules)
        : _source(source), _mirror(mirror), _rules(rules), _hasMirror(!mirror.isEmpty())
    {
    }

    TreeFacts run(const Cancellation &cancellation)
    {
        _waiting.push_back({.inSource = true, .inMirror = true});
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
        QByteArray path = {};
        bool inSource = false;
        bool inMirror = false;
        bool isLost = false; // the source has no such folder
        bool isJunk = false;
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
            ours = _source.list(folder.path, true);
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
        if (ours && _hasMirror)
            findOneByAnothersName(folder, *ours, theirs);
        // Nothing is deleted where the source cannot be read.
        visitMirror(folder, theirs.value_or(Entries()), ours);
        visitSource(folder, ours.value_or(Entries()), theirs.value_or(Entries()));
    }

    // What the mirror's disk takes for the source's is the source's.
    void findOneByAnothersName(const Folder &folder, const Entries &ours, std::optional<Entries> &theirs)
    {
        const auto names = [](const Entries &entries) {
            return QSet<QByteArray>(entries.keyBegin(), entries.keyEnd());
        };
        const auto isListed = [&](const QByteArray &name) { return theirs && theirs->contains(name); };
        if (std::all_of(ours.keyBegin(), ours.keyEnd(), isListed))
            return;
        const qsizetype known = _facts.names.respelled.size();
        const auto identity = [&](const QByteArray &name) {
            const auto facts = _mirror.facts(below(folder, name));
            return facts ? std::optional(FileIdentity::of(*facts)) : std::nullopt;
        };
        compareNames(folder.path, names(ours), theirs ? names(*theirs) : QSet<QByteArray>(), identity,
                     _facts.names);
        for (const NamePair &pair : _facts.names.respelled.sliced(known))
            theirs->insert(pair.second, theirs->take(pair.first));
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
                _waiting.push_back({.path = below(folder, it.key()), .inMirror = true, .isLost = isLost});
            }
            _facts.deletedEntries += isLost ? 1 : 0;
        }
    }

    void visitSource(const Folder &folder, const Entries &ours, const Entries &theirs)
    {
        for (auto it = ours.cbegin(); it != ours.cend(); ++it) {
            const bool isFolder = it->kind == Kind::folder;
            const bool isItJunk = folder.isJunk || isJunk(it.key());
            const auto other = theirs.constFind(it.key());
            const bool isInMirror = other != theirs.cend() && other->kind == it->kind;
            ++_facts.entries;
            _facts.items += isFolder ? 0 : 1;
            _facts.junk += !isFolder && isItJunk ? 1 : 0;
            if (it->kind == Kind::file)
                count(*it, isInMirror ? below(folder, it.key()) : QByteArray());
            if (isFolder)
                _waiting.push_back({.path = below(folder, it.key()),
                                    .inSource = true,
                                    .inMirror = isInMirror,
                                    .isJunk = isItJunk});
        }
    }

    // With the path that it has in the mirror, if any.
    void count(const Entry &file, const QByteArray &inMirror)
    {
        ++_facts.files;
        _facts.bytes += file.bytes;
        _facts.allocated += file.allocated;
        if (!inMirror.isEmpty()) {
            const auto other = file.bytes < largeFile ? std::nullopt : _mirror.facts(inMirror);
            if (!other || other->st_size == file.bytes)
                return;
            _facts.outgoing += allocated(*other);
        }
        _facts.incoming += file.allocated;
    }

    Tree _source;
    Tree _mirror;
    const ExcludeRules &_rules;
    const bool _hasMirror;
    std::vector<Folder> _waiting;
    TreeFacts _facts;
};

} // namespace

bool isJunk(const QByteArray &name)
{
    static const QSet<QByteArray> names{".ds_store",
                                        "desktop.ini",
                                        "thumbs.db",
                                        ".localized",
                                        ".directory",
                                        ".spotlight-v100",
                                        ".fseventsd",
                                        ".trashes",
                                        "system volume information",
                                        "$recycle.bin",
                                        "lost+found",
                                        ".temporaryitems",
                                        ".documentrevisions-v100"};
    return names.contains(name.toLower()) || name.startsWith("._") || name.startsWith(".Trash-");
}

TreeFacts compareTrees(const QByteArray &source, const QByteArray &mirror, const ExcludeRules &rules,
                       const Cancellation &cancellation)
{
    return Comparison(source, mirror, rules).run(cancellation);
}

TreeFacts measureTree(const QByteArray &source, const ExcludeRules &rules, const Cancellation &cancellation)
{
    return Comparison(source, {}, rules).run(cancellation);
}

} // namespace velbrix
