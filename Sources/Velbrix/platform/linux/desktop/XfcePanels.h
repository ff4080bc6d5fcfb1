#pragma once

#include "platform/linux/desktop/PanelSettings.h"
#include "platform/linux/desktop/Xfconf.h"

namespace velbrix {

// Every panel of xfce4-panel, which follows its settings at once.
class XfcePanels final : public PanelSettings {
public:
    QCoro::Task<Result<QJsonObject>> read() override;
    QCoro::Task<Result<void>> write(const QJsonObject values) override;
    bool hides(const QJsonObject &values) const override;
    QJsonObject hidden(QJsonObject values) const override;
    QJsonObject shown(QJsonObject values) const override;

private:
    Xfconf _settings{QStringLiteral("xfce4-panel")};
};

} // namespace velbrix
