#include "foundation/OneLine.h"

namespace velbrix {

QString oneLine(QString text)
{
    for (QChar &character : text) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Other_Format ||
            category == QChar::Separator_Line || category == QChar::Separator_Paragraph)
            character = u' ';
    }
    return text;
}

} // namespace velbrix
