#pragma once

#include "foundation/Cancellation.h"
#include "foundation/FolderHandle.h"
#include "foundation/Removal.h"
#include "foundation/RemovalGuard.h"

#include <set>
#include <vector>

namespace velbrix {

// One way through an entry of an open folder: deepest first, with few folders
// open at a time however deep the tree is. Everything must outlive it.
class RemovalWalk {
public:
    RemovalWalk(const FolderHandle &root, const QByteArray &rootPath, const RemovalGuard &guard,
                const Cancellation &cancellation);

    // A rehearsal ends with the first thing that must stay, and tells whether
    // there was none; without a minimum age nothing needs one.
    bool mayGo(const QByteArray &entry);
    void remove(const QByteArray &entry);

    const RemovalReport &report() const { return _report; }

private:
    enum class Purpose { rehearse, remove };
    // A folder between the root and where the walk is.
    struct Level {
        QByteArray name;
        struct stat facts{};
        QList<QByteArray> pending; // taken from the end
        FolderHandle handle;       // closed while the walk is far below
        bool keepsSomething = false;
        bool isReported = false; // that nothing can be removed from it
    };

    void run(const QByteArray &entry, Purpose purpose);
    void visit(const QByteArray &name);
    bool judge(const struct stat &facts);
    void removeFile(const QByteArray &name, const struct stat &facts);
    void enter(const QByteArray &name, const struct stat &facts);
    void removeUnread(const QByteArray &name, const struct stat &facts, int error);
    void leave();
    // The innermost folder, opened again when need be; nothing when it has
    // gone, and then the walk is above it.
    const FolderHandle *innermost();
    const FolderHandle &handle(size_t level) const;
    void abandon(size_t level);
    void keep();
    void failed(int error);
    void problem(const QString &reason);
    void add(RemovalProblem problem);

    const FolderHandle &_root;
    const RemovalGuard &_guard;
    const Cancellation &_cancellation;
    std::optional<struct stat> _rootFacts;
    std::optional<qint64> _mount;
    Purpose _purpose = Purpose::remove;
    bool _mustStay = false;
    std::vector<Level> _levels;       // the first is the root
    QByteArray _path;                 // of what is looked at
    std::set<FileIdentity> _unlinked; // files that lost one of their names here
    RemovalReport _report;
};

} // namespace velbrix
