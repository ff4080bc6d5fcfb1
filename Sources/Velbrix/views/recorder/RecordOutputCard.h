#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {
class SettingRow;
}

namespace velbrix {

// Where the movies go, and the last one.
class RecordOutputCard final : public Card {
public:
    explicit RecordOutputCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    void addResult();
    void reveal(const QString &path);

    ViewContext _context;
};

} // namespace velbrix
