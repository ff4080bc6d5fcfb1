#pragma once

#include "foundation/ExcludeRules.h"
#include "platform/linux/archive/ArchiveWork.h"
#include "platform/linux/archive/Deflater.h"
#include "platform/linux/archive/FolderScan.h"
#include "platform/linux/archive/ZipOutput.h"
#include "platform/linux/archive/ZipRecords.h"

#include <array>
#include <atomic>
#include <mutex>
#include <optional>
#include <sys/stat.h>
#include <vector>

namespace velbrix {

// Writes one archive. Files up to `wholeFile` are read and deflated as a whole,
// each by one of two threads; longer ones in parts by both. So it needs no more
// than 40 MB, and some 300 bytes for each entry.
class Archiving {
public:
    static constexpr std::uint64_t wholeFile = 8 << 20;

    Archiving(const QString &source, const QString &archive, const QStringList &excludes, ArchiveWork &work);

    // Called once, off the main thread.
    ArchiveOutcome run();

private:
    struct SourceFile {
        FileDescriptor descriptor = FileDescriptor();
        struct stat facts = {}; // when it was opened
    };
    // One of the threads, with what it needs.
    struct Worker {
        Deflater deflater;
        RawBytes buffer;
    };

    ArchiveOutcome ended(int exitStatus, const QString &problem) const;
    ArchiveOutcome unwritten(int exitStatus, const QString &words, int error) const;
    qint64 filesInIt() const;
    bool hasEnded() const { return _work.cancellation.isCancelled() || _output.error() != 0; }
    ZipEntry entryOf(const FolderItem &item) const;
    void addItems(Worker &worker);
    void addItem(std::size_t index, Worker &worker);
    bool addFile(FolderItem &item, ZipEntry &entry, Worker &worker);
    bool addLink(const FolderItem &item, ZipEntry &entry);
    bool addLarge(const FolderItem &item, ZipEntry &entry);
    void noteChange(const FolderItem &item, const SourceFile &file);
    bool addBytes(ZipEntry &entry, std::span<const std::uint8_t> bytes, Worker *worker);
    SourceFile openFile(const FolderItem &item, ZipEntry &entry);
    bool skip(const FolderItem &item, int error);
    bool writeDirectory();

    const QString _sourcePath;
    const QString _archivePath;
    const ExcludeRules _excludes;
    ArchiveWork &_work;
    QByteArray _topName;
    FileDescriptor _source;
    ZipOutput _output;
    NotedFiles _skipped;
    NotedFiles _changed; // while they were read
    std::array<Worker, 2> _workers;
    std::vector<FolderItem> _items;
    std::vector<std::optional<ZipEntry>> _entries; // of the items
    std::atomic<std::size_t> _next = 0;
};

} // namespace velbrix
