#include "maintenance/backup/MirrorNames.h"

#include "foundation/AtomicFile.h"
#include "foundation/Paths.h"
#include "foundation/Text.h"

#include <QFile>
#include <QHash>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QByteArray withoutEnd(QByteArray name)
{
    // FAT drops them.
    while (name.endsWith('.') || name.endsWith(' '))
        name.chop(1);
    return name;
}

bool isAscii(const QByteArray &name)
{
    return std::ranges::all_of(name, [](char c) { return static_cast<signed char>(c) >= 0; });
}

QByteArray normal(const QByteArray &name, QString::NormalizationForm form)
{
    return isAscii(name) ? name : QString::fromUtf8(name).normalized(form).toUtf8();
}

// Alike for all names that some disk takes for one; that it is alike proves nothing.
QByteArray nameKey(const QByteArray &name)
{
    if (isAscii(name))
        return withoutEnd(name).toLower();
    return withoutEnd(
        QString::fromUtf8(name).normalized(QString::NormalizationForm_KD).toCaseFolded().toUtf8());
}

// The ways in which disks write names otherwise: HFS+ decomposes, others compose, some keep one case only.
constexpr std::array<QByteArray (*)(const QByteArray &), 4> spellings = {
    [](const QByteArray &name) { return normal(name, QString::NormalizationForm_D); },
    [](const QByteArray &name) { return normal(name, QString::NormalizationForm_C); },
    [](const QByteArray &name) { return isAscii(name) ? name.toLower() : name; },
    [](const QByteArray &name) { return withoutEnd(name); }};

using Lookup = std::function<std::optional<FileIdentity>(const QByteArray &)>;

// Finds the entries of a folder of the mirror that names lead to which are not listed there.
class ListedNames {
public:
    ListedNames(const QSet<QByteArray> &listed, const Lookup &inMirror) : _listed(listed), _inMirror(inMirror)
    {
    }

    QByteArray find(const QByteArray &name)
    {
        const auto identity = _listed.isEmpty() ? std::nullopt : _inMirror(name);
        if (!identity)
            return {};
        if (_byKey.isEmpty()) {
            for (const QByteArray &each : _listed)
                _byKey.insert(nameKey(each), each);
        }
        const QList<QByteArray> alike = _byKey.values(nameKey(name));
        const auto isIt = [&](const QByteArray &each) { return _inMirror(each) == identity; };
        if (const auto same = std::ranges::find_if(alike, isIt); same != alike.end())
            return *same;
        // Not every disk numbers its files.
        if (alike.size() == 1)
            return alike.first();
        const auto same = std::ranges::find_if(_listed, isIt);
        return same != _listed.end() ? *same : QByteArray();
    }

private:
    const QSet<QByteArray> &_listed;
    const Lookup &_inMirror;
    QMultiHash<QByteArray, QByteArray> _byKey;
};

QString shown(const QByteArray &folder, const QByteArray &name)
{
    return oneLine(QFile::decodeName(folder.isEmpty() ? name : folder + '/' + name));
}

Result<void> clashFailure(const NamePair &pair)
{
    return failure(
        u"保存目录所在的磁盘分不清“%1”和“%2”，同步后只会剩下其中一个，所以没有同步；请给源文件夹里的其中一个改名"_s
            .arg(shown(pair.folder, pair.first), shown(pair.folder, pair.second)));
}

Result<void> rewritingFailure(const QByteArray &folder, const QByteArray &name)
{
    return failure(
        u"保存目录所在的磁盘会改写文件名“%1”，同步会把副本当作多余的删除，所以没有同步；请换一个保存目录，或给它改名"_s
            .arg(shown(folder, name)));
}

QByteArray temporaryName()
{
    return ".velbrix-names-" + QUuid::createUuid().toByteArray(QUuid::Id128);
}

bool isListed(const FolderHandle &folder, const QByteArray &name)
{
    const auto names = folder.names();
    return names && names->contains(name);
}

// An empty folder in the mirror in which names are tried; gone with this.
class TrialFolder {
public:
    explicit TrialFolder(const QByteArray &mirror) : _path(mirror + '/' + temporaryName())
    {
        if (::mkdir(_path.constData(), 0700) == 0)
            _folder = FolderHandle::open(canonicalPath(_path));
    }
    ~TrialFolder() { ::rmdir(_path.constData()); }
    Q_DISABLE_COPY_MOVE(TrialFolder)

    bool isOpen() const { return _folder.isOpen(); }
    // Whether what is true of the folder while an entry of that name is in it. A name
    // that cannot be made at all is a matter of the copying.
    template <typename Condition> bool holdsWith(const QByteArray &name, Condition condition) const
    {
        const QByteArray entry = _path + '/' + name;
        if (::mkdir(entry.constData(), 0700) != 0)
            return true;
        const bool holds = condition(_folder);
        ::rmdir(entry.constData());
        return holds;
    }

private:
    const QByteArray _path;
    FolderHandle _folder;
};

Result<void> tryNames(const QByteArray &mirror, const NameFindings &found)
{
    const auto isTried = [](const QByteArray &name) { return name.isEmpty(); };
    if (found.similar.isEmpty() && std::ranges::all_of(found.untried, isTried))
        return {};
    const TrialFolder trial(mirror);
    if (!trial.isOpen())
        return failure(u"无法写入同步文件夹：%1"_s.arg(writeReason(errno)));
    for (const QByteArray &name : found.untried) {
        const auto keeps = [&](const FolderHandle &folder) { return isListed(folder, name); };
        if (!name.isEmpty() && !trial.holdsWith(name, keeps))
            return rewritingFailure({}, name);
    }
    for (const NamePair &pair : found.similar) {
        const auto tells = [&](const FolderHandle &folder) { return !folder.facts(pair.second); };
        if (!trial.holdsWith(pair.first, tells))
            return clashFailure(pair);
    }
    return {};
}

FolderHandle folderBelow(const QByteArray &mirror, const QByteArray &path)
{
    FolderHandle folder = FolderHandle::open(canonicalPath(mirror));
    for (const QByteArray &name : path.split('/')) {
        if (!name.isEmpty())
            folder = folder.folder(name);
    }
    return folder;
}

// By a third name: a rename to another spelling alone may do nothing, and after the
// first step it shows whether both were one.
Result<void> respell(const QByteArray &mirror, const NamePair &pair)
{
    const FolderHandle folder = folderBelow(mirror, pair.folder);
    if (!folder.isOpen() || !folder.facts(pair.first))
        return {}; // gone since
    const QString trouble = u"无法把同步文件夹里的“%1”改名为“%2”"_s.arg(shown(pair.folder, pair.first),
                                                                        shown(pair.folder, pair.second));
    const QByteArray between = temporaryName();
    if (!folder.rename(pair.first, between))
        return failure(trouble + u"：%1"_s.arg(writeReason(errno)));
    const bool wereTwo = folder.facts(pair.second).has_value();
    if (wereTwo || !folder.rename(between, pair.second)) {
        folder.rename(between, pair.first);
        return wereTwo ? clashFailure(pair) : failure(trouble);
    }
    return isListed(folder, pair.second) ? Result<void>() : rewritingFailure(pair.folder, pair.second);
}

} // namespace

void compareNames(const QByteArray &folder, const QSet<QByteArray> &ours, const QSet<QByteArray> &theirs,
                  const std::function<std::optional<FileIdentity>(const QByteArray &name)> &inMirror,
                  NameFindings &found)
{
    const QSet<QByteArray> missing = ours - theirs;
    if (missing.isEmpty())
        return;
    QHash<QByteArray, QByteArray> seen; // by what they have in common
    for (const QByteArray &name : ours) {
        const QByteArray first = std::exchange(seen[nameKey(name)], name);
        if (!first.isEmpty() && (missing.contains(name) || missing.contains(first)))
            found.similar.append({folder, first, name});
    }
    ListedNames listedNames(theirs, inMirror);
    QHash<QByteArray, QByteArray> names; // of the source by those listed
    for (const QByteArray &name : missing) {
        for (std::size_t i = 0; i < spellings.size(); ++i) {
            if (found.untried[i].isEmpty() && spellings[i](name) != name)
                found.untried[i] = name;
        }
        const QByteArray listed = listedNames.find(name);
        if (listed.isEmpty())
            continue;
        const QByteArray other = ours.contains(listed) ? listed : names.value(listed);
        if (!other.isEmpty())
            found.clash = NamePair{folder, other, name};
        else
            found.respelled.append({folder, listed, name});
        names.insert(listed, name);
    }
}

Result<void> alignNames(const QByteArray &mirror, const NameFindings &found)
{
    if (found.clash)
        return clashFailure(*found.clash);
    if (const auto tried = tryNames(mirror, found); !tried)
        return tried;
    for (const NamePair &pair : found.respelled) {
        if (const auto done = respell(mirror, pair); !done)
            return done;
    }
    return {};
}

} // namespace velbrix
