#pragma once

#include "foundation/SettingsStore.h"
#include "maintenance/uninstall/AppScanner.h"
#include "support/FakePlatform.h"
#include "support/Files.h"

#include <QCoreApplication>
#include <QDir>
#include <QTest>

#include <functional>
#include <optional>
#include <utility>

namespace velbrix::test {

// A home with applications, two folders of their data and the uninstaller; the
// trash really takes. Change the host, then call make().
struct UninstallRig {
    UninstallRig()
    {
        qputenv("HOME", home().toUtf8());
        QDir().mkpath(home(QStringLiteral("Preferences")));
        QDir().mkpath(home(QStringLiteral("Caches")));
        host.applications.folders = {{LibraryKind::preferences, home(QStringLiteral("Preferences"))},
                                     {LibraryKind::caches, home(QStringLiteral("Caches"))}};
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
        return files.path() + QStringLiteral("/home") + (path.isEmpty() ? path : u'/' + path);
    }
    QString journal() const { return home(QStringLiteral("own/uninstalls.json")); }

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
        application.path = plant(QStringLiteral("Applications/%1.app/").arg(name));
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
        for (const AppInfo &each : scanner->apps()) {
            if (each.name == name)
                return each;
        }
        return {};
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
            if (call.startsWith(QStringLiteral("trash ")))
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
