#include "platform/linux/applications/StoreList.h"

#include "foundation/OneLine.h"
#include "platform/linux/applications/PackageManager.h"
#include "platform/linux/applications/SizeText.h"

using namespace Qt::StringLiterals;

namespace velbrix {

QList<FlatpakApplication> flatpakApplications(const QByteArray &output)
{
    QList<FlatpakApplication> applications;
    const QStringList lines = QString::fromUtf8(output).split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QStringList fields = line.split(u'\t');
        const bool isUsers = fields.value(4) == u"user"_s;
        if (fields.size() != 5 || !isPackageName(fields[0]) || (!isUsers && fields[4] != u"system"_s))
            continue;
        const QString name = oneLine(fields[1]).simplified();
        applications.append({fields[0], name.isEmpty() ? fields[0] : name, oneLine(fields[2]).simplified(),
                             bytesOf(fields[3]), isUsers});
    }
    return applications;
}

QHash<QString, QString> snapVersions(const QByteArray &output)
{
    QHash<QString, QString> versions;
    const QStringList lines = QString::fromUtf8(output).split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines.mid(1)) {
        const QStringList fields = line.simplified().split(u' ');
        if (fields.size() >= 2 && isPackageName(fields[0]))
            versions.insert(fields[0], fields[1]);
    }
    return versions;
}

} // namespace velbrix
