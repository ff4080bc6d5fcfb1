#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

#include "platform/Permissions.h"

namespace velbrix {
class SettingRow;
}

namespace velbrix {

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
    bool isGranted(PrivacyPane pane) const;

    ViewContext _context;
    QList<Entry> _entries;
};

} // namespace velbrix
