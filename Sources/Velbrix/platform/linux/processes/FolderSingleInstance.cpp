#include "platform/linux/processes/FolderSingleInstance.h"

#include "foundation/Log.h"

#include <QFile>
#include <QSocketNotifier>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include <fcntl.h>
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

constexpr int fileFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW;

void closeFile(int &descriptor)
{
    if (descriptor >= 0)
        ::close(std::exchange(descriptor, -1));
}

// Through the folder's descriptor, as a socket address has room for a short
// path only.
sockaddr_un socketAddress(int folder)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/%s", folder, socketName);
    return address;
}

template <typename Call> int unlessInterrupted(Call call)
{
    int result = -1;
    do {
        result = static_cast<int>(call());
    } while (result < 0 && errno == EINTR);
    return result;
}

// Until the descriptor is closed. Less than 0 when there is no gate.
int enterGate(int folder)
{
    const int gate = ::openat(folder, gateName, fileFlags, 0600);
    if (gate >= 0)
        unlessInterrupted([gate] { return ::flock(gate, LOCK_EX); });
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
    _folder = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (_folder < 0)
        logFailure("open folder");
}

FolderSingleInstance::~FolderSingleInstance()
{
    closeSocket();
    closeFile(_sign);
    closeFile(_lock);
    closeFile(_folder);
}

bool FolderSingleInstance::claim()
{
    if (_lock >= 0 || _folder < 0)
        return true;
    for (;;) {
        int sign = -1;
        const Claim claim = tryToClaim(sign);
        if (claim != Claim::leaving)
            return claim == Claim::taken;
        // Shared, so that all who wait go on together and claim one by one. The
        // place's own lock may have its next holder already.
        unlessInterrupted([sign] { return ::flock(sign, LOCK_SH); });
        closeFile(sign);
    }
}

FolderSingleInstance::Claim FolderSingleInstance::tryToClaim(int &sign)
{
    // Whoever finds the place held must also find the holder's socket open, or
    // its wake-up would be lost: claims go through the gate one by one.
    int gate = enterGate(_folder);
    int lock = ::openat(_folder, lockName, fileFlags, 0600);
    const bool isHeld = lock >= 0 &&
                        unlessInterrupted([lock] { return ::flock(lock, LOCK_EX | LOCK_NB); }) < 0 &&
                        errno == EWOULDBLOCK;
    Claim claim = Claim::taken;
    if (isHeld) {
        closeFile(lock);
        sign = ::openat(_folder, leavingName, O_RDWR | O_CLOEXEC | O_NOFOLLOW);
        claim = sign >= 0 ? Claim::leaving : Claim::held;
    } else {
        if (lock < 0)
            logFailure("open lock");
        _lock = lock;
        ::unlinkat(_folder, leavingName, 0);
        if (!openSocket())
            logFailure("open socket");
    }
    closeFile(gate);
    return claim;
}

void FolderSingleInstance::leave()
{
    if (_lock < 0 || _sign >= 0)
        return;
    int gate = enterGate(_folder);
    _sign = ::openat(_folder, leavingName, fileFlags, 0600);
    if (_sign < 0 || ::flock(_sign, LOCK_EX) < 0)
        logFailure("leave");
    closeSocket();
    closeFile(gate);
}

void FolderSingleInstance::closeSocket()
{
    _notifier.reset();
    if (_socket >= 0)
        ::unlinkat(_folder, socketName, 0);
    closeFile(_socket);
}

bool FolderSingleInstance::openSocket()
{
    // Left behind by a copy that was killed: the lock says that nobody uses it.
    ::unlinkat(_folder, socketName, 0);
    _socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (_socket < 0)
        return false;
    const sockaddr_un address = socketAddress(_folder);
    if (::bind(_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) < 0 ||
        ::fchmodat(_folder, socketName, 0600, 0) < 0) {
        closeFile(_socket);
        return false;
    }
    return true;
}

bool FolderSingleInstance::wakeOther()
{
    if (_folder < 0)
        return false;
    int sender = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const sockaddr_un address = socketAddress(_folder);
    constexpr char wake = 'w';
    const auto sent = unlessInterrupted([&] {
        return ::sendto(sender, &wake, 1, MSG_NOSIGNAL, reinterpret_cast<const sockaddr *>(&address),
                        sizeof address);
    });
    // A full queue holds wake-ups already.
    const bool isWoken = sent >= 0 || errno == EAGAIN;
    if (!isWoken)
        logFailure("wake");
    closeFile(sender);
    return isWoken;
}

Observation FolderSingleInstance::observeWake(std::function<void()> wake)
{
    if (_socket >= 0 && !_notifier) {
        _notifier = std::make_unique<QSocketNotifier>(_socket, QSocketNotifier::Read);
        QObject::connect(_notifier.get(), &QSocketNotifier::activated, _notifier.get(),
                         [this] { readWakes(); });
    }
    return _observers.add(std::move(wake));
}

void FolderSingleInstance::readWakes()
{
    char wake[16];
    while (unlessInterrupted([&] { return ::recv(_socket, wake, sizeof wake, 0); }) >= 0) {
    }
    _observers.notify();
}

} // namespace velbrix
