#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

class QVBoxLayout;

namespace velbrix {

// Recordings that an earlier run could not complete.
class LeftoversCard final : public Card {
public:
    explicit LeftoversCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    void rebuild();
    QWidget *makeRow(const QString &path);

    ViewContext _context;
    QWidget *_list = nullptr;
};

} // namespace velbrix
