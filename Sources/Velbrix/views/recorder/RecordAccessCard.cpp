#include "views/recorder/RecordAccessCard.h"

#include "app/AppServices.h"
#include "platform/Platform.h"
#include "views/Follow.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"
#include "views/components/SymbolLabel.h"

#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace velbrix {

RecordAccessCard::RecordAccessCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context)
{
    setObjectName(u"recordAccess"_s);
    _row = new SettingRow(u"没有屏幕录制权限"_s, {}, makeButtons());
    _row->setLeading(
        new SymbolLabel(context.theme, u"exclamationmark.triangle.fill"_s, 22, ThemeColor::warning));
    addRow(_row);
    RecorderAccess &access = context.services.recorder.access();
    const auto again = [this] { refresh(); };
    connect(&access, &RecorderAccess::hasPermissionChanged, this, again);
    connect(&access, &RecorderAccess::showPermissionDialogChanged, this, again);
    refresh();
    follow(context.services.privacy, &PrivacyManager::hasAcceptedFirstLaunchNoticeChanged, this,
           [this] { check(); });
}

void RecordAccessCard::check()
{
    // Nothing looks at the screen before the user has agreed to the statement.
    if (_isChecked || !_context.services.privacy.hasAcceptedFirstLaunchNotice())
        return;
    const QPointer self(this);
    _context.services.recorder.access().checkPermission().then([self](bool) {
        if (!self)
            return;
        self->_isChecked = true;
        self->refresh();
    });
}

QWidget *RecordAccessCard::makeButtons()
{
    auto *buttons = new QWidget;
    auto *line = new QHBoxLayout(buttons);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    QPushButton *const again =
        makeButton(_context.theme, {u"recheckAccess"_s, u"重新检查"_s, {}, u"plain"_s});
    _settings = makeButton(_context.theme, {u"openScreenSettings"_s, u"打开系统设置"_s, {}, u"primary"_s});
    line->addWidget(again);
    line->addWidget(_settings);
    connect(again, &QPushButton::clicked, this,
            [this] { _context.services.recorder.access().requestPermission(); });
    connect(_settings, &QPushButton::clicked, this, [this] {
        RecorderAccess &access = _context.services.recorder.access();
        if (access.openScreenSettings())
            access.dismissPermissionDialog();
        else
            _row->setNote(u"此系统没有对应的设置页面"_s, u"warning"_s);
    });
    return buttons;
}

void RecordAccessCard::refresh()
{
    const RecorderAccess &access = _context.services.recorder.access();
    const QString explanation =
        _context.services.platform.permissions->explanation(PrivacyPane::screenCapture);
    // Where the system knows no such permission there is nothing to allow.
    _settings->setVisible(explanation.isEmpty());
    _row->setDescription(explanation.isEmpty() ? u"请允许后完全退出 App 再重开"_s : explanation);
    setVisible((_isChecked && !access.hasPermission()) || access.showPermissionDialog());
}

} // namespace velbrix
