#include "views/settings/PermissionSection.h"

#include "app/AppServices.h"
#include "platform/Platform.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"
#include "views/components/SymbolLabel.h"

#include <QPointer>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace velbrix {

PermissionSection::PermissionSection(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context)
{
    addPane(PrivacyPane::screenCapture, u"rectangle.inset.filled"_s, u"屏幕录制"_s, u"录制屏幕与窗口画面"_s);
    addPane(PrivacyPane::microphone, u"mic.fill"_s, u"麦克风"_s, u"把麦克风声音录进影片"_s);
    addPane(PrivacyPane::notifications, u"bell.fill"_s, u"通知"_s, u"在屏幕角落显示提醒"_s);
    addPane(PrivacyPane::camera, u"video.fill"_s, u"摄像头"_s, u"当前的功能不使用摄像头"_s);
    addPane(PrivacyPane::accessibility, u"accessibility"_s, u"辅助功能"_s, u"当前的功能不使用辅助功能"_s);
    refresh();
}

void PermissionSection::addPane(PrivacyPane pane, const QString &symbol, const QString &title,
                                const QString &purpose)
{
    Permissions &permissions = *_context.services.platform.permissions;
    const QString explanation = permissions.explanation(pane);
    QPushButton *open = nullptr;
    if (explanation.isEmpty()) {
        open = makeButton(_context.theme, {u"openPane.%1"_s.arg(_entries.size()), u"打开系统设置"_s, {}, {}});
    }
    auto *row = new SettingRow(title, explanation.isEmpty() ? purpose : explanation, open);
    row->setObjectName(u"permission.%1"_s.arg(_entries.size()));
    row->setLeading(new SymbolLabel(_context.theme, symbol, 20, ThemeColor::secondary));
    addRow(row);
    _entries.append({pane, row});
    if (!open)
        return;
    connect(open, &QPushButton::clicked, this, [this, row, pane] {
        if (!_context.services.platform.permissions->openSettings(pane))
            row->setNote(u"无法打开系统设置，请手动前往隐私设置"_s, u"warning"_s);
    });
}

void PermissionSection::showEvent(QShowEvent *event)
{
    Card::showEvent(event);
    // The user may come back from the system's settings.
    refresh();
    askForNotifications();
}

void PermissionSection::refresh()
{
    for (const Entry &entry : std::as_const(_entries)) {
        const auto granted = isGranted(entry.pane);
        if (!granted)
            continue;
        // Nobody granted what the system does not guard.
        const bool isGuarded = _context.services.platform.permissions->explanation(entry.pane).isEmpty();
        const QString yes = isGuarded ? u"✓ 已授予"_s : u"✓ 可用"_s;
        const QString no = isGuarded ? u"未授予"_s : u"不可用"_s;
        entry.row->setNote(*granted ? yes : no, *granted ? u"good"_s : u"warning"_s);
    }
}

std::optional<bool> PermissionSection::isGranted(PrivacyPane pane) const
{
    Permissions &permissions = *_context.services.platform.permissions;
    switch (pane) {
    case PrivacyPane::screenCapture:
        return permissions.preflightScreenCapture();
    case PrivacyPane::microphone:
        return permissions.microphone() == AuthorizationStatus::authorized;
    case PrivacyPane::camera:
        return permissions.camera() == AuthorizationStatus::authorized;
    case PrivacyPane::accessibility:
        return permissions.accessibilityTrusted();
    case PrivacyPane::notifications:
        return _mayNotify;
    }
    Q_UNREACHABLE();
}

void PermissionSection::askForNotifications()
{
    const QPointer self(this);
    _context.services.platform.notifications->settings().then([self](const NotificationSettings &settings) {
        if (!self)
            return;
        self->_mayNotify = settings.mayNotify;
        self->refresh();
    });
}

} // namespace velbrix
