#pragma once

#include "foundation/Published.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QObject>

#include <optional>

namespace velbrix {

class InstallPlace;
class NotificationCenter;
class QuitSequence;
class SettingsStore;

// Offers to move a program that runs from its download to where the system and
// the user look for applications, from which alone it starts at login reliably.
class InstallOffer final : public QObject {
    Q_OBJECT
    // Whether it is offered at the start.
    VELB_PUBLISHED(InstallOffer, bool, autoMoveToAppDir, true)
    VELB_PUBLISHED(InstallOffer, bool, isMoving, false)
    // Why the last move failed, in words for the user; else empty.
    VELB_PUBLISHED(InstallOffer, QString, problem)

public:
    // The place may be null: there is nothing to offer then.
    InstallOffer(InstallPlace *place, SettingsStore &settings, NotificationCenter &center, QuitSequence &quit,
                 QObject *parent = nullptr);

    // Where the program runs from, if that is not where it belongs.
    std::optional<QString> misplacedAt() const;
    void setAutoMoveToAppDir(bool offers);
    // At the start: a banner, where there is something to offer.
    void announce();
    // Ends the program, and has the moved one opened, unless it fails.
    void moveToApplications();

private:
    QCoro::Task<> move();

    InstallPlace *const _place;
    SettingsStore &_settings;
    NotificationCenter &_center;
    QuitSequence &_quit;
};

} // namespace velbrix
