#include "views/recorder/RecordOutputCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/Reveal.h"
#include "views/components/Parts.h"
#include "views/components/PathField.h"

#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {

RecordOutputCard::RecordOutputCard(const ViewContext &context, QWidget *parent)
    : Card(parent), _context(context)
{
    RecorderPreferences &preferences = context.services.recorder.preferences();
    auto *field = new PathField(context.theme, u"outputDir"_s, u"选择输出目录"_s);
    field->setAccessibleName(u"输出目录"_s);
    auto *row = new QWidget;
    auto *rows = new QVBoxLayout(row);
    rows->setContentsMargins(0, 10, 0, 12);
    rows->setSpacing(8);
    rows->addWidget(makeText(u"输出目录"_s, u"body"_s));
    rows->addWidget(field);
    addRow(row);
    connect(field, &PathField::wanted, this,
            [&preferences](const QString &folder) { preferences.setOutputDir(folder); });
    connect(field, &PathField::revealWanted, this,
            [this](const QString &folder) { revealOrTell(_context.services, folder); });
    follow(preferences, &RecorderPreferences::outputDirChanged, this,
           [field, &preferences] { field->setPath(preferences.outputDir()); });
}

} // namespace velbrix
