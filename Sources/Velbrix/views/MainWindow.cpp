#include "views/MainWindow.h"

#include "app/AppServices.h"
#include "app/Tools.h"
#include "platform/Platform.h"
#include "views/Follow.h"
#include "views/NoticeDesk.h"
#include "views/Pages.h"
#include "views/Sidebar.h"
#include "views/Theme.h"
#include "views/ViewContext.h"
#include "views/components/Overlay.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QShortcut>
#include <QStackedWidget>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

MainWindow::MainWindow(AppServices &services, Theme &theme, Events events)
    : _services(services), _theme(theme), _events(std::move(events)), _pages(new QStackedWidget)
{
    setObjectName(u"mainWindow"_s);
    setWindowTitle(u"Velbrix"_s);
    setMinimumSize(900, 600);
    resize(1040, 700);

    auto *content = new QWidget(this);
    auto *line = new QHBoxLayout(content);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(0);
    line->addWidget(new Sidebar(theme, services));
    line->addWidget(_pages, 1);
    setCentralWidget(content);
    _notices = new NoticeDesk(services.privacy, theme, services.platform.family, content);
    addShortcuts();

    if (services.router.activeTab().isEmpty())
        services.router.show(tools().first().identifier);
    follow(services.router, &AppRouter::activeTabChanged, this,
           [this] { showPage(_services.router.activeTab()); });
    follow(services.quit, &QuitSequence::isEndingChanged, content,
           [content, &services] { content->setDisabled(services.quit.isEnding()); });
}

MainWindow::~MainWindow() = default;

void MainWindow::showPrivacyStatement()
{
    _notices->reviewStatement();
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange || !isVisible() || isMinimized())
        return;
    if (static_cast<const QWindowStateChangeEvent *>(event)->oldState() & Qt::WindowMinimized)
        _events.restored();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->setAccepted(_events.shouldClose());
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (!_services.privacy.hasAcceptedFirstLaunchNotice())
        _services.privacy.startFirstLaunchCountdown();
}

void MainWindow::showPage(const QString &tool)
{
    QWidget *page = _made.value(tool);
    if (!page) {
        page = makePage(tool, {_services, _theme});
        if (!page)
            return;
        _made.insert(tool, page);
        _pages->addWidget(page);
    }
    _pages->setCurrentWidget(page);
}

void MainWindow::addShortcuts()
{
    for (int index = 0; index < tools().size() && index < 9; ++index) {
        const auto key = static_cast<Qt::Key>(Qt::Key_1 + index);
        auto *shortcut = new QShortcut(QKeySequence(Qt::CTRL | key), this);
        connect(shortcut, &QShortcut::activated, this, [this, tab = tools()[index].identifier] {
            if (!Overlay::covers(this))
                _services.router.show(tab);
        });
    }
}

} // namespace velbrix
