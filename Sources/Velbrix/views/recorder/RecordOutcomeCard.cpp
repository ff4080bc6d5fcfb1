#include "views/recorder/RecordOutcomeCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/components/SettingRow.h"
#include "views/components/SymbolLabel.h"
#include "views/recorder/FinishedMovieRow.h"

using namespace Qt::StringLiterals;

namespace velbrix {

RecordOutcomeCard::RecordOutcomeCard(const ViewContext &context, QWidget *parent) : Card(parent)
{
    setObjectName(u"recordOutcome"_s);
    auto *failure = new SettingRow(u"上次录制没有成功"_s, {}, nullptr);
    failure->setObjectName(u"recordFailure"_s);
    failure->setLeading(new SymbolLabel(context.theme, u"xmark.circle.fill"_s, 22, ThemeColor::bad));
    addRow(failure);
    addRow(new FinishedMovieRow(context));

    const RecordingSession &session = context.services.recorder.session();
    follow(session, &RecordingSession::outcomeChanged, this, [this, failure, &session] {
        const RecordingOutcome outcome = session.outcome();
        const bool hasFailed = outcome.kind == RecordingOutcome::Kind::failed;
        failure->setDescription(outcome.reason);
        failure->setVisible(hasFailed);
        setVisible(hasFailed || outcome.hasMovie());
    });
}

} // namespace velbrix
