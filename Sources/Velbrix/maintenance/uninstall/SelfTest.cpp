#include "maintenance/uninstall/SelfTest.h"

#include "foundation/Paths.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

bool areSame(const QString &one, const QString &other)
{
    return !one.isEmpty() && one.toLower() == other.toLower();
}

} // namespace

bool isSelf(const SelfTraits &application, const SelfTraits &own)
{
    return areSame(application.path, own.path) || application.path.toLower().endsWith("/velbrix.app"_L1) ||
           areSame(application.name, own.name) || areSame(application.name, u"velbrix"_s) ||
           areSame(application.identifier, own.identifier);
}

SelfTraits selfTraits(const InstalledApplication &application)
{
    return {resolvedPath(application.path), application.name, application.identifier};
}

SelfTraits selfTraits(const OwnIdentity &own)
{
    return {resolvedPath(own.path), own.name, own.identifier};
}

} // namespace velbrix
