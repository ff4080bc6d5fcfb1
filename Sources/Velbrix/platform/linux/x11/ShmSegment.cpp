#include "platform/linux/x11/ShmSegment.h"

#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <unistd.h>

namespace velbrix {

namespace {

// Whether the server did it, and not merely went away without a complaint.
bool succeeded(const X11Connection &connection, xcb_void_cookie_t cookie)
{
    return connection.isAccepted(cookie) && connection.isAlive();
}

} // namespace

std::unique_ptr<ShmSegment> ShmSegment::create(X11Connection &connection, std::size_t size)
{
    const X11Abilities &has = connection.has();
    std::unique_ptr<ShmSegment> segment(new ShmSegment(connection, size));
    const bool isMapped = (has.sharedMemory && has.sharedDescriptors && segment->shareDescriptor()) ||
                          (has.sharedMemory && segment->shareSystemV()) || segment->mapPrivate();
    return isMapped ? std::move(segment) : nullptr;
}

ShmSegment::~ShmSegment()
{
    if (isShared())
        xcb_shm_detach(_connection.xcb(), _id);
    if (_isSystemV)
        shmdt(_data);
    else if (_data)
        munmap(_data, _size);
}

bool ShmSegment::shareDescriptor()
{
    const int file = memfd_create("velbrix-screen", MFD_CLOEXEC);
    if (file < 0)
        return false;
    void *memory = MAP_FAILED;
    if (ftruncate(file, static_cast<off_t>(_size)) == 0)
        memory = mmap(nullptr, _size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory == MAP_FAILED) {
        close(file);
        return false;
    }
    const xcb_shm_seg_t id = xcb_generate_id(_connection.xcb());
    // The connection closes the descriptor when it is sent.
    if (!succeeded(_connection, xcb_shm_attach_fd_checked(_connection.xcb(), id, file, 0))) {
        munmap(memory, _size);
        return false;
    }
    _data = static_cast<std::uint8_t *>(memory);
    _id = id;
    return true;
}

bool ShmSegment::shareSystemV()
{
    const int handle = shmget(IPC_PRIVATE, _size, IPC_CREAT | 0600);
    if (handle < 0)
        return false;
    void *const memory = shmat(handle, nullptr, 0);
    const auto *const none =
        reinterpret_cast<void *>(-1); // NOLINT(performance-no-int-to-ptr): shmat's own value
    const xcb_shm_seg_t id = xcb_generate_id(_connection.xcb());
    const bool isAttached =
        memory != none &&
        succeeded(_connection,
                  xcb_shm_attach_checked(_connection.xcb(), id, static_cast<std::uint32_t>(handle), 0));
    // Goes with the last user, however that one ends.
    shmctl(handle, IPC_RMID, nullptr);
    if (!isAttached) {
        if (memory != none)
            shmdt(memory);
        return false;
    }
    _data = static_cast<std::uint8_t *>(memory);
    _id = id;
    _isSystemV = true;
    return true;
}

bool ShmSegment::mapPrivate()
{
    void *const memory = mmap(nullptr, _size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return false;
    _data = static_cast<std::uint8_t *>(memory);
    return true;
}

} // namespace velbrix
