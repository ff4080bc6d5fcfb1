#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QIcon>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

// A file of the user's that belongs to an application without being in it: the
// launcher of an AppImage, the program that a launcher of their own starts.
struct ApplicationCompanion {
    QString path;
    bool isCertain = false; // of no use without the application

    bool operator==(const ApplicationCompanion &) const = default;
};

struct InstalledApplication {
    enum class Kind {
        bundle,       // macOS; the path is its folder
        desktopEntry, // a launcher of the user's own, or one nobody manages
        appImage,
        managed // by a package manager: its files are never deleted by us
    };

    QString name;
    QString path;       // of the bundle, the launcher or the AppImage
    QString identifier; // empty when it has none
    QString version;    // empty when unknown
    QIcon icon;
    Kind kind = Kind::bundle;
    QString manager;            // of managed: "APT", "Flatpak", "Snap" …
    QString package;            // of managed: its name there
    std::optional<qint64> size; // bytes, when the host knows without measuring
    QList<ApplicationCompanion> companions;
    QStringList programs; // files and folders: what runs from one of them is the application
    // Of managed: data that its manager deletes with it for good, may be
    // missing; the user's own can be moved out of its way before.
    QStringList userDataRemoved;
    QStringList systemDataRemoved;
    bool isListed = true; // else it only tells whose some data is
};

// Folders in which applications keep data of the user, one for each kind.
enum class LibraryKind { preferences, appSupport, caches, containers, savedState, logs, webKit };

struct LibraryFolder {
    LibraryKind kind;
    QString path; // may be missing

    bool operator==(const LibraryFolder &) const = default;
};

// This program as an application.
struct OwnIdentity {
    QString path; // of the bundle or the executable
    QString name;
    QString identifier;

    bool operator==(const OwnIdentity &) const = default;
};

// What applications there are and how those of a package manager go. Main
// thread; the work is done off it. Hostile or broken descriptions cost at most
// the application they describe.
class ApplicationCatalog {
public:
    virtual ~ApplicationCatalog() = default;

    virtual QCoro::Task<Result<QList<InstalledApplication>>> applications() = 0;
    virtual OwnIdentity ownIdentity() const = 0;
    // In the order in which they are searched; a kind the host does not know
    // is left out, and one may have several folders.
    virtual QList<LibraryFolder> libraryFolders() const = 0;

    // The package as its manager names what would go with it; for the review.
    virtual QCoro::Task<Result<QStringList>> packagesRemovedWith(const InstalledApplication application) = 0;
    // Through the package manager, which asks for the password if it must. When
    // more packages than those agreed to would go, none does.
    virtual QCoro::Task<Result<void>> removeManaged(const InstalledApplication application,
                                                    const QStringList agreed, Cancellation cancellation) = 0;
};

} // namespace velbrix
