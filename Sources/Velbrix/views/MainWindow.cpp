#include "views/MainWindow.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/NoticeDesk.h"
#include "views/Sidebar.h"
#include "views/Theme.h"
#include "views/ViewContext.h"
#include "views/backup/FileBackupView.h"
#include "views/cleanup/SystemCleanupView.h"
#include "views/components/Veil.h"
#include "views/recorder/RecorderPage.h"
#include "views/settings/SettingsPage.h"
#include "views/uninstall/UninstallContentView.h"
#include "views/wallpaper/WallpaperPage.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QShortcut>
#include <QStackedWidget>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

MainWindow::MainWindow(AppServices &services, Theme &theme, std::function<bool()> shouldClose)
    : _services(services),
      _theme(theme),
      _recording(services.recorder, services.privacy),
      _wallpaper(services.wallpaper, services.privacy),
      _shouldClose(std::move(shouldClose)),
      _pages(new QStackedWidget)
{
    setObjectName(u"mainWindow"_s);
    setWindowTitle(u"Velbrix"_s);
    setMinimumSize(900, 600);
    resize(1040, 700);

    _activity.watchTools(services);
    auto *content = new QWidget(this);
    auto *line = new QHBoxLayout(content);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(0);
    line->addWidget(new Sidebar(theme, services.router, _activity));
    line->addWidget(_pages, 1);
    setCentralWidget(content);
    _notices = new NoticeDesk(services.privacy, theme, content);
    addShortcuts();

    if (!services.router.activeTab())
        services.router.show(appTabs().first().tab);
    follow(services.router, &AppRouter::activeTabChanged, this, [this] {
        if (const auto tab = _services.router.activeTab())
            showPage(*tab);
    });
}

MainWindow::~MainWindow() = default;

void MainWindow::showPrivacyStatement()
{
    _notices->reviewStatement();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->setAccepted(_shouldClose());
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (!_services.privacy.hasAcceptedFirstLaunchNotice())
        _services.privacy.startFirstLaunchCountdown();
}

void MainWindow::showPage(AppTab tab)
{
    QWidget *&page = _made[tab];
    if (!page) {
        page = makePage(tab);
        _pages->addWidget(page);
    }
    _pages->setCurrentWidget(page);
}

QWidget *MainWindow::makePage(AppTab tab)
{
    const ViewContext context{_services, _theme, _recording, _wallpaper};
    switch (tab) {
    case AppTab::wallpaper:
        return new WallpaperPage(context);
    case AppTab::recorder:
        return new RecorderPage(context);
    case AppTab::systemClean:
        return new SystemCleanupView(context);
    case AppTab::uninstaller:
        return new UninstallContentView(context);
    case AppTab::fileBackup:
        return new FileBackupView(context);
    case AppTab::settings:
        return new SettingsPage(context, [this] { showPrivacyStatement(); });
    }
    Q_UNREACHABLE();
}

void MainWindow::addShortcuts()
{
    const auto &tabs = appTabs();
    for (int index = 0; index < tabs.size() && index < 9; ++index) {
        const auto key = static_cast<Qt::Key>(Qt::Key_1 + index);
        auto *shortcut = new QShortcut(QKeySequence(Qt::CTRL | key), this);
        connect(shortcut, &QShortcut::activated, this, [this, tab = tabs[index].tab] {
            if (!Veil::covers(this))
                _services.router.show(tab);
        });
    }
}

} // namespace velbrix
