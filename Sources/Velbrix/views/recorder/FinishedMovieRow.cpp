#include "views/recorder/FinishedMovieRow.h"

#include "app/AppServices.h"
#include "foundation/Text.h"
#include "views/ShownText.h"
#include "views/components/ElidedLabel.h"
#include "views/components/Parts.h"
#include "views/recorder/MovieTile.h"

#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

using Place = FinishedRecording::Place;
using Kind = RecordingOutcome::Kind;

} // namespace

FinishedMovieRow::FinishedMovieRow(const ViewContext &context, QWidget *parent)
    : QWidget(parent),
      _context(context),
      _tile(new MovieTile(context.theme)),
      _title(makeText({}, u"heading"_s)),
      _name(new ElidedLabel({}, u"body"_s, Qt::ElideMiddle)),
      _newName(new QLineEdit),
      _facts(makeText({}, u"note"_s)),
      _note(makeText({}, u"warning"_s))
{
    setObjectName(u"recordResult"_s);
    _newName->setObjectName(u"movieName"_s);
    _newName->setAccessibleName(u"影片名称"_s);
    _newName->hide();
    _newName->installEventFilter(this);
    auto *words = new QVBoxLayout;
    words->setSpacing(2);
    for (QWidget *line : std::initializer_list<QWidget *>{_title, _name, _newName, _facts, _note})
        words->addWidget(line);
    words->addStretch(1);
    words->addSpacing(6);
    words->addWidget(makeButtons());
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(0, 12, 0, 12);
    line->setSpacing(16);
    line->addWidget(_tile, 0, Qt::AlignTop);
    line->addLayout(words, 1);

    FinishedRecording &finished = context.services.recorder.finished();
    connect(_tile, &MovieTile::clicked, this, [this] { play(); });
    connect(_tile, &MovieTile::dropped, this, [&finished] { finished.look(); });
    connect(_newName, &QLineEdit::editingFinished, this, [this] { rename(); });
    const auto again = [this] { refresh(); };
    for (const auto signal : {&FinishedRecording::pathChanged, &FinishedRecording::placeChanged,
                              &FinishedRecording::thumbnailChanged, &FinishedRecording::problemChanged,
                              &FinishedRecording::canPutBackChanged})
        connect(&finished, signal, this, again);
    connect(&finished, &FinishedRecording::problemChanged, this, [this] { reopenRefused(); });
    connect(&context.services.recorder.session(), &RecordingSession::outcomeChanged, this, again);
    refresh();
}

QWidget *FinishedMovieRow::makeButtons()
{
    FinishedRecording &finished = _context.services.recorder.finished();
    auto *buttons = new QWidget;
    auto *line = new QHBoxLayout(buttons);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    const auto add = [&](const ButtonLook &look, auto act) {
        QPushButton *const button = makeButton(_context.theme, look);
        line->addWidget(button);
        connect(button, &QPushButton::clicked, this, act);
        return button;
    };
    _play = add({u"playMovie"_s, u"播放"_s, u"play.fill"_s, u"primary"_s}, [this] { play(); });
    _reveal = add({u"revealMovie"_s, u"在文件夹中显示"_s, u"folder"_s, {}},
                  [this, &finished] { _context.reveal(finished.path()); });
    _rename = add({u"renameMovie"_s, u"重命名"_s, {}, u"plain"_s},
                  [this, &finished] { editName(QFileInfo(finished.path()).completeBaseName()); });
    _trash = add({u"trashMovie"_s, u"移到废纸篓"_s, {}, u"plain"_s}, [&finished] { finished.moveToTrash(); });
    _putBack = add({u"putBackMovie"_s, u"放回原处"_s, u"arrow.uturn.backward"_s, {}},
                   [&finished] { finished.putBack(); });
    line->addStretch(1);
    return buttons;
}

bool FinishedMovieRow::event(QEvent *event)
{
    // The user comes back from where they may have moved it.
    if (event->type() == QEvent::WindowActivate || event->type() == QEvent::Show)
        _context.services.recorder.finished().look();
    return QWidget::event(event);
}

bool FinishedMovieRow::eventFilter(QObject *, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent *>(event)->key() != Qt::Key_Escape)
        return false;
    endEditing();
    return true;
}

void FinishedMovieRow::refresh()
{
    const FinishedRecording &finished = _context.services.recorder.finished();
    const RecordingOutcome outcome = _context.services.recorder.session().outcome();
    const bool isThere = finished.place() == Place::there;
    const bool isMovie = outcome.hasMovie();
    const QString name = QFileInfo(finished.path()).fileName();
    setVisible(finished.place() != Place::none);
    _title->setText(outcome.kind == Kind::cutShort ? u"录制提前结束，已录的部分保存好了"_s : u"录制已完成"_s);
    _title->setVisible(isMovie);
    _name->setText(name);
    _facts->setText(factsText());
    _note->setText(noteText());
    _note->setVisible(!_note->text().isEmpty());
    _tile->show(isThere && isMovie ? finished.path() : QString(), finished.thumbnail());
    _play->setVisible(isThere && isMovie);
    _reveal->setVisible(finished.place() != Place::trashed);
    _rename->setVisible(isThere && isMovie);
    _trash->setVisible(isThere);
    _putBack->setVisible(finished.canPutBack());
    for (QPushButton *button : {_play, _reveal, _rename, _trash, _putBack})
        button->setAccessibleDescription(name);
    if (!isThere)
        endEditing();
}

QString FinishedMovieRow::factsText() const
{
    const RecordingOutcome outcome = _context.services.recorder.session().outcome();
    if (_context.services.recorder.finished().place() == Place::trashed)
        return u"已移到废纸篓"_s;
    const QString size = formatByteCount(outcome.bytes);
    return outcome.hasMovie() ? shownDuration(std::max(1, qRound(outcome.duration))) + u" · "_s + size : size;
}

QString FinishedMovieRow::noteText() const
{
    const FinishedRecording &finished = _context.services.recorder.finished();
    if (!finished.problem().isEmpty())
        return finished.problem();
    if (finished.place() == Place::missing)
        return u"文件不在原处，可能已被改名、移走或删除"_s;
    const RecordingOutcome outcome = _context.services.recorder.session().outcome();
    return outcome.kind == Kind::cutShort ? outcome.reason : QString();
}

void FinishedMovieRow::play()
{
    const QPointer self(this);
    _context.services.recorder.finished().look().then([self](bool isThere) {
        if (self && isThere)
            self->_context.open(self->_context.services.recorder.finished().path());
    });
}

void FinishedMovieRow::editName(const QString &name)
{
    _newName->setText(name);
    _name->hide();
    _newName->show();
    _newName->selectAll();
    _newName->setFocus();
}

void FinishedMovieRow::rename()
{
    if (_newName->isHidden())
        return;
    _enteredName = _newName->text();
    endEditing();
    _context.services.recorder.finished().rename(*_enteredName);
}

// A name that was refused is there to be mended, unless the user has gone on to something else.
void FinishedMovieRow::reopenRefused()
{
    if (_context.services.recorder.finished().problem().isEmpty() || !_rename->hasFocus())
        return;
    if (const auto name = std::exchange(_enteredName, std::nullopt))
        editName(*name);
}

void FinishedMovieRow::endEditing()
{
    if (_newName->isHidden())
        return;
    const bool hadFocus = _newName->hasFocus();
    _newName->hide();
    _name->show();
    if (hadFocus)
        _rename->setFocus();
}

} // namespace velbrix
