#include "views/recorder/RecordReminderCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/components/SettingRow.h"
#include "views/components/Switch.h"
#include "views/components/ValueSlider.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace velbrix {

RecordReminderCard::RecordReminderCard(const ViewContext &context, QWidget *parent) : Card(parent)
{
    RecorderPreferences &preferences = context.services.recorder.preferences();
    auto *protection = new Switch(context.theme, u"misTouchProtection"_s);
    auto *row = new SettingRow(u"防误触提醒"_s, {}, protection);
    row->setNote(u"提醒功能将在后续版本启用，设置会保留"_s, u"warning"_s);
    addRow(row);
    auto *minutes = new ValueSlider(
        u"misTouchMinutes"_s, {static_cast<int>(RecorderPreferences::misTouchMinutesMin),
                               static_cast<int>(RecorderPreferences::misTouchMinutesMax),
                               static_cast<int>(RecorderPreferences::misTouchMinutesDefault), u"分钟"_s});
    auto *minutesRow = new SettingRow(u"提醒间隔"_s, u"默认 30 分钟"_s, minutes);
    addRow(minutesRow);

    connect(protection, &Switch::wanted, this,
            [&preferences](bool on) { preferences.setMisTouchProtectionEnabled(on); });
    follow(preferences, &RecorderPreferences::misTouchProtectionEnabledChanged, this,
           [protection, row, minutesRow, &preferences] {
               const bool on = preferences.misTouchProtectionEnabled();
               protection->setOn(on);
               row->setDescription(on ? u"开启后，录制达到设定时长会右上角提示一次；之后按间隔重复提醒"_s
                                      : u"关闭后，录制过程中不会弹出防误触提醒"_s);
               minutesRow->setVisible(on);
           });
    connect(minutes, &ValueSlider::wanted, this,
            [&preferences](int value) { preferences.setMisTouchIntervalMinutes(value); });
    follow(preferences, &RecorderPreferences::misTouchIntervalMinutesChanged, this, [minutes, &preferences] {
        minutes->setValue(static_cast<int>(std::lround(preferences.misTouchIntervalMinutes())));
    });
}

} // namespace velbrix
