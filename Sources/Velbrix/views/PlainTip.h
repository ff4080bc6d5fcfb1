#pragma once

#include <QString>
#include <QTextDocument>

namespace velbrix {

// For a tool tip that shows the text as it is: names may look like markup,
// which tool tips obey.
inline QString plainTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? text.toHtmlEscaped().replace(u'\n', QStringLiteral("<br>")) : text;
}

} // namespace velbrix
