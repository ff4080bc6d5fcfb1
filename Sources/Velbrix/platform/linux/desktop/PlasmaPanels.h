#pragma once

#include "platform/linux/desktop/PanelSettings.h"

namespace velbrix {

// Every panel of Plasma, by the scripts of its shell.
class PlasmaPanels final : public PanelSettings {
public:
    QCoro::Task<Result<QJsonObject>> read() override;
    QCoro::Task<Result<void>> write(const QJsonObject values) override;
    bool hides(const QJsonObject &values) const override;
    QJsonObject hidden(QJsonObject values) const override;
    QJsonObject shown(QJsonObject values) const override;
};

} // namespace velbrix
