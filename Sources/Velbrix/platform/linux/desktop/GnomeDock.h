#pragma once

#include "platform/linux/desktop/Gsettings.h"
#include "platform/linux/desktop/PanelSettings.h"

namespace velbrix {

// The extension Dash to Dock, which Ubuntu's dock is too. GNOME itself has no
// bar that could hide.
class GnomeDock final : public PanelSettings {
public:
    explicit GnomeDock(Clock &clock) : _clock(clock) {}

    QCoro::Task<Result<QJsonObject>> read() override;
    QCoro::Task<Result<void>> write(const QJsonObject values) override;
    bool hides(const QJsonObject &values) const override;
    QJsonObject hidden(QJsonObject values) const override;
    QJsonObject shown(QJsonObject values) const override;

private:
    // Where the extension keeps its schema: with the system's or its own.
    QCoro::Task<Result<QString>> findSchema();

    Clock &_clock;
};

} // namespace velbrix
