#pragma once

#include "platform/linux/archive/ArchiveWork.h"
#include "platform/linux/archive/EntryReader.h"
#include "platform/linux/archive/ExtractionPlan.h"
#include "platform/linux/files/FileDescriptor.h"

#include <QSet>
#include <QString>

#include <vector>

namespace velbrix {

// Unpacks one archive. Folders are entered one by one and never through a
// link, links are made last, and nothing that is there is opened for writing.
class Extraction {
public:
    Extraction(const QString &archive, const QString &folder, ArchiveWork &work);

    // Called once, off the main thread. What was unpacked before a failure stays.
    Result<void> run();

private:
    Result<void> checkRoom() const;
    Result<void> checkFree(const PlannedItem &item) const;
    // The folder that the item is in, which is made with those above it.
    Result<void> enterFolderOf(const PlannedItem &item);
    // Made when it is not there; errno says why it cannot be entered.
    FileDescriptor enter(int folder, const QByteArray &name, const QByteArray &path);
    Result<void> unpack(const PlannedItem &item);
    Result<void> makeFolder(const PlannedItem &item);
    Result<void> makeFile(const PlannedItem &item);
    Result<void> makeLink(const PlannedItem &item);
    void finishFolder(const PlannedItem &item);

    const QString _archivePath;
    const QString _folderPath;
    ArchiveWork &_work;
    ZipFile _archive;
    EntryReader _reader;
    std::vector<PlannedItem> _plan;
    FileDescriptor _root;
    FileDescriptor _entered;
    QByteArrayList _enteredParts;
    QSet<QByteArray> _made; // folders
};

} // namespace velbrix
