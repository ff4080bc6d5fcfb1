#include "maintenance/uninstall/ItemIdentity.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Numbers of files are given again, so that one counts only with its birth.
qint64 bornAt(const QString &path, const struct stat &facts)
{
    if (S_ISLNK(facts.st_mode))
        return 0; // of what it leads to
    const QDateTime born = QFileInfo(path).birthTime();
    return born.isValid() ? born.toMSecsSinceEpoch() : 0;
}

} // namespace

QString itemIdentity(const QString &path)
{
    struct stat facts{};
    if (::lstat(QFile::encodeName(path).constData(), &facts) != 0)
        return {};
    return u"%1 %2 %3 %4 %5"_s.arg(facts.st_ino)
        .arg(bornAt(path, facts))
        .arg(facts.st_mode & S_IFMT)
        .arg(facts.st_size)
        .arg(facts.st_mtime);
}

bool isSameItem(const QString &before, const QString &now)
{
    if (before.isEmpty() || now.isEmpty())
        return true;
    const QString born = before.section(u' ', 0, 1);
    const bool isBornSo = !born.endsWith(u" 0"_s) && born == now.section(u' ', 0, 1);
    return isBornSo || before.section(u' ', 2) == now.section(u' ', 2);
}

} // namespace velbrix
