#pragma once

#include "foundation/Published.h"

#include <QObject>
#include <QString>

namespace velbrix {

// What the user wants to see. Nothing is chosen until the window picks its
// first page or somebody asks for one.
class AppRouter final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(AppRouter, QString, activeTab) // the tool's identifier; empty until one is chosen

public:
    using QObject::QObject;

    // In the window, wherever that is.
    void show(const QString &tab) { _activeTab = tab; }
    // The window comes forward, too.
    void open(const QString &tab)
    {
        show(tab);
        Q_EMIT windowWanted();
    }
    void openWindow() { Q_EMIT windowWanted(); }
    // The privacy statement, to read it again.
    void openStatement() { Q_EMIT statementWanted(); }

Q_SIGNALS:
    void windowWanted();
    void statementWanted();
};

} // namespace velbrix
