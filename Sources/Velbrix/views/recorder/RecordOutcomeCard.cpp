#include "views/recorder/RecordOutcomeCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"
#include "views/components/SymbolLabel.h"

#include <QFileInfo>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace velbrix {

RecordOutcomeCard::RecordOutcomeCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context)
{
    setObjectName(u"recordOutcome"_s);
    addFailure();
    addResult();
    const RecordingSession &session = context.services.recorder.session();
    connect(&session, &RecordingSession::lastFailureChanged, this, [this] { refresh(); });
    connect(&session, &RecordingSession::finishedMovieChanged, this, [this] { refresh(); });
    refresh();
}

void RecordOutcomeCard::addFailure()
{
    auto *row = new SettingRow(u"上次录制没有成功"_s, {}, nullptr);
    row->setObjectName(u"recordFailure"_s);
    row->setLeading(new SymbolLabel(_context.theme, u"xmark.circle.fill"_s, 22, ThemeColor::bad));
    addRow(row);
    const RecordingSession &session = _context.services.recorder.session();
    follow(session, &RecordingSession::lastFailureChanged, this, [row, &session] {
        row->setDescription(session.lastFailure());
        row->setVisible(!session.lastFailure().isEmpty());
    });
}

void RecordOutcomeCard::addResult()
{
    const RecordingSession &session = _context.services.recorder.session();
    QPushButton *const show =
        makeButton(_context.theme, {u"revealMovie"_s, u"在文件夹中显示"_s, u"folder"_s, {}});
    auto *row = new SettingRow(u"录制已完成"_s, {}, show);
    row->setObjectName(u"recordResult"_s);
    row->setLeading(new SymbolLabel(_context.theme, u"checkmark.circle.fill"_s, 22, ThemeColor::good));
    addRow(row);
    connect(show, &QPushButton::clicked, this, [this, &session] {
        if (const auto movie = session.finishedMovie())
            _context.reveal(*movie);
    });
    follow(session, &RecordingSession::finishedMovieChanged, this, [row, &session] {
        const auto movie = session.finishedMovie();
        row->setDescription(movie ? QFileInfo(*movie).fileName() : QString());
        row->setVisible(movie.has_value());
    });
}

void RecordOutcomeCard::refresh()
{
    const RecordingSession &session = _context.services.recorder.session();
    setVisible(!session.lastFailure().isEmpty() || session.finishedMovie());
}

} // namespace velbrix
