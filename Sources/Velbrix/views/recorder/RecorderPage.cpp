#include "views/recorder/RecorderPage.h"

#include "app/AppServices.h"
#include "views/components/Card.h"
#include "views/recorder/LeftoversCard.h"
#include "views/recorder/RecordAccessCard.h"
#include "views/recorder/RecordAudioCard.h"
#include "views/recorder/RecordControlCard.h"
#include "views/recorder/RecordLogCard.h"
#include "views/recorder/RecordOptionCards.h"
#include "views/recorder/RecordOutcomeCard.h"
#include "views/recorder/RecordTargetCard.h"

using namespace Qt::StringLiterals;

namespace velbrix {

RecorderPage::RecorderPage(const ViewContext &context, QWidget *parent)
    : Page(u"recorderPage"_s, u"屏幕录制"_s,
           u"录制整个屏幕或一个窗口，连同系统声音与麦克风，保存为本地影片。"_s, parent)
{
    add(new RecordAccessCard(context, this));
    add(new RecordControlCard(context, this));
    add(new RecordOutcomeCard(context, this));
    add(new LeftoversCard(context, this));
    add(u"画面"_s, new RecordTargetCard(context, this));
    add(makePictureCard(context));
    add(u"声音"_s, new RecordAudioCard(context, this));
    add(u"保存与提醒"_s, makeOutputCard(context));
    add(makeReminderCard(context));
    add(u"记录"_s, new RecordLogCard(context, this));

    ScreenRecorderController &recorder = context.services.recorder;
    recorder.access().checkMicPermission();
    recorder.devices().refreshAudioDevices();
}

} // namespace velbrix
