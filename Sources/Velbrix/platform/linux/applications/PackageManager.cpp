#include "platform/linux/applications/PackageManager.h"

#include "foundation/Text.h"

#include <QRegularExpression>
#include <QStandardPaths>

#include <cmath>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QStringList lines(const QByteArray &output)
{
    return QString::fromUtf8(output).split(u'\n', Qt::SkipEmptyParts);
}

// "a:amd64, b: /usr/share/x"; diversions are no owners.
QHash<QString, QString> dpkgOwners(const QByteArray &output)
{
    QHash<QString, QString> owners;
    for (const QString &line : lines(output)) {
        const qsizetype colon = line.indexOf(u": /"_s);
        if (colon > 0 && !line.startsWith(u"diversion by "_s) && !line.startsWith(u"local diversion "_s))
            owners.insert(line.sliced(colon + 2), line.first(colon).section(u", "_s, 0, 0));
    }
    return owners;
}

// package, version, KiB, essential, protected, priority
QHash<QString, PackageFacts> dpkgFacts(const QByteArray &output)
{
    QHash<QString, PackageFacts> facts;
    for (const QString &line : lines(output)) {
        const QStringList fields = line.split(u'\t');
        bool isNumber = false;
        const qint64 kibibytes = fields.value(2).toInt(&isNumber);
        const bool isEssential =
            fields.value(3) == u"yes"_s || fields.value(4) == u"yes"_s || fields.value(5) == u"required"_s;
        facts.insert(fields[0], {fields.value(1), isNumber ? std::optional(kibibytes * 1024) : std::nullopt,
                                 isEssential});
    }
    return facts;
}

// "Remv gimp [2.10.34-1] [gimp-plugins:amd64 ]"
QStringList aptRemoved(const QByteArray &output)
{
    QStringList packages;
    for (const QString &line : lines(output)) {
        if (line.startsWith(u"Remv "_s) || line.startsWith(u"Purg "_s))
            packages.append(line.section(u' ', 1, 1));
    }
    return packages;
}

// package, path: every path of the packages
QHash<QString, QString> rpmOwners(const QByteArray &output)
{
    QHash<QString, QString> owners;
    for (const QString &line : lines(output)) {
        if (line.contains(u'\t'))
            owners.insert(line.section(u'\t', 1), line.section(u'\t', 0, 0));
    }
    return owners;
}

// package, version, bytes
QHash<QString, PackageFacts> rpmFacts(const QByteArray &output)
{
    QHash<QString, PackageFacts> facts;
    for (const QString &line : lines(output)) {
        const QStringList fields = line.split(u'\t');
        bool isNumber = false;
        const qint64 bytes = fields.value(2).toLongLong(&isNumber);
        facts.insert(fields[0], {fields.value(1), isNumber ? std::optional(bytes) : std::nullopt, false});
    }
    return facts;
}

// Tables under "Removing:", "Removing dependent packages:" …; the first word
// of each indented row.
QStringList dnfRemoved(const QByteArray &output)
{
    QStringList packages;
    bool isTable = false;
    for (const QString &line : lines(output)) {
        if (!line.startsWith(u' '))
            isTable = line.startsWith(u"Removing"_s);
        else if (isTable)
            packages.append(line.simplified().section(u' ', 0, 0));
    }
    return packages;
}

// "The following 2 packages are going to be REMOVED:" and indented names.
QStringList zypperRemoved(const QByteArray &output)
{
    QStringList packages;
    bool isList = false;
    for (const QString &line : lines(output)) {
        if (!line.startsWith(u' '))
            isList = line.contains(u"going to be REMOVED"_s);
        else if (isList)
            packages += line.simplified().split(u' ');
    }
    return packages;
}

// "/usr/share/x is owned by gimp 2.10.36-1"
QHash<QString, QString> pacmanOwners(const QByteArray &output)
{
    QHash<QString, QString> owners;
    for (const QString &line : lines(output)) {
        const qsizetype at = line.lastIndexOf(u" is owned by "_s);
        if (at > 0)
            owners.insert(line.first(at), line.sliced(at + 13).section(u' ', 0, 0));
    }
    return owners;
}

QHash<QString, PackageFacts> pacmanFacts(const QByteArray &output)
{
    QHash<QString, PackageFacts> facts;
    QString package;
    for (const QString &line : lines(output)) {
        const QString key = line.section(u':', 0, 0).trimmed();
        const QString value = line.section(u':', 1).trimmed();
        if (key == u"Name"_s)
            package = value;
        else if (key == u"Version"_s)
            facts[package].version = value;
        else if (key == u"Installed Size"_s)
            facts[package].size = bytesOf(value);
    }
    return facts;
}

QStringList oneEachLine(const QByteArray &output)
{
    return lines(output);
}

PackageManager apt(const PackagePrograms &programs)
{
    return {
        u"APT"_s,
        {programs.dpkgQuery, u"-S"_s, u"--"_s},
        {programs.dpkgQuery, u"-W"_s,
         u"-f=${binary:Package}\\t${Version}\\t${Installed-Size}\\t${Essential}\\t${Protected}\\t${Priority}\\n"_s,
         u"--"_s},
        {programs.aptGet, u"-s"_s, u"remove"_s},
        {programs.aptGet, u"-y"_s, u"remove"_s},
        dpkgOwners,
        dpkgFacts,
        aptRemoved};
}

PackageManager rpm(const QString &name, const PackagePrograms &programs)
{
    PackageManager manager;
    manager.name = name;
    manager.ownerQuery = {programs.rpm, u"-qf"_s, u"--qf"_s, u"[%{=NAME}\\t%{FILENAMES}\\n]"_s};
    manager.factsQuery = {programs.rpm, u"-q"_s, u"--qf"_s,
                          u"%{NAME}\\t%{VERSION}-%{RELEASE}\\t%{SIZE}\\n"_s};
    manager.owners = rpmOwners;
    manager.facts = rpmFacts;
    return manager;
}

// What other packages brought along stays: the user was asked about this one.
PackageManager dnf(const PackagePrograms &programs)
{
    PackageManager manager = rpm(u"DNF"_s, programs);
    const QString keep = u"--setopt=clean_requirements_on_remove=False"_s;
    manager.simulation = {programs.dnf, u"--assumeno"_s, keep, u"remove"_s};
    manager.removal = {programs.dnf, u"-y"_s, keep, u"remove"_s};
    manager.removed = dnfRemoved;
    return manager;
}

PackageManager zypper(const PackagePrograms &programs)
{
    PackageManager manager = rpm(u"Zypper"_s, programs);
    manager.simulation = {programs.zypper, u"--non-interactive"_s, u"remove"_s, u"--dry-run"_s};
    manager.removal = {programs.zypper, u"--non-interactive"_s, u"remove"_s};
    manager.removed = zypperRemoved;
    return manager;
}

PackageManager pacman(const PackagePrograms &programs)
{
    return {u"Pacman"_s,
            {programs.pacman, u"-Qo"_s, u"--"_s},
            {programs.pacman, u"-Qi"_s, u"--"_s},
            {programs.pacman, u"-R"_s, u"--print"_s, u"--print-format"_s, u"%n"_s, u"--"_s},
            {programs.pacman, u"-R"_s, u"--noconfirm"_s, u"--"_s},
            pacmanOwners,
            pacmanFacts,
            oneEachLine};
}

} // namespace

PackagePrograms PackagePrograms::ofThisHost()
{
    const auto found = [](const QString &name) {
        return QStandardPaths::findExecutable(name, {u"/usr/bin"_s, u"/bin"_s});
    };
    return {found(u"dpkg-query"_s), found(u"apt-get"_s), found(u"rpm"_s),     found(u"dnf"_s),
            found(u"zypper"_s),     found(u"pacman"_s),  found(u"flatpak"_s), found(u"snap"_s),
            found(u"pkexec"_s),     found(u"env"_s)};
}

std::optional<PackageManager> systemPackageManager(const PackagePrograms &programs)
{
    if (!programs.dpkgQuery.isEmpty() && !programs.aptGet.isEmpty())
        return apt(programs);
    if (!programs.rpm.isEmpty() && !programs.dnf.isEmpty())
        return dnf(programs);
    if (!programs.rpm.isEmpty() && !programs.zypper.isEmpty())
        return zypper(programs);
    if (!programs.pacman.isEmpty())
        return pacman(programs);
    return std::nullopt;
}

bool isPackageName(const QString &name)
{
    static const QRegularExpression pattern(u"^[A-Za-z0-9_][A-Za-z0-9_.+:@~-]*$"_s,
                                            QRegularExpression::DontCaptureOption);
    return pattern.match(name).hasMatch() && !name.endsWith(u'\n');
}

std::optional<qint64> bytesOf(const QString &text)
{
    static const QHash<QString, double> units = {
        {u"B"_s, 1},    {u"byte"_s, 1},  {u"bytes"_s, 1},     {u"kB"_s, 1e3},      {u"MB"_s, 1e6},
        {u"GB"_s, 1e9}, {u"TB"_s, 1e12}, {u"KiB"_s, 1 << 10}, {u"MiB"_s, 1 << 20}, {u"GiB"_s, 1 << 30},
    };
    const QString plain = text.simplified();
    bool isNumber = false;
    const double number = plain.section(u' ', 0, 0).toDouble(&isNumber);
    const double unit = units.value(plain.section(u' ', 1), 0);
    // Also rules out "inf" and figures no disk can hold.
    if (!isNumber || unit == 0 || !(number >= 0 && number * unit < 1e18))
        return std::nullopt;
    return std::llround(number * unit);
}

QList<FlatpakApplication> flatpakApplications(const QByteArray &output)
{
    QList<FlatpakApplication> applications;
    for (const QString &line : lines(output)) {
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
    for (const QString &line : lines(output).mid(1)) {
        const QStringList fields = line.simplified().split(u' ');
        if (fields.size() >= 2 && isPackageName(fields[0]))
            versions.insert(fields[0], fields[1]);
    }
    return versions;
}

} // namespace velbrix
