#include "views/WidgetInterface.h"

#include "app/AppDelegate.h"
#include "app/AppServices.h"
#include "platform/Platform.h"
#include "views/MainWindow.h"
#include "views/StatusItem.h"
#include "views/ToastStack.h"

#include <QAction>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QScreen>
#include <QTranslator>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QList<QRect> screenAreas()
{
    QList<QRect> areas;
    const auto screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        areas.append(screen->availableGeometry());
    return areas;
}

// Puts the toolkit's own texts (folder panels, context menus) into the
// program's language while the owner lives.
void installToolkitTexts(QObject *owner)
{
    auto *translator = new QTranslator(owner);
    if (translator->load(u"qtbase_zh_CN"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(translator);
}

} // namespace

bool liesOnAScreen(const QRect &frame, const QList<QRect> &screens)
{
    const QRect top(frame.x(), frame.y(), frame.width(), std::min(frame.height(), 40));
    return std::ranges::any_of(screens, [&](const QRect &screen) {
        const QRect seen = screen & top;
        return seen.width() >= std::min(120, frame.width()) && seen.height() >= top.height() / 2;
    });
}

WidgetInterface::WidgetInterface(AppServices &services)
    : _services(services), _theme(*services.platform.desktop, *services.platform.symbols)
{
    _toasts = std::make_unique<ToastStack>(_theme, services.toasts, [this] { return usableScreen(); });
}

WidgetInterface::~WidgetInterface() = default;

void WidgetInterface::showMainWindow(const std::optional<QRect> &frame)
{
    placeWindow(frame);
    MainWindow &main = window();
    main.setWindowState(main.windowState() & ~Qt::WindowMinimized);
    main.show();
    main.raise();
    main.activateWindow();
}

void WidgetInterface::hideMainWindow()
{
    if (!_window)
        return;
    _window->hide();
    _window->setWindowState(_window->windowState() & ~Qt::WindowMinimized);
}

void WidgetInterface::minimizeMainWindow(const std::optional<QRect> &frame)
{
    placeWindow(frame);
    window().showMinimized();
}

void WidgetInterface::placeWindow(const std::optional<QRect> &frame)
{
    MainWindow &main = window();
    // A visible window stays where the user has put it.
    if (!main.isVisible()) {
        if (frame && liesOnAScreen(*frame, screenAreas())) {
            main.setGeometry(*frame);
        } else if (!_wasShown) {
            const QRect room = usableScreen();
            main.move(room.center() - main.rect().center());
        }
    }
    _wasShown = true;
}

bool WidgetInterface::isMainWindowVisible() const
{
    return _window && _window->isVisible() && !_window->isMinimized();
}

std::optional<QRect> WidgetInterface::mainWindowFrame() const
{
    if (!_wasShown)
        return std::nullopt;
    const bool isChanged = _window->isMinimized() || _window->isMaximized() || _window->isFullScreen();
    return isChanged ? _window->normalGeometry() : _window->geometry();
}

void WidgetInterface::createTray(const QList<TrayMenuItem> &menu, std::function<void()> clicked,
                                 std::function<void(const QString &id)> chosen)
{
    // A new one each time: the toolkit chooses the kind of tray at its birth.
    _statusItem = std::make_unique<StatusItem>(_theme, _services.platform.family, std::move(clicked),
                                               std::move(chosen));
    _statusItem->setMenu(menu);
    shareKeys();
    _statusItem->show();
}

void WidgetInterface::updateTray(const QList<TrayMenuItem> &menu, bool isRecording)
{
    if (!_statusItem)
        return;
    _statusItem->setMenu(menu);
    shareKeys();
    _statusItem->setRecording(isRecording);
}

// The keys beside the tray's entries work in the window, too.
void WidgetInterface::shareKeys()
{
    if (_window && _statusItem)
        _window->addActions(_statusItem->menu().actions());
}

void WidgetInterface::removeTray()
{
    _statusItem.reset();
}

void WidgetInterface::showPrivacyStatement()
{
    window().showPrivacyStatement();
}

MainWindow &WidgetInterface::window()
{
    if (!_window) {
        _window = std::make_unique<MainWindow>(
            _services, _theme,
            MainWindow::Events{
                .shouldClose = [this] { return !_delegate || _delegate->windowShouldClose(); },
                .restored =
                    [this] {
                        if (_delegate)
                            _delegate->windowDidDeminiaturize();
                    },
            });
        installToolkitTexts(_window.get());
        shareKeys();
    }
    return *_window;
}

QRect WidgetInterface::usableScreen() const
{
    const QScreen *screen = _window && _window->isVisible() ? _window->screen() : nullptr;
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    return screen ? screen->availableGeometry() : QRect(0, 0, 1280, 800);
}

} // namespace velbrix
