#include "views/backup/BackupArchivesSheet.h"

#include "app/AppServices.h"
#include "foundation/Text.h"
#include "views/Follow.h"
#include "views/ShownText.h"
#include "views/Theme.h"
#include "views/backup/BackupWords.h"
#include "views/components/EmptyState.h"
#include "views/components/JobBar.h"
#include "views/components/Parts.h"
#include "views/components/RowList.h"

#include <QAbstractListModel>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int sheetWidth = 560;
constexpr int rowHeight = 52;

class ArchiveRow final : public QStyledItemDelegate {
public:
    ArchiveRow(const Theme &theme, RowList &list) : QStyledItemDelegate(&list), _theme(theme), _list(list) {}

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return {300, rowHeight};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        painter->save();
        _list.drawBack(*painter, option);
        const QRect row = option.rect.adjusted(12, 0, -12, 0);
        const bool isChosen = index == _list.currentIndex();
        painter->setFont(_theme.font(13, isChosen ? QFont::DemiBold : QFont::Normal));
        painter->setPen(_theme.color(isChosen ? ThemeColor::accentText : ThemeColor::text));
        painter->drawText(QRect(row.x(), row.y() + 7, row.width() - 100, 20), Qt::AlignVCenter,
                          (isChosen ? u"✓ "_s : QString()) + index.data(whenRole).toString());
        painter->setFont(_theme.font(12));
        painter->setPen(_theme.color(ThemeColor::secondary));
        painter->drawText(QRect(row.x(), row.y() + 27, row.width() - 100, 18), Qt::AlignVCenter,
                          painter->fontMetrics().elidedText(oneLine(index.data().toString()), Qt::ElideMiddle,
                                                            row.width() - 100));
        painter->drawText(row, Qt::AlignRight | Qt::AlignVCenter, index.data(sizeRole).toString());
        painter->restore();
    }

    static constexpr int whenRole = Qt::UserRole;
    static constexpr int sizeRole = Qt::UserRole + 1;

private:
    const Theme &_theme;
    RowList &_list;
};

} // namespace

class BackupArchivesSheet::Rows final : public QAbstractListModel {
public:
    Rows(const Clock &clock, QObject *parent) : QAbstractListModel(parent), _clock(clock) {}

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(archives.size());
    }

    QVariant data(const QModelIndex &index, int role) const override
    {
        const BackupArchiveInfo &archive = archives[index.row()];
        const QString name = QFileInfo(archive.path).fileName();
        switch (role) {
        case Qt::DisplayRole:
            return name;
        case Qt::ToolTipRole:
            return plainTip(archive.path);
        case ArchiveRow::whenRole:
            return whenText(archive.at, _clock.now());
        case ArchiveRow::sizeRole:
            return formatByteCount(archive.bytes);
        case Qt::AccessibleTextRole:
            return QStringList{whenText(archive.at, _clock.now()), formatByteCount(archive.bytes), name}.join(
                u"，"_s);
        default:
            return {};
        }
    }

    void replace(const QList<BackupArchiveInfo> &found)
    {
        beginResetModel();
        archives = found;
        endResetModel();
    }

    QList<BackupArchiveInfo> archives;

private:
    const Clock &_clock;
};

BackupArchivesSheet::BackupArchivesSheet(const ViewContext &context, const BackupTask &task, QWidget *page)
    : Sheet(context.theme,
            {u"backupArchivesSheet"_s, u"恢复「%1」"_s.arg(shownName(task.name)),
             u"选一个归档，恢复到所选文件夹中的新文件夹里，不会覆盖已有文件。"_s},
            sheetWidth, page),
      _context(context),
      _task(task),
      _rows(new Rows(context.services.clock, this))
{
    setBody(makeBody());
    _close = addButton({u"archivesClose"_s, u"关闭"_s, {}, {}});
    _restore = addButton({u"archivesRestore"_s, u"恢复到…"_s, {}, u"primary"_s});
    connect(_close, &QPushButton::clicked, this, &Sheet::cancelled);
    connect(this, &Sheet::cancelled, this, &Sheet::dismiss);
    connect(_restore, &QPushButton::clicked, this, [this] { chooseFolder(); });
    ArchiveRestorer &restorer = context.services.fileBackup.restorer();
    connect(_job, &JobBar::cancelled, this, [&restorer] { restorer.cancel(); });
    const auto again = [this] { refresh(); };
    connect(&restorer, &ArchiveRestorer::progressChanged, this, again);
    connect(&restorer, &ArchiveRestorer::resultChanged, this, again);
    connect(&restorer, &ArchiveRestorer::isRestoringChanged, this, again);
    refresh();
    look();
}

BackupArchivesSheet::~BackupArchivesSheet() = default;

QWidget *BackupArchivesSheet::makeBody()
{
    _list = new RowList(_context.theme, u"archiveRows"_s, rowHeight);
    _list->setAccessibleName(u"归档"_s);
    _list->setModel(_rows);
    _list->setItemDelegate(new ArchiveRow(_context.theme, *_list));
    _empty = new EmptyState(_context.theme, u"archivesEmpty"_s,
                            {u"archivebox"_s, u"还没有归档"_s, u"先运行一次这个任务"_s, {}});
    _job = new JobBar(_context.theme, u"restoreJob"_s);
    _result = makeText({}, u"note"_s);
    _result->setObjectName(u"restoreResult"_s);
    auto *body = new QWidget;
    auto *rows = new QVBoxLayout(body);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(6);
    rows->addWidget(_list, 1);
    rows->addWidget(_empty);
    rows->addWidget(_job);
    rows->addWidget(_result);
    connect(_list, &RowList::wanted, this, [this] { chooseFolder(); });
    connect(_list->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { refresh(); });
    return body;
}

void BackupArchivesSheet::look()
{
    const QPointer self(this);
    _context.services.fileBackup.archives(_task.id).then([self](const QList<BackupArchiveInfo> &found) {
        if (!self)
            return;
        self->_hasLooked = true;
        self->_rows->replace(found);
        if (!found.isEmpty())
            self->_list->setCurrentIndex(self->_rows->index(0));
        self->refresh();
        self->focusDefault();
    });
}

void BackupArchivesSheet::focusDefault()
{
    if (!isVisible())
        return;
    if (_rows->rowCount() > 0)
        _list->setFocus();
    else
        _close->setFocus();
}

void BackupArchivesSheet::refresh()
{
    const ArchiveRestorer &restorer = _context.services.fileBackup.restorer();
    const bool isRestoring = restorer.isRestoring();
    _hasRestored = _hasRestored || isRestoring;
    _list->setVisible(_rows->rowCount() > 0);
    _list->setEnabled(!isRestoring);
    _list->viewport()->update();
    _empty->setVisible(_hasLooked && _rows->rowCount() == 0);
    _job->setVisible(isRestoring);
    _job->setJob(restorer.progress().isEmpty() ? u"正在恢复…"_s : restorer.progress(), 0, 0);
    _result->setText(restorer.result());
    _result->setVisible(_hasRestored && !isRestoring && !restorer.result().isEmpty());
    setLook(_result, "role", restorer.hasSucceeded() ? u"good"_s : u"bad"_s);
    _restore->setEnabled(!isRestoring && _list->currentIndex().isValid());
}

void BackupArchivesSheet::chooseFolder()
{
    const QModelIndex current = _list->currentIndex();
    if (!current.isValid() || _context.services.fileBackup.restorer().isRestoring())
        return;
    const QString archive = _rows->archives[current.row()].path;
    auto *panel = new QFileDialog(this, u"选择恢复到的文件夹"_s);
    panel->setObjectName(u"restorePanel"_s);
    panel->setFileMode(QFileDialog::Directory);
    panel->setOption(QFileDialog::ShowDirsOnly);
    panel->setLabelText(QFileDialog::Accept, u"恢复到这里"_s);
    panel->setLabelText(QFileDialog::Reject, u"取消"_s);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    connect(panel, &QFileDialog::fileSelected, this, [this, archive](const QString &folder) {
        _context.services.fileBackup.restorer().restore(archive, folder);
    });
    panel->open();
}

} // namespace velbrix
