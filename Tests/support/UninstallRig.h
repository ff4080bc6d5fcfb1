#pragma once

#include "foundation/SettingsStore.h"
#include "maintenance/uninstall/AppScanner.h"
#include "maintenance/uninstall/UninstallJournal.h"
#include "support/FakePlatform.h"

#include <QCoroTask>

namespace velbrix::test {

// One that has been read.
inline UninstallJournal openedJournal(const QString &file)
{
    UninstallJournal journal(file);
    QCoro::waitFor(journal.loaded());
    return journal;
}

// A home with applications, two folders of their data and the uninstaller; the
// trash really takes. Change the host, then call make().
struct UninstallRig {
    UninstallRig()
    {
        qputenv("HOME", home().toUtf8());
        QDir().mkpath(home(u"Preferences"_s));
        QDir().mkpath(home(u"Caches"_s));
        host.applications.folders = {{LibraryKind::preferences, home(u"Preferences"_s)},
                                     {LibraryKind::caches, home(u"Caches"_s)}};
    }

    QTemporaryDir files;
    VirtualClock clock;
    FakePlatform host{clock};
    SettingsStore settings{std::move(host.platform.settings), clock};
    std::shared_ptr<AppScanner> scanner;
    QString message;    // of the last ending
    int idleAlarms = 0; // that wait whatever happens

    QString home(const QString &path = {}) const
    {
        return files.path() + u"/home"_s + (path.isEmpty() ? path : u'/' + path);
    }
    QString journal() const { return home(u"own/uninstalls.json"_s); }

    // A file, or a folder when the name ends in a stroke; its path.
    QString plant(const QString &path) const
    {
        if (!path.endsWith(u'/'))
            return writeFile(home(path));
        QDir().mkpath(home(path));
        return QDir::cleanPath(home(path));
    }
    InstalledApplication install(const QString &name, const QString &identifier = {})
    {
        InstalledApplication application;
        application.name = name;
        application.identifier = identifier;
        application.path = plant(u"Applications/%1.app/"_s.arg(name));
        host.applications.installed->append(application);
        return application;
    }
    InstalledApplication &lastInstalled() { return host.applications.installed->last(); }

    AppScanner &make()
    {
        const AppScanner::Ports ports = {host.applications, host.diskUsage, host.trash, host.programs};
        scanner = std::make_shared<AppScanner>(ports, settings, clock, journal());
        keepMessages();
        return *scanner;
    }
    void keepMessages()
    {
        QObject::connect(scanner.get(), &AppScanner::finished, scanner.get(),
                         [this](const QString &text) { message = text; });
    }
    AppScanner &scanned()
    {
        make().scan();
        if (!until([this] { return !scanner->isScanning(); }))
            qFatal("no scan");
        return *scanner;
    }
    AppInfo app(const QString &name) const
    {
        const QList<AppInfo> all = scanner->apps();
        const auto found = std::ranges::find(all, name, &AppInfo::name);
        return found == all.end() ? AppInfo() : *found;
    }
    UninstallReview reviewOf(const QString &name, UninstallMode mode = UninstallMode::full)
    {
        std::optional<UninstallReview> review;
        scanner->reviewOf(app(name), mode).then([&](UninstallReview now) { review = std::move(now); });
        return until([&] { return review.has_value(); }) ? *review : UninstallReview();
    }
    // The message it ends with.
    QString uninstall(const UninstallReview &review)
    {
        message.clear();
        scanner->uninstall(review);
        return ending();
    }
    // Of what was begun.
    QString ending()
    {
        until([&] { return !message.isEmpty() && !scanner->isScanning(); });
        return std::exchange(message, QString());
    }
    QStringList trashed() const
    {
        QStringList paths;
        for (const QString &call : host.trash.calls) {
            if (call.startsWith(u"trash "_s))
                paths.append(call.sliced(6 + home().size() + 1));
        }
        return paths;
    }

    // Time passes only while somebody waits for it, so that it tells exactly
    // how long was waited.
    bool until(const std::function<bool()> &isSo)
    {
        for (int turn = 0; turn < 20000 && !isSo(); ++turn) {
            QCoreApplication::processEvents();
            settle();
            if (isSo())
                break;
            if (clock.pendingCount() > idleAlarms)
                clock.advance(std::chrono::milliseconds(10));
            else
                QTest::qWait(1);
        }
        return isSo();
    }
};

} // namespace velbrix::test
