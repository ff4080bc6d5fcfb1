#include "views/uninstall/AppListCard.h"

#include "app/AppServices.h"
#include "foundation/Text.h"
#include "maintenance/uninstall/AppListing.h"
#include "platform/Platform.h"
#include "views/Follow.h"
#include "views/Theme.h"
#include "views/components/EmptyState.h"
#include "views/components/JobBar.h"
#include "views/components/Parts.h"
#include "views/components/RowList.h"
#include "views/uninstall/AppRows.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

qint64 total(const QList<AppInfo> &apps)
{
    qint64 bytes = 0;
    for (const AppInfo &app : apps)
        bytes += app.size;
    return bytes;
}

} // namespace

AppListCard::AppListCard(const ViewContext &context, QWidget *parent) : Card(parent), _context(context)
{
    setObjectName(u"appList"_s);
    addTop();
    addList();
    followScanner();
}

void AppListCard::addTop()
{
    const Theme &theme = _context.theme;
    _search = new QLineEdit;
    _search->setObjectName(u"appSearch"_s);
    _search->setAccessibleName(u"搜索应用"_s);
    _search->setPlaceholderText(u"搜索应用"_s);
    _search->setClearButtonEnabled(true);
    _search->addAction(theme.icon(u"magnifyingglass"_s, ThemeColor::secondary), QLineEdit::LeadingPosition);
    _search->installEventFilter(this);
    _rescan = makeButton(theme, {u"appsRescan"_s, u"重新扫描"_s, u"arrow.clockwise"_s, u"plain"_s});
    QPushButton *const settings =
        makeButton(theme, {u"uninstallSettings"_s, u"卸载设置…"_s, u"gearshape"_s, u"plain"_s});
    _count = makeText({}, u"note"_s);
    _count->setObjectName(u"appCount"_s);
    _count->setWordWrap(false);
    _problem = makeText({}, u"bad"_s);
    _problem->setObjectName(u"appsProblem"_s);
    _job = new JobBar(theme, u"appsJob"_s);
    _job->setCancellable(false);
    _job->setJob(u"正在扫描应用…"_s, 0, 0);

    auto *top = new QWidget;
    auto *rows = new QVBoxLayout(top);
    rows->setContentsMargins(0, 10, 0, 8);
    rows->setSpacing(8);
    auto *first = new QHBoxLayout;
    first->setSpacing(8);
    first->addWidget(_search, 1);
    first->addWidget(_rescan);
    first->addWidget(settings);
    rows->addLayout(first);
    rows->addWidget(_count);
    rows->addWidget(_problem);
    rows->addWidget(_job);
    addRow(top);
    connect(_rescan, &QPushButton::clicked, this, [this] { _context.services.uninstaller.scan(); });
    connect(settings, &QPushButton::clicked, this, &AppListCard::settingsWanted);
    connect(_search, &QLineEdit::textEdited, this,
            [this](const QString &text) { _context.services.uninstaller.setSearchText(text); });
}

void AppListCard::addList()
{
    const Theme &theme = _context.theme;
    _body = new QWidget;
    auto *body = new QVBoxLayout(_body);
    body->setContentsMargins(0, 6, 0, 8);
    body->setSpacing(0);
    _rows = new AppRows(this);
    _list = new RowList(theme, u"appRows"_s, AppRow::height);
    _list->setAccessibleName(u"已安装的应用"_s);
    _list->setModel(_rows);
    auto *row = new AppRow(theme, *_list, *_rows);
    _list->setItemDelegate(row);
    _noMatch = new EmptyState(
        theme, u"appsNoMatch"_s,
        {u"magnifyingglass"_s, u"没有匹配的应用"_s, u"换一个词试试，或查看全部应用"_s, u"清除搜索"_s});
    _none = new EmptyState(theme, u"appsEmpty"_s,
                           {u"shippingbox.fill"_s, u"没有找到应用"_s, u"安装应用后点「重新扫描」"_s, {}});
    body->addWidget(_list);
    body->addWidget(_noMatch);
    body->addWidget(_none);
    addRow(_body);

    const auto choose = [this](const QModelIndex &index) {
        const AppInfo app = _rows->app(index);
        Q_EMIT uninstallWanted(app);
    };
    connect(row, &AppRow::uninstallWanted, this, choose);
    connect(_list, &RowList::wanted, this, choose);
    connect(_list, &RowList::typed, this, [this](const QString &text) {
        _search->setFocus(Qt::OtherFocusReason);
        _search->deselect();
        _search->end(false);
        _search->insert(text);
        _context.services.uninstaller.setSearchText(_search->text());
    });
    connect(_noMatch, &EmptyState::acted, this, [this] {
        _context.services.uninstaller.setSearchText({});
        _search->setFocus();
    });
}

void AppListCard::followScanner()
{
    AppScanner &scanner = _context.services.uninstaller;
    connect(&_context.services.privacy, &PrivacyManager::hasAcceptedFirstLaunchNoticeChanged, this,
            [this] { look(); });
    connect(&scanner, &AppScanner::scanProblemChanged, this, [this] { showState(); });
    connect(&scanner, &AppScanner::isUninstallingChanged, this, [this] { showState(); });
    connect(&scanner, &AppScanner::appsChanged, this, [this] { showApps(); });
    connect(&scanner, &AppScanner::isScanningChanged, this, [this, &scanner] {
        if (!scanner.isScanning())
            showRunning();
        showState();
    });
    follow(scanner, &AppScanner::searchTextChanged, this, [this, &scanner] {
        if (_search->text() != scanner.searchText())
            _search->setText(scanner.searchText());
        showApps();
    });
}

void AppListCard::setListRoom(int height)
{
    _listRoom = height;
    fit();
}

bool AppListCard::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == _search && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Down && _rows->rowCount() > 0) {
            _list->setFocus(Qt::TabFocusReason);
            return true;
        }
        if (key == Qt::Key_Escape && !_search->text().isEmpty()) {
            _context.services.uninstaller.setSearchText({});
            return true;
        }
    }
    return Card::eventFilter(watched, event);
}

void AppListCard::showEvent(QShowEvent *event)
{
    Card::showEvent(event);
    look();
}

void AppListCard::look()
{
    // Nothing is looked at before the user has agreed to the statement.
    if (!isVisible() || !_context.services.privacy.hasAcceptedFirstLaunchNotice())
        return;
    _hasLooked = true;
    _context.services.uninstaller.scanOnce();
    showRunning();
    showState(); // somebody may have looked before, from the command line
}

void AppListCard::showApps()
{
    const QModelIndex current = _list->currentIndex();
    const QString path = current.isValid() ? _rows->app(current).path : QString();
    _rows->replace(_context.services.uninstaller.filteredApps());
    if (const QModelIndex again = _rows->find(path); again.isValid()) {
        _list->setCurrentIndex(again);
        _list->scrollTo(again);
    }
    fit();
    showState();
}

void AppListCard::showState()
{
    const AppScanner &scanner = _context.services.uninstaller;
    const QList<AppInfo> all = scanner.apps();
    const QList<AppInfo> shown = scanner.filteredApps();
    const bool isSearching = !scanner.searchText().isEmpty();
    const bool hasProblem = !scanner.scanProblem().isEmpty();
    const QString sum = shown.isEmpty() ? QString() : u" · "_s + formatByteCount(total(shown));
    _count->setText(isSearching ? u"%1 个应用中的 %2 个%3"_s.arg(all.size()).arg(shown.size()).arg(sum)
                                : u"共 %1 个应用%2"_s.arg(all.size()).arg(sum));
    _count->setVisible(!all.isEmpty());
    _problem->setText(scanner.scanProblem());
    _problem->setVisible(hasProblem);
    _job->setVisible(scanner.isScanning());
    _rescan->setEnabled(!scanner.isScanning() && !scanner.isUninstalling());
    _list->setVisible(!shown.isEmpty());
    _noMatch->setVisible(!all.isEmpty() && shown.isEmpty());
    _none->setVisible(_hasLooked && all.isEmpty() && !scanner.isScanning() && !hasProblem);
    _body->setVisible(!all.isEmpty() || !_none->isHidden());
}

QCoro::Task<> AppListCard::showRunning()
{
    const QPointer self(this);
    const QList<AppInfo> apps = _context.services.uninstaller.apps();
    QStringList names;
    for (const AppInfo &app : apps)
        names.append(programNames(app));
    const QSet<QString> running = co_await _context.services.platform.programs->running(names);
    if (!self)
        co_return;
    QSet<QString> paths;
    for (const AppInfo &app : apps) {
        const QStringList own = programNames(app);
        if (std::ranges::any_of(own, [&](const QString &name) { return running.contains(name); }))
            paths.insert(app.path);
    }
    _rows->setRunning(paths);
}

void AppListCard::fit()
{
    _list->setFixedHeight(std::max(std::min(_list->sizeHint().height(), _listRoom), AppRow::height));
}

} // namespace velbrix
