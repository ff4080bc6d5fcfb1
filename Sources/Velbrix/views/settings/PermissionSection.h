#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

#include "platform/Permissions.h"

#include <optional>

namespace velbrix {

class SettingRow;

// What the system allows, and where to change it.
class PermissionSection final : public Card {
public:
    explicit PermissionSection(const ViewContext &context, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    struct Entry {
        PrivacyPane pane;
        SettingRow *row;
    };
    void addPane(PrivacyPane pane, const QString &symbol, const QString &title, const QString &purpose);
    void refresh();
    // Unknown until the system has answered.
    std::optional<bool> isGranted(PrivacyPane pane) const;
    void askForNotifications();

    ViewContext _context;
    QList<Entry> _entries;
    std::optional<bool> _mayNotify;
};

} // namespace velbrix
