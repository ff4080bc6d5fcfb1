#pragma once

#include "platform/Symbols.h"

#include <QPixmap>
#include <QStringList>

namespace velbrix::test {

// A black square for every name, and a record of the names asked for.
class FakeSymbols final : public Symbols {
public:
    QStringList unknown;       // names without a picture
    mutable QStringList calls; // the names asked for

    QIcon icon(const QString &symbolName) const override
    {
        calls.append(symbolName);
        if (unknown.contains(symbolName))
            return {};
        QPixmap square(16, 16);
        square.fill(Qt::black);
        return QIcon(square);
    }
};

} // namespace velbrix::test
