#include "views/ToolkitTexts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace velbrix {

void installToolkitTexts(QObject *owner)
{
    auto *translator = new QTranslator(owner);
    if (translator->load(u"qtbase_zh_CN"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(translator);
}

} // namespace velbrix
