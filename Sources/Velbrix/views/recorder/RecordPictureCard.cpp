#include "views/recorder/RecordPictureCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/SettingRow.h"
#include "views/components/Switch.h"

#include <algorithm>
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

RecordPictureCard::RecordPictureCard(const ViewContext &context, QWidget *parent) : Card(parent)
{
    RecorderPreferences &preferences = context.services.recorder.preferences();
    QStringList rates;
    for (const RecordFPS fps : allRecordFPS)
        rates.append(QString::number(framesPerSecond(fps)));
    auto *fps = new SegmentedChoice(u"recordFps"_s, rates);
    addRow(new SettingRow(u"帧率"_s, u"每秒画面数（FPS），越高越流畅，文件也越大"_s, fps));
    connect(fps, &SegmentedChoice::wanted, this, [&preferences](int index) {
        preferences.setFpsOption(allRecordFPS.at(static_cast<std::size_t>(index)));
    });
    follow(preferences, &RecorderPreferences::fpsOptionChanged, this,
           [fps, &preferences] { fps->setCurrent(indexOf(allRecordFPS, preferences.fpsOption())); });

    QStringList qualities;
    for (const RecordQuality quality : allRecordQualities)
        qualities.append(rawValue(quality));
    auto *quality = new SegmentedChoice(u"recordQuality"_s, qualities);
    auto *qualityRow = new SettingRow(u"画质"_s, describe(preferences.qualityOption()), quality);
    addRow(qualityRow);
    connect(quality, &SegmentedChoice::wanted, this, [&preferences](int index) {
        preferences.setQualityOption(allRecordQualities.at(static_cast<std::size_t>(index)));
    });
    follow(preferences, &RecorderPreferences::qualityOptionChanged, this,
           [quality, qualityRow, &preferences] {
               quality->setCurrent(indexOf(allRecordQualities, preferences.qualityOption()));
               qualityRow->setDescription(describe(preferences.qualityOption()));
           });

    auto *ignore = new Switch(context.theme, u"ignoreSelfWindows"_s);
    addRow(new SettingRow(u"忽略本应用窗口"_s, u"录制画面中不出现 Velbrix 的窗口"_s, ignore));
    connect(ignore, &Switch::wanted, this, [&preferences](bool on) { preferences.setIgnoreSelfWindows(on); });
    follow(preferences, &RecorderPreferences::ignoreSelfWindowsChanged, this,
           [ignore, &preferences] { ignore->setOn(preferences.ignoreSelfWindows()); });
}

} // namespace velbrix
