#pragma once

#include "foundation/Clock.h"
#include "platform/TrashCan.h"
#include "platform/linux/files/TrashPlaces.h"

#include <QThreadPool>

namespace velbrix {

// The trash that all desktops share: one in the user's data folder, and one on
// each other volume, for nothing is copied into the trash or out of it. Every
// change happens on one thread, one after the other.
class FreedesktopTrash final : public TrashCan {
public:
    explicit FreedesktopTrash(Clock &clock, TrashPlaces places = TrashPlaces());
    // Stops what goes on, soon.
    ~FreedesktopTrash() override;

    QCoro::Task<Result<QString>> moveToTrash(const QString path) override;
    QCoro::Task<Result<void>> putBack(const QString trashed, const QString original) override;
    QCoro::Task<Result<RemovalReport>> empty(RemovalRules rules, Cancellation cancellation) override;
    QStringList folders() const override;
    QStringList itemFolders() const override;

private:
    Clock &_clock;
    TrashPlaces _places;
    Cancellation _ended;
    QThreadPool _worker;
};

} // namespace velbrix
