#include "platform/linux/files/VolumeUuid.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

namespace velbrix {

QString volumeIdentity(const QString &path, const QString &links)
{
    // Not by the device's number: btrfs has numbers of its own.
    const QString device = QFileInfo(QFile::decodeName(QStorageInfo(path).device())).canonicalFilePath();
    if (device.isEmpty())
        return {};
    const QFileInfoList all =
        QDir(links).entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &link : all) {
        if (link.canonicalFilePath() == device)
            return link.fileName();
    }
    return {};
}

} // namespace velbrix
