#include "views/recorder/RecordOptionCards.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/components/Card.h"
#include "views/components/Parts.h"
#include "views/components/PathField.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/SettingRow.h"
#include "views/components/Switch.h"
#include "views/components/ValueSlider.h"

#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <iterator>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

template <typename List, typename Value> int indexOf(const List &list, Value value)
{
    return static_cast<int>(std::distance(list.begin(), std::ranges::find(list, value)));
}

QString describe(RecordQuality quality)
{
    const QString text = qualityDescription(quality);
    return text.isEmpty() ? u"按屏幕原始像素录制"_s : text;
}

} // namespace

Card *makePictureCard(const ViewContext &context)
{
    auto *card = new Card;
    RecorderPreferences &preferences = context.services.recorder.preferences();
    QStringList rates;
    for (const RecordFPS fps : allRecordFPS)
        rates.append(QString::number(framesPerSecond(fps)));
    auto *fps = new SegmentedChoice(u"recordFps"_s, rates);
    card->addRow(new SettingRow(u"帧率"_s, u"每秒画面数（FPS），越高越流畅，文件也越大"_s, fps));
    QObject::connect(fps, &SegmentedChoice::wanted, card, [&preferences](int index) {
        preferences.setFpsOption(allRecordFPS.at(static_cast<std::size_t>(index)));
    });
    follow(preferences, &RecorderPreferences::fpsOptionChanged, card,
           [fps, &preferences] { fps->setCurrent(indexOf(allRecordFPS, preferences.fpsOption())); });

    QStringList qualities;
    for (const RecordQuality quality : allRecordQualities)
        qualities.append(rawValue(quality));
    auto *quality = new SegmentedChoice(u"recordQuality"_s, qualities);
    auto *qualityRow = new SettingRow(u"画质"_s, describe(preferences.qualityOption()), quality);
    card->addRow(qualityRow);
    QObject::connect(quality, &SegmentedChoice::wanted, card, [&preferences](int index) {
        preferences.setQualityOption(allRecordQualities.at(static_cast<std::size_t>(index)));
    });
    follow(preferences, &RecorderPreferences::qualityOptionChanged, card,
           [quality, qualityRow, &preferences] {
               quality->setCurrent(indexOf(allRecordQualities, preferences.qualityOption()));
               qualityRow->setDescription(describe(preferences.qualityOption()));
           });

    auto *ignore = new Switch(context.theme, u"ignoreSelfWindows"_s);
    card->addRow(new SettingRow(u"忽略本应用窗口"_s, u"录制画面中不出现 Velbrix 的窗口"_s, ignore));
    QObject::connect(ignore, &Switch::wanted, card,
                     [&preferences](bool on) { preferences.setIgnoreSelfWindows(on); });
    follow(preferences, &RecorderPreferences::ignoreSelfWindowsChanged, card,
           [ignore, &preferences] { ignore->setOn(preferences.ignoreSelfWindows()); });
    return card;
}

Card *makeOutputCard(const ViewContext &context)
{
    auto *card = new Card;
    RecorderPreferences &preferences = context.services.recorder.preferences();
    auto *field = new PathField(context.theme, u"outputDir"_s, u"选择输出目录"_s);
    field->setAccessibleName(u"输出目录"_s);
    auto *row = new QWidget;
    auto *rows = new QVBoxLayout(row);
    rows->setContentsMargins(0, 10, 0, 12);
    rows->setSpacing(8);
    rows->addWidget(makeText(u"输出目录"_s, u"body"_s));
    rows->addWidget(field);
    card->addRow(row);
    QObject::connect(field, &PathField::wanted, card,
                     [&preferences](const QString &folder) { preferences.setOutputDir(folder); });
    QObject::connect(field, &PathField::revealWanted, card,
                     [context](const QString &folder) { context.reveal(folder); });
    follow(preferences, &RecorderPreferences::outputDirChanged, card,
           [field, &preferences] { field->setPath(preferences.outputDir()); });
    return card;
}

Card *makeReminderCard(const ViewContext &context)
{
    auto *card = new Card;
    RecorderPreferences &preferences = context.services.recorder.preferences();
    auto *protection = new Switch(context.theme, u"misTouchProtection"_s);
    auto *row = new SettingRow(u"防误触提醒"_s, {}, protection);
    row->setNote(u"提醒功能将在后续版本启用，设置会保留"_s, u"warning"_s);
    card->addRow(row);
    auto *minutes = new ValueSlider(
        u"misTouchMinutes"_s, {static_cast<int>(RecorderPreferences::misTouchMinutesMin),
                               static_cast<int>(RecorderPreferences::misTouchMinutesMax),
                               static_cast<int>(RecorderPreferences::misTouchMinutesDefault), u"分钟"_s});
    auto *minutesRow = new SettingRow(u"提醒间隔"_s, u"默认 30 分钟"_s, minutes);
    card->addRow(minutesRow);

    QObject::connect(protection, &Switch::wanted, card,
                     [&preferences](bool on) { preferences.setMisTouchProtectionEnabled(on); });
    follow(preferences, &RecorderPreferences::misTouchProtectionEnabledChanged, card,
           [protection, row, minutesRow, &preferences] {
               const bool on = preferences.misTouchProtectionEnabled();
               protection->setOn(on);
               row->setDescription(on ? u"开启后，录制达到设定时长会右上角提示一次；之后按间隔重复提醒"_s
                                      : u"关闭后，录制过程中不会弹出防误触提醒"_s);
               minutesRow->setVisible(on);
           });
    QObject::connect(minutes, &ValueSlider::wanted, card,
                     [&preferences](int value) { preferences.setMisTouchIntervalMinutes(value); });
    follow(preferences, &RecorderPreferences::misTouchIntervalMinutesChanged, card, [minutes, &preferences] {
        minutes->setValue(static_cast<int>(std::lround(preferences.misTouchIntervalMinutes())));
    });
    return card;
}

} // namespace velbrix
