#include "maintenance/backup/BackupMark.h"

#include "foundation/AtomicFile.h"
#include "foundation/SettingsStore.h"

#include <QCryptographicHash>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSysInfo>
#include <QUuid>
#include <QtEndian>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QByteArray commentStart = "Velbrix ";
constexpr qint64 endSize = 22; // of the end of central directory record (APPNOTE 4.3.16), without its comment
constexpr qint64 longestComment = 65535;
constexpr qint64 lengthAt = 20; // of the comment, in the record

// Where the comment begins; nothing for what was torn and lacks its end.
std::optional<qint64> commentOffset(QFile &file)
{
    const qint64 size = file.size();
    if (size < endSize || !file.seek(std::max<qint64>(0, size - endSize - longestComment)))
        return std::nullopt;
    const QByteArray tail = file.readAll();
    for (auto end = tail.size() - endSize; end >= 0; --end) {
        const auto *const record = tail.constData() + end;
        if (std::memcmp(record, "PK\5\6", 4) == 0 &&
            qFromLittleEndian<quint16>(record + lengthAt) == tail.size() - end - endSize)
            return size - tail.size() + end + endSize;
    }
    return std::nullopt;
}

QJsonObject toJson(const BackupOwner &owner)
{
    return {{u"installation"_s, owner.installation}, {u"task"_s, owner.task}};
}

BackupOwner ownerFrom(const QJsonObject &json)
{
    return {json[u"installation"_s].toString(), json[u"task"_s].toString()};
}

QByteArray commentOf(const ArchiveMark &mark)
{
    QJsonObject json = toJson(mark.owner);
    json[u"run"_s] = mark.run;
    json[u"files"_s] = mark.files;
    json[u"complete"_s] = mark.isComplete;
    json[u"agreed"_s] = mark.isAgreed;
    return commentStart + QJsonDocument(json).toJson(QJsonDocument::Compact);
}

} // namespace

QString installationId(SettingsStore &settings)
{
    const QString key = u"Velbrix_InstallationID"_s;
    if (!settings.string(key))
        settings.set(key, QUuid::createUuid().toString(QUuid::WithoutBraces));
    const QByteArray facts = QSysInfo::machineUniqueId() + settings.string(key)->toUtf8();
    const QByteArray sum = QCryptographicHash::hash(facts, QCryptographicHash::Sha256);
    return QString::fromLatin1(sum.first(8).toHex());
}

Result<void> markArchive(const QString &archive, const ArchiveMark &mark)
{
    QFile file(archive);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return failure(file.errorString());
    const auto offset = commentOffset(file);
    if (!offset)
        return failure(u"归档不完整"_s);
    const QByteArray comment = commentOf(mark);
    QByteArray length(2, Qt::Uninitialized);
    qToLittleEndian(static_cast<quint16>(comment.size()), length.data());
    const auto isPut = [&](qint64 at, const QByteArray &bytes) {
        return file.seek(at) && file.write(bytes) == bytes.size();
    };
    if (!file.resize(*offset) || !isPut(*offset, comment) || !isPut(*offset - endSize + lengthAt, length))
        return failure(file.errorString());
    return {};
}

std::optional<QByteArray> archiveComment(const QString &archive)
{
    QFile file(archive);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const auto offset = commentOffset(file);
    return offset && file.seek(*offset) ? std::optional(file.readAll()) : std::nullopt;
}

std::optional<ArchiveMark> archiveMark(const QByteArray &comment)
{
    if (!comment.startsWith(commentStart))
        return std::nullopt;
    const QJsonObject json = QJsonDocument::fromJson(comment.sliced(commentStart.size())).object();
    if (json.isEmpty())
        return std::nullopt;
    return ArchiveMark{ownerFrom(json), json[u"run"_s].toInteger(), json[u"files"_s].toInteger(),
                       json[u"complete"_s].toBool(), json[u"agreed"_s].toBool()};
}

QString mirrorMarkName()
{
    return u".velbrix-mirror"_s;
}

Result<void> markMirror(const QString &mirror, const BackupOwner &owner)
{
    return replaceFile(mirror + u'/' + mirrorMarkName(), QJsonDocument(toJson(owner)).toJson());
}

std::optional<BackupOwner> mirrorOwner(const QString &mirror)
{
    QFile file(mirror + u'/' + mirrorMarkName());
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonObject json = QJsonDocument::fromJson(file.read(longestComment)).object();
    return json.isEmpty() ? std::nullopt : std::optional(ownerFrom(json));
}

} // namespace velbrix
