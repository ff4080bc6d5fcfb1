#pragma once

#include "foundation/Result.h"

#include <QJsonObject>
#include <QStringList>

namespace velbrix {

// Where settings rest between two runs of the program.
class SettingsBackend {
public:
    virtual ~SettingsBackend() = default;

    // Everything that is stored. What cannot be read counts as empty and is
    // never overwritten.
    virtual QJsonObject load() = 0;
    // What went wrong at the load, in words for the user; else empty.
    virtual QString loadProblem() const { return {}; }
    // Removes what killed writes have left behind. Only for the one running
    // copy of the program: it would take another copy's write from under it.
    virtual void tidy() {}
    // Stores `all`, of which `changed` differ from what is stored (a key that
    // `all` lacks was removed). Either everything is stored or nothing.
    virtual Result<void> save(const QJsonObject &all, const QStringList &changed) = 0;
};

} // namespace velbrix
