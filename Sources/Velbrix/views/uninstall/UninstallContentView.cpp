#include "views/uninstall/UninstallContentView.h"

#include "app/AppServices.h"
#include "views/uninstall/AppListCard.h"
#include "views/uninstall/AppRows.h"
#include "views/uninstall/UninstallProgressView.h"
#include "views/uninstall/UninstallRecordsCard.h"
#include "views/uninstall/UninstallResultCard.h"
#include "views/uninstall/UninstallReviewSheet.h"
#include "views/uninstall/UninstallSettingsSheet.h"

#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// What stands around the list: title, search field, margins.
constexpr int around = 300;

} // namespace

UninstallContentView::UninstallContentView(const ViewContext &context, QWidget *parent)
    : Page(u"uninstallPage"_s, u"应用卸载"_s,
           u"移走不再需要的应用，连同它留下的数据；先看清单，再动手，还能放回原处。"_s, parent),
      _context(context),
      _apps(new AppListCard(context, this))
{
    add(new UninstallResultCard(context, this));
    add(_apps);
    add(u"最近卸载"_s, new UninstallRecordsCard(context, this));
    connect(_apps, &AppListCard::uninstallWanted, this, [this](const AppInfo &app) { ask(app); });
    connect(_apps, &AppListCard::settingsWanted, this, [this] { openSettings(); });
    const AppScanner &scanner = context.services.uninstaller;
    const OpenReview &open = scanner.openReview();
    connect(&open, &OpenReview::reviewChanged, this, [this] { showReview(); });
    connect(&open, &OpenReview::isPreparingChanged, this, [this] { showReview(); });
    connect(&scanner, &AppScanner::isUninstallingChanged, this, [this] { showProgress(); });
    // The result stands at the top.
    connect(&scanner, &AppScanner::finished, this, [this] { verticalScrollBar()->setValue(0); });
}

void UninstallContentView::showEvent(QShowEvent *event)
{
    Page::showEvent(event);
    // What has begun before the page was made.
    showReview();
    showProgress();
}

void UninstallContentView::resizeEvent(QResizeEvent *event)
{
    Page::resizeEvent(event);
    // The list fills the window; what follows begins to show under it.
    _apps->setListRoom(std::max(viewport()->height() - around, 4 * AppRow::height));
}

void UninstallContentView::ask(const AppInfo &app)
{
    const QPointer self(this);
    _context.services.privacy.guard(featurePrivacyNotice(PrivacyConsentKind::uninstall), [self, app] {
        if (!self)
            return;
        self->_asked = app.name;
        self->_context.services.uninstaller.prepareReview(app);
    });
}

void UninstallContentView::openSettings()
{
    if (!_settings)
        _settings = new UninstallSettingsSheet(_context, this);
    _settings->open();
}

void UninstallContentView::showReview()
{
    const OpenReview &open = _context.services.uninstaller.openReview();
    const bool isWanted = open.isPreparing() || open.review();
    if (isWanted == !_review.isNull())
        return;
    if (isWanted) {
        const auto review = open.review();
        _review = new UninstallReviewSheet(_context, review ? review->app.name : _asked, this);
        _review->open();
    } else {
        _review->dismiss();
        _review = nullptr;
    }
}

void UninstallContentView::showProgress()
{
    const bool isWanted = _context.services.uninstaller.isUninstalling();
    if (isWanted == !_progress.isNull())
        return;
    if (isWanted) {
        _progress = new UninstallProgressView(_context, this);
        _progress->open();
    } else {
        _progress->dismiss();
        _progress = nullptr;
    }
}

} // namespace velbrix
