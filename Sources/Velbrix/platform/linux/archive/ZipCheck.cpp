#include "platform/linux/archive/ZipCheck.h"

#include "platform/linux/archive/EntryReader.h"
#include "platform/linux/archive/TwoThreads.h"

#include <array>

using namespace Qt::StringLiterals;

namespace velbrix {

Result<void> checkArchive(const QString &path, ArchiveWork &work)
{
    ZipFile archive;
    if (const auto isOpen = archive.open(path); !isOpen)
        return isOpen;
    archive.forgetCached();
    const std::vector<ZipEntry> &entries = archive.entries();
    work.totalFiles = static_cast<qint64>(entries.size());

    std::atomic<std::size_t> next = 0;
    std::atomic<bool> ended = false;
    std::array<Result<void>, 2> answers;
    onTwoThreads([&](std::size_t thread) {
        EntryReader reader(archive, work.cancellation);
        const EntryReader::Sink count = [&](std::span<const std::uint8_t> bytes) -> Result<void> {
            work.bytes += static_cast<qint64>(bytes.size());
            return {};
        };
        for (std::size_t i = next++; i < entries.size() && !ended && !work.cancellation.isCancelled();
             i = next++) {
            answers[thread] = reader.read(entries[i], count);
            if (!answers[thread])
                ended = true;
            ++work.files;
        }
    });
    if (work.cancellation.isCancelled())
        return failure(u"已取消"_s);
    return answers[0] ? answers[1] : answers[0];
}

} // namespace velbrix
