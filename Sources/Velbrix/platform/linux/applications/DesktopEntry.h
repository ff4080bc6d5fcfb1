#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

// The keys of an entry's main group (freedesktop.org's Desktop Entry) as they
// stand there; a key that comes twice keeps its first value.
using DesktopEntryKeys = QHash<QByteArray, QByteArray>;
DesktopEntryKeys desktopEntryKeys(const QByteArray &text);

// What a desktop entry says about an application. Texts are unescaped; names
// are one line.
struct DesktopEntry {
    QString name; // in Chinese when the entry has it
    QString exec;
    QString tryExec;
    QString icon;    // a name of the theme or an absolute path
    QString version; // of an AppImage that was entered by an integrator
    QString flatpak; // which Flatpak exported it
    QString snap;    // which snap
    bool isHidden = false;
    QStringList onlyShowIn;
    QStringList notShowIn;

    // In a session of these desktops, and while its program is there.
    bool isShown(const QStringList &desktops) const;
};

// None for what is not the entry of an application that has a name and a
// program.
std::optional<DesktopEntry> parseDesktopEntry(const QByteArray &text);

// None also for files that are too large to be an entry. Blocking.
std::optional<DesktopEntry> readDesktopEntry(const QString &path);

// The program and its arguments, without field codes; empty when malformed.
QStringList execArguments(const QString &exec);

} // namespace velbrix
