#pragma once

#include "platform/SingleInstance.h"
#include "platform/linux/files/FileDescriptor.h"

#include <QString>

#include <memory>

class QSocketNotifier;

namespace velbrix {

// The place is a file lock in a folder of this user, which the kernel frees
// with the process; wake-ups are connections to a socket beside it, which keeps
// those that come before anyone observes them, and breaks off those that nobody
// has accepted when the holder goes. A holder that leaves has a second lock, on
// a sign that the next holder takes away.
class FolderSingleInstance final : public SingleInstance {
public:
    // The folder must exist and be closed to other users. Without one (empty)
    // every copy is the only one.
    explicit FolderSingleInstance(const QString &folder);
    ~FolderSingleInstance() override;

    // May wait for the few system calls of a copy that claims at this moment, and
    // waits for the end of one that leaves.
    bool claim() override;
    bool wakeOther() override;
    Observation observeWake(std::function<void()> wake) override;
    void leave() override;

private:
    enum class Claim { taken, held, leaving };
    // With a leaving holder's sign, opened.
    Claim tryToClaim(FileDescriptor &sign);
    void closeSocket();
    bool openSocket();
    void acceptWakes();

    FileDescriptor _folder;
    FileDescriptor _lock;
    FileDescriptor _sign;
    FileDescriptor _socket;
    ObserverList<void()> _observers;
    std::unique_ptr<QSocketNotifier> _notifier;
};

} // namespace velbrix
