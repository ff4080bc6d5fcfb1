#pragma once

#include "app/AppTab.h"
#include "foundation/Published.h"

#include <QObject>

namespace velbrix {

// Which page the main window shows. Nothing is chosen until the window picks
// its first page or somebody asks for one.
class AppRouter final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(AppRouter, std::optional<AppTab>, activeTab)

public:
    using QObject::QObject;

    void show(AppTab tab) { _activeTab = std::optional(tab); }
};

} // namespace velbrix
