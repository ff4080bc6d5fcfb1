#pragma once

#include "platform/LoginItem.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix::test {

class FakeLoginItem final : public LoginItem {
public:
    bool enabled = false;
    std::optional<QString> failsWith; // the next settings are refused with these words
    QStringList calls;                // "setEnabled true", "setEnabled false"

    bool isEnabled() const override { return enabled; }
    Result<void> setEnabled(bool wanted) override
    {
        calls.append(wanted ? QStringLiteral("setEnabled true") : QStringLiteral("setEnabled false"));
        if (failsWith)
            return failure(*failsWith);
        enabled = wanted;
        return {};
    }
};

} // namespace velbrix::test
