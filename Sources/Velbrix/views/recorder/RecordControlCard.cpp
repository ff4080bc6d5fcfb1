#include "views/recorder/RecordControlCard.h"

#include "app/AppServices.h"
#include "app/RecordingActions.h"
#include "foundation/Text.h"
#include "views/Follow.h"
#include "views/ShownText.h"
#include "views/Theme.h"
#include "views/components/JobRing.h"
#include "views/components/Parts.h"
#include "views/components/TabularLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
RecordControlCard::RecordControlCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context)
{
    _button = makeButton(context.theme, {u"recordToggle"_s, {}, {}, u"record"_s});
    _button->setIconSize(QSize(18, 18));
    _status = makeText({}, u"note"_s);
    _status->setObjectName(u"recordStatus"_s);
    _badge = makeBadge();

    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 12, 0, 12);
    line->setSpacing(20);
    line->addWidget(_button);
    auto *words = new QVBoxLayout;
    words->setSpacing(2);
    words->addStretch(1);
    words->addWidget(_badge);
    words->addWidget(_status);
    words->addStretch(1);
    line->addLayout(words, 1);
    addRow(row);

    connect(_button, &QPushButton::clicked, this,
            [this] { _context.services.recordingActions.toggleFromPanel(); });
    ScreenRecorderController &recorder = context.services.recorder;
    const auto again = [this] { refresh(); };
    connect(&recorder, &ScreenRecorderController::isStartingChanged, this, again);
    connect(&recorder.session(), &RecordingSession::isProcessingChanged, this, again);
    connect(&recorder.session(), &RecordingSession::isRecordingChanged, this, again);
    connect(&recorder.preferences(), &RecorderPreferences::recordModeChanged, this, again);
    connect(&recorder.log().live(), &RecordLiveUI::warningChanged, this, again);
    const HotkeyManager &hotkeys = context.services.hotkeys;
    connect(&hotkeys, &HotkeyManager::recordToggleHotkeyChanged, this, again);
    connect(&hotkeys, &HotkeyManager::problemsChanged, this, again);
    refresh();
}

QWidget *RecordControlCard::makeBadge()
{
    auto *badge = new QWidget;
    badge->setObjectName(u"recordBadge"_s);
    auto *line = new QHBoxLayout(badge);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    line->addWidget(new JobRing(_context.theme, u"录制中"_s));
    line->addWidget(makeText(u"正在录制"_s, u"body"_s));
    auto *elapsed = new TabularLabel;
    elapsed->setObjectName(u"recordElapsed"_s);
    elapsed->setFont(_context.theme.font(17, QFont::DemiBold));
    line->addWidget(elapsed);
    auto *size = new TabularLabel;
    size->setObjectName(u"recordSize"_s);
    size->setProperty("role", u"value"_s);
    line->addWidget(size);
    line->addStretch(1);

    const RecordLiveUI &live = _context.services.recorder.log().live();
    follow(live, &RecordLiveUI::elapsedSecondsChanged, this,
           [elapsed, &live] { elapsed->setText(shownDuration(live.elapsedSeconds())); });
    follow(live, &RecordLiveUI::fileSizeChanged, this, [size, &live] {
        size->setText(live.fileSize() > 0 ? formatByteCount(live.fileSize()) : QString());
    });
    return badge;
}

void RecordControlCard::refresh()
{
    ScreenRecorderController &recorder = _context.services.recorder;
    const bool isRecording = recorder.isRecording();
    const bool isStarting = recorder.isStarting();
    const bool isSaving = recorder.session().isProcessing() && !isStarting;
    QString text = u"开始录制"_s;
    if (isSaving)
        text = u"正在保存…"_s;
    else if (isStarting)
        text = u"正在启动…"_s;
    else if (isRecording)
        text = u"停止录制"_s;
    const bool canStop = isRecording || isStarting;
    _button->setText(u" "_s + text);
    _button->setAccessibleName(text);
    _button->setEnabled(!isSaving);
    _button->setIcon(
        _context.theme.icon(canStop ? u"stop.fill"_s : u"record.circle"_s, canStop    ? ThemeColor::bad
                                                                           : isSaving ? ThemeColor::secondary
                                                                                      : ThemeColor::onFill));
    setLook(_button, "recording", canStop && !isSaving);
    _badge->setVisible(isRecording && !isSaving);
    showStatus(canStop && !isSaving);
}

// What the recording lacks, else how to do it without this window.
void RecordControlCard::showStatus(bool isRunning)
{
    const QString warning = _context.services.recorder.log().live().warning();
    const HotkeyManager &hotkeys = _context.services.hotkeys;
    const bool hasKey = hotkeys.isAvailable(HotkeyAction::recordToggle) &&
                        hotkeys.problem(HotkeyAction::recordToggle).isEmpty();
    const QString key = hotkeys.chordText(HotkeyAction::recordToggle);
    const bool isWarning = isRunning && !warning.isEmpty();
    if (isWarning)
        _status->setText(warning);
    else
        _status->setText((isRunning ? u"按 %1 停止"_s : u"按 %1 可随时录制全屏"_s).arg(key));
    setLook(_status, "role", isWarning ? u"warning"_s : u"note"_s);
    _status->setVisible(isWarning || hasKey);
}

} // namespace velbrix
