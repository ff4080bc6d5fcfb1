#include "views/recorder/RecordOutputCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/Reveal.h"
#include "views/components/Parts.h"
#include "views/components/PathField.h"
#include "views/components/SettingRow.h"
#include "views/components/SymbolLabel.h"

#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
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
    // The folder itself rather than the folder around it.
    connect(field, &PathField::revealWanted, this,
            [this](const QString &folder) { reveal(QFileInfo(folder).absoluteFilePath()); });
    follow(preferences, &RecorderPreferences::outputDirChanged, this,
           [field, &preferences] { field->setPath(preferences.outputDir()); });
    addResult();
}

void RecordOutputCard::addResult()
{
    const RecordingSession &session = _context.services.recorder.session();
    QPushButton *const show =
        makeButton(_context.theme, {u"revealMovie"_s, u"在文件夹中显示"_s, u"folder"_s, {}});
    auto *row = new SettingRow(u"录制已完成"_s, {}, show);
    row->setObjectName(u"recordResult"_s);
    row->setLeading(new SymbolLabel(_context.theme, u"checkmark.circle.fill"_s, 22, ThemeColor::good));
    addRow(row);
    connect(show, &QPushButton::clicked, this, [this, &session] {
        if (const auto movie = session.finishedMovie())
            reveal(*movie);
    });
    follow(session, &RecordingSession::finishedMovieChanged, this, [row, &session] {
        const auto movie = session.finishedMovie();
        row->setDescription(movie ? QFileInfo(*movie).fileName() : QString());
        row->setVisible(movie.has_value());
    });
}

void RecordOutputCard::reveal(const QString &path)
{
    revealOrTell(_context.services, path);
}

} // namespace velbrix
