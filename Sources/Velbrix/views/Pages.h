#pragma once

#include <QString>

class QWidget;

namespace velbrix {

struct ViewContext;

// The page of the tool; null when it has none.
QWidget *makePage(const QString &tool, const ViewContext &context);

} // namespace velbrix
