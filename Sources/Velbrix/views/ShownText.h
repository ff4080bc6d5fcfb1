#pragma once

#include <QString>

// Texts and figures from outside as the pages show them.
namespace velbrix {

// The name as it stands in a sentence or a title: on one line, and without its
// middle when it is so long that it would push everything else aside.
QString shownName(const QString &name);

// The path as people read it: "~/Desktop" says more in less room than the
// whole home folder.
QString shownPath(const QString &path);

// A length as players show it: "0:07", "1:02:03".
QString shownDuration(int seconds);

// For a tool tip that shows the text as it is: names may look like markup,
// which tool tips obey.
QString plainTip(const QString &text);

} // namespace velbrix
