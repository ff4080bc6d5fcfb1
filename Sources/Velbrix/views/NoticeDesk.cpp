#include "views/NoticeDesk.h"

#include "app/HostText.h"
#include "app/PrivacyManager.h"
#include "views/Follow.h"
#include "views/Theme.h"

#include <QApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString statementSymbol = u"hand.raised.fill"_s;

QList<QColor> statementColors()
{
    return featurePrivacyNotice(PrivacyConsentKind::firstLaunch).colors;
}

} // namespace

NoticeDesk::NoticeDesk(PrivacyManager &privacy, const Theme &theme, HostFamily family, QWidget *surface)
    : QObject(surface),
      _privacy(privacy),
      _theme(theme),
      _family(family),
      _surface(surface),
      _ranks{
          {[this] { return _privacy.hasAcceptedFirstLaunchNotice() ? QString() : u"first"_s; },
           [this] { openFirstLaunch(); }},
          {[this] {
               const auto notice = _privacy.pendingFeatureNotice();
               return notice ? u"feature "_s + notice->id : QString();
           },
           [this] { openFeatureNotice(); }},
          {[this] { return _isReviewing ? u"review"_s : QString(); }, [this] { openReview(); }},
      }
{
    const auto again = [this] { refresh(); };
    connect(&privacy, &PrivacyManager::hasAcceptedFirstLaunchNoticeChanged, this, again);
    connect(&privacy, &PrivacyManager::pendingFeatureNoticeChanged, this, again);
    refresh();
}

void NoticeDesk::reviewStatement()
{
    _isReviewing = true;
    refresh();
}

void NoticeDesk::refresh()
{
    const auto first =
        std::ranges::find_if(_ranks, [](const Rank &rank) { return !rank.wanted().isEmpty(); });
    const QString wanted = first == _ranks.end() ? QString() : first->wanted();
    if (wanted == _shown)
        return;
    close();
    _shown = wanted;
    if (first != _ranks.end())
        first->open();
}

void NoticeDesk::openFirstLaunch()
{
    const PrivacyStatement statement = firstLaunchStatement(_privacy.firstLaunchCountdown());
    NoticeSheet::Words words;
    words.symbol = statementSymbol;
    words.colors = statementColors();
    words.title = statement.title;
    words.message = statement.message;
    words.details = statement.details;
    words.confirm = statement.confirm;
    // Nobody listens to its cancelling: it can only be confirmed.
    NoticeSheet *const sheet = open(words);
    follow(_privacy, &PrivacyManager::firstLaunchCountdownChanged, sheet, [this, sheet] {
        const int seconds = _privacy.firstLaunchCountdown();
        const PrivacyStatement now = firstLaunchStatement(seconds);
        sheet->setMessage(now.message);
        sheet->setConfirm(seconds > 0 ? u"%1（%2）"_s.arg(now.confirm).arg(seconds) : now.confirm,
                          seconds <= 0);
    });
    connect(sheet, &NoticeSheet::confirmed, this, [this] { _privacy.confirmFirstLaunch(); });
}

void NoticeDesk::openFeatureNotice()
{
    const auto notice = _privacy.pendingFeatureNotice();
    if (!notice)
        return;
    NoticeSheet::Words words;
    words.symbol = notice->icon;
    words.colors = notice->colors;
    words.title = notice->title;
    words.message = notice->message;
    words.details = notice->details;
    words.confirm = u"同意并继续"_s;
    words.cancel = u"取消"_s;
    NoticeSheet *const sheet = open(words);
    connect(sheet, &NoticeSheet::confirmed, this, [this] { _privacy.confirmPendingNotice(); });
    connect(sheet, &NoticeSheet::cancelled, this, [this] { _privacy.cancelPendingNotice(); });
}

void NoticeDesk::openReview()
{
    const PrivacyStatement statement = reviewedStatement();
    NoticeSheet::Words words;
    words.symbol = statementSymbol;
    words.colors = statementColors();
    words.title = statement.title;
    words.message = statement.message;
    words.details = statement.details;
    words.confirm = statement.confirm;
    NoticeSheet *const sheet = open(words);
    const auto done = [this] {
        _isReviewing = false;
        refresh();
    };
    connect(sheet, &NoticeSheet::confirmed, this, done);
    connect(sheet, &NoticeSheet::cancelled, this, done);
}

NoticeSheet *NoticeDesk::open(NoticeSheet::Words words)
{
    for (QString &detail : words.details)
        detail = hostText(detail, _family);
    if (QWidget *focus = QApplication::focusWidget(); focus && _surface->isAncestorOf(focus))
        _focusBefore = focus;
    _sheet = new NoticeSheet(_theme, words, _surface);
    _sheet->setGeometry(_surface->rect());
    _sheet->show();
    return _sheet;
}

void NoticeDesk::close()
{
    if (!_sheet)
        return;
    _sheet->hide();
    _sheet->deleteLater();
    _sheet = nullptr;
    if (_focusBefore)
        _focusBefore->setFocus();
    _focusBefore = nullptr;
}

} // namespace velbrix
