#include "platform/linux/processes/FolderSingleInstance.h"

#include "foundation/Log.h"

#include <QFile>
#include <QSocketNotifier>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr char lockName[] = "instance.lock";
constexpr char gateName[] = "instance.gate";
constexpr char socketName[] = "instance.wake";
constexpr char leavingName[] = "instance.leaving";

// A holder whose main thread is that busy keeps the wake-up for later.
constexpr int hearingLimitMs = 5000;

constexpr int fileFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW;

// Through the folder's descriptor, as a socket address has room for a short
// path only.
sockaddr_un socketAddress(int folder)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/%s", folder, socketName);
    return address;
}

FileDescriptor makeSocket()
{
    return FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

template <typename Call> int unlessInterrupted(Call call)
{
    int result = -1;
    do {
        result = static_cast<int>(call());
    } while (result < 0 && errno == EINTR);
    return result;
}

// Until the descriptor is closed; the gate stands open when it cannot be opened.
FileDescriptor enterGate(int folder)
{
    FileDescriptor gate(::openat(folder, gateName, fileFlags, 0600));
    if (gate)
        unlessInterrupted([&gate] { return ::flock(gate.number(), LOCK_EX); });
    return gate;
}

void logFailure(const char *what)
{
    log::line(u"Velbrix"_s, u"single instance: %1: %2"_s.arg(QString::fromLatin1(what),
                                                             QString::fromLocal8Bit(std::strerror(errno))));
}

} // namespace

FolderSingleInstance::FolderSingleInstance(const QString &folder)
{
    if (folder.isEmpty())
        return;
    _folder =
        FileDescriptor(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!_folder)
        logFailure("open folder");
}

FolderSingleInstance::~FolderSingleInstance()
{
    closeSocket();
}

bool FolderSingleInstance::claim()
{
    if (_lock || !_folder)
        return true;
    for (;;) {
        FileDescriptor sign;
        const Claim claim = tryToClaim(sign);
        if (claim != Claim::leaving)
            return claim == Claim::taken;
        // Shared, so that all who wait go on together and claim one by one. The
        // place's own lock may have its next holder already.
        unlessInterrupted([&sign] { return ::flock(sign.number(), LOCK_SH); });
    }
}

FolderSingleInstance::Claim FolderSingleInstance::tryToClaim(FileDescriptor &sign)
{
    // Whoever finds the place held must also find the holder's socket open, or
    // its wake-up would be lost: claims go through the gate one by one.
    const FileDescriptor gate = enterGate(_folder.number());
    FileDescriptor lock(::openat(_folder.number(), lockName, fileFlags, 0600));
    const bool isHeld =
        lock && unlessInterrupted([&lock] { return ::flock(lock.number(), LOCK_EX | LOCK_NB); }) < 0 &&
        errno == EWOULDBLOCK;
    if (isHeld) {
        sign = FileDescriptor(::openat(_folder.number(), leavingName, O_RDWR | O_CLOEXEC | O_NOFOLLOW));
        return sign ? Claim::leaving : Claim::held;
    }
    if (!lock)
        logFailure("open lock");
    _lock = std::move(lock);
    ::unlinkat(_folder.number(), leavingName, 0);
    if (!openSocket())
        logFailure("open socket");
    return Claim::taken;
}

void FolderSingleInstance::leave()
{
    if (!_lock || _sign)
        return;
    const FileDescriptor gate = enterGate(_folder.number());
    _sign = FileDescriptor(::openat(_folder.number(), leavingName, fileFlags, 0600));
    if (!_sign || ::flock(_sign.number(), LOCK_EX) < 0)
        logFailure("leave");
    closeSocket();
}

void FolderSingleInstance::closeSocket()
{
    _notifier.reset();
    if (_socket)
        ::unlinkat(_folder.number(), socketName, 0);
    _socket = FileDescriptor();
}

bool FolderSingleInstance::openSocket()
{
    // Left behind by a copy that was killed: the lock says that nobody uses it.
    ::unlinkat(_folder.number(), socketName, 0);
    FileDescriptor socket = makeSocket();
    const sockaddr_un address = socketAddress(_folder.number());
    if (!socket ||
        ::bind(socket.number(), reinterpret_cast<const sockaddr *>(&address), sizeof address) < 0 ||
        ::fchmodat(_folder.number(), socketName, 0600, 0) < 0 || ::listen(socket.number(), SOMAXCONN) < 0)
        return false;
    _socket = std::move(socket);
    return true;
}

bool FolderSingleInstance::wakeOther()
{
    if (!_folder)
        return false;
    const FileDescriptor caller = makeSocket();
    const sockaddr_un address = socketAddress(_folder.number());
    const int connected = unlessInterrupted([&] {
        return ::connect(caller.number(), reinterpret_cast<const sockaddr *>(&address), sizeof address);
    });
    // A full queue holds wake-ups already.
    if (connected < 0 && errno == EAGAIN)
        return true;
    if (connected < 0) {
        logFailure("wake");
        return false;
    }
    pollfd answer{.fd = caller.number(), .events = POLLIN, .revents = 0};
    if (unlessInterrupted([&] { return ::poll(&answer, 1, hearingLimitMs); }) <= 0)
        return true;
    char heard = 0;
    return unlessInterrupted([&] { return ::read(caller.number(), &heard, 1); }) > 0;
}

Observation FolderSingleInstance::observeWake(std::function<void()> wake)
{
    if (_socket && !_notifier) {
        _notifier = std::make_unique<QSocketNotifier>(_socket.number(), QSocketNotifier::Read);
        QObject::connect(_notifier.get(), &QSocketNotifier::activated, _notifier.get(),
                         [this] { acceptWakes(); });
    }
    return _observers.add(std::move(wake));
}

void FolderSingleInstance::acceptWakes()
{
    const auto accepted = [this] {
        return FileDescriptor(unlessInterrupted(
            [this] { return ::accept4(_socket.number(), nullptr, nullptr, SOCK_CLOEXEC); }));
    };
    constexpr char heard = 'h';
    while (const FileDescriptor caller = accepted())
        ::send(caller.number(), &heard, 1, MSG_NOSIGNAL);
    _observers.notify();
}

} // namespace velbrix
