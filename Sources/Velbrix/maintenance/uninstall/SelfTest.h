#pragma once

#include "platform/ApplicationCatalog.h"

#include <QString>

namespace velbrix {

// What an application is known by. Paths with their links resolved.
struct SelfTraits {
    QString path;
    QString name;
    QString identifier; // empty when it has none or could not be read

    bool operator==(const SelfTraits &) const = default;
};

// Whether the application is this very program, which is never listed and
// never taken away. Any likeness will do.
bool isSelf(const SelfTraits &application, const SelfTraits &own);

// With the links resolved. Blocking: the disk is asked.
SelfTraits selfTraits(const InstalledApplication &application);
SelfTraits selfTraits(const OwnIdentity &own);

} // namespace velbrix
