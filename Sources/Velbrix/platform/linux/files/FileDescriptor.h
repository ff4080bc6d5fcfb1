#pragma once

#include <QByteArray>

#include <cstdint>
#include <span>
#include <utility>

namespace velbrix {

// Owns an open file, folder or socket.
class FileDescriptor {
public:
    explicit FileDescriptor(int number = -1) : _number(number) {}
    FileDescriptor(FileDescriptor &&other) noexcept : _number(std::exchange(other._number, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(_number, other._number);
        return *this;
    }
    ~FileDescriptor();

    explicit operator bool() const { return _number >= 0; }
    int number() const { return _number; }

private:
    int _number;
};

// Opens a path of any length, below an open folder unless it is absolute; errno
// says why not.
FileDescriptor openBelow(int folder, const QByteArray &path, int flags);

// The bytes read, fewer only at the end of the file; -1 after an error,
// which errno names.
std::int64_t readAt(int file, std::span<std::uint8_t> into, std::uint64_t offset);

// False after an error, which errno names.
bool writeAll(int file, std::span<const std::uint8_t> bytes);

} // namespace velbrix
