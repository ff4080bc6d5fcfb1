#include "app/AppDelegate.h"
#include "app/AppServices.h"
#include "app/CommandClient.h"
#include "foundation/SystemClock.h"
#include "platform/Platform.h"
#include "views/WidgetInterface.h"

#include <QApplication>
#include <QCoreApplication>
#include <QIcon>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QStringList>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;
using namespace velbrix;

namespace {

// None of these is destroyed: nothing may be torn down while something still runs.
Clock &systemClock()
{
    static Clock &clock = *new SystemClock;
    return clock;
}

// Claimed before the host is made, which takes it over.
std::unique_ptr<SingleInstance> &place()
{
    static auto &place = *new std::unique_ptr<SingleInstance>(makeSingleInstance());
    return place;
}

Platform &host()
{
    static Platform &platform = *new Platform(makePlatform(systemClock(), std::move(place())));
    return platform;
}

} // namespace

AppServices &AppServices::shared()
{
    static AppServices &services = *new AppServices(host(), systemClock());
    return services;
}

namespace {

std::array<int, 2> signalPipe = {-1, -1};

// A signal ends the program like the tray's entry does, so that a recording
// under way is completed.
void forwardSignal(int)
{
    const char byte = 1;
    (void)!::write(signalPipe[0], &byte, 1);
}

void installSignalHandlers(AppDelegate &delegate)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, signalPipe.data()) != 0)
        return;
    // Only Linux can say so while it makes them; nothing has been started yet that could inherit them.
    for (const int end : signalPipe)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    auto *notifier = new QSocketNotifier(signalPipe[1], QSocketNotifier::Read, &delegate);
    QObject::connect(notifier, &QSocketNotifier::activated, &delegate, [&delegate, notifier] {
        notifier->setEnabled(false);
        delegate.quitApp();
    });
    struct sigaction action{};
    action.sa_handler = forwardSignal;
    action.sa_flags = static_cast<int>(SA_RESTART);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}

void setIdentity()
{
    QCoreApplication::setApplicationName(u"velbrix"_s);
    QCoreApplication::setApplicationVersion(u"" VELBRIX_VERSION ""_s);
    QCoreApplication::setOrganizationDomain(u"tamsel.com"_s);
}

// A session manager starts the program again with the identity it had, which
// Qt takes out of its arguments itself.
QStringList withoutSessionIdentity(QStringList words)
{
    if (const auto place = words.indexOf(u"-session"_s); place >= 0 && place + 1 < words.size())
        words.remove(place, 2);
    return words;
}

int print(std::FILE *stream, const QString &text, int exitCode)
{
    std::fputs(text.toUtf8().constData(), stream);
    return exitCode;
}

int runAsClient(int argc, char **argv, const ParsedCommand &command)
{
    QCoreApplication application(argc, argv);
    setIdentity();
    SystemClock clock;
    runCommand(command, clock).then([](int exitCode) {
        // Queued: the answer may be there before the event loop runs.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [exitCode] { QCoreApplication::exit(exitCode); },
            Qt::QueuedConnection);
    });
    return QCoreApplication::exec();
}

int runAsApplication(int argc, char **argv, bool inBackground)
{
    if (!AppDelegate::claimPlace(*place(), inBackground))
        return exitcode::done;
    QApplication application(argc, argv);
    setIdentity();
    QGuiApplication::setApplicationDisplayName(u"Velbrix"_s);
    QGuiApplication::setDesktopFileName(u"velbrix"_s);
    QGuiApplication::setWindowIcon(QIcon(u":/velbrix.svg"_s));
    QGuiApplication::setQuitOnLastWindowClosed(false);

    AppServices &services = AppServices::shared();
    WidgetInterface ui(services);
    AppDelegate delegate(services, ui);
    ui.setDelegate(delegate);
    delegate.applicationDidFinishLaunching(inBackground);

    QObject::connect(&application, &QGuiApplication::applicationStateChanged, &delegate,
                     [&delegate](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive)
                             delegate.applicationDidBecomeActive();
                         else
                             delegate.applicationDidResignActive();
                     });
    services.quit.takeOverSystemRequests();
    QObject::connect(
        &delegate, &AppDelegate::terminate, &application, [] { QCoreApplication::exit(exitcode::done); },
        Qt::QueuedConnection);
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &delegate,
                     &AppDelegate::applicationWillTerminate);
#if QT_CONFIG(sessionmanager)
    // What was hidden stays hidden in the session that is restored.
    QObject::connect(&application, &QGuiApplication::saveStateRequest, &delegate,
                     [&services](QSessionManager &session) {
                         if (services.isInBackground())
                             session.setRestartCommand(session.restartCommand() << u"--background"_s);
                     });
#endif
    installSignalHandlers(delegate);
    return QApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    // Whoever reads our lines may go away in the middle of a recording.
    std::signal(SIGPIPE, SIG_IGN);
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));

    const auto end = words.indexOf(u"--"_s);
    if (words.first(end < 0 ? words.size() : end).contains(u"--help"_s))
        return print(stdout, helpText(words.first()), exitcode::done);
    if (words == QStringList{u"--version"_s})
        return print(stdout, u"Velbrix " VELBRIX_VERSION "\n"_s, exitcode::done);
    const QStringList ownWords = withoutSessionIdentity(words);
    const bool inBackground = ownWords == QStringList{u"--background"_s};
    if (ownWords.isEmpty() || inBackground) {
        if (const QString obstacle = prepareHost(); !obstacle.isEmpty())
            return print(stderr, obstacle + u'\n', exitcode::refused);
        const int exitCode = runAsApplication(argc, argv, inBackground);
        // Threads may still be at work, one on a disk that hangs: libraries are not taken down under them.
        std::fflush(nullptr);
        std::_Exit(exitCode);
    }
    const auto command = parseCommand(words);
    if (!command)
        return print(stderr, misuseText(words), exitcode::usage);
    return runAsClient(argc, argv, *command);
}
