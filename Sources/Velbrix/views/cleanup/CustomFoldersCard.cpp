#include "views/cleanup/CustomFoldersCard.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/cleanup/CleanupRow.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"
#include "views/components/SymbolLabel.h"

#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QStringList droppedFolders(const QMimeData *data)
{
    QStringList folders;
    for (const QUrl &url : data->urls()) {
        if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isDir())
            folders.append(url.toLocalFile());
    }
    return folders;
}

// A folder with the hairline above it.
QWidget *makeRow(CleanupRow *content)
{
    auto *row = new QWidget;
    auto *rows = new QVBoxLayout(row);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(makeHairline());
    rows->addWidget(content);
    return row;
}

} // namespace

CustomFoldersCard::CustomFoldersCard(const ViewContext &context, QWidget *parent)
    : Card(parent),
      _context(context),
      _cleaner(context.services.cleaner),
      _add(makeButton(context.theme, {u"cleanupAdd"_s, u"添加自定义文件夹"_s, u"folder.badge.plus"_s, {}})),
      _problem(new SettingRow(u"添加失败"_s, {}, nullptr)),
      _folders(new QWidget)
{
    setObjectName(u"cleanupCustom"_s);
    setAccessibleName(heading());
    setAcceptDrops(true);
    auto *intro =
        new SettingRow(u"清理你自己选择的文件夹"_s, u"清理时会删除该文件夹内的内容；配置会自动保存"_s, _add);
    _add->setAccessibleName(_add->text());
    addRow(intro);
    _problem->setObjectName(u"cleanupAddProblem"_s);
    _problem->setLeading(new SymbolLabel(context.theme, u"xmark.circle.fill"_s, 22, ThemeColor::bad));
    _problem->hide();
    addRow(_problem);
    auto *rows = new QVBoxLayout(_folders);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    addDetail(_folders);

    connect(_add, &QPushButton::clicked, this, [this] { choose(); });
    follow(_cleaner, &SystemCleaner::itemsChanged, this, [this] { showFolders(); });
    follow(_cleaner, &SystemCleaner::phaseChanged, this, [this] { showAdding(); });
}

QString CustomFoldersCard::heading()
{
    return u"自定义路径（最多 %1 个）"_s.arg(SystemCleaner::maxCustomPathsAllowed);
}

void CustomFoldersCard::dragEnterEvent(QDragEnterEvent *event)
{
    if (!_add->isEnabled() || droppedFolders(event->mimeData()).isEmpty())
        return;
    setLook(this, "dropping", true);
    event->acceptProposedAction();
}

void CustomFoldersCard::dragLeaveEvent(QDragLeaveEvent *)
{
    setLook(this, "dropping", false);
}

void CustomFoldersCard::dropEvent(QDropEvent *event)
{
    setLook(this, "dropping", false);
    const QStringList folders = droppedFolders(event->mimeData());
    if (folders.isEmpty())
        return;
    event->acceptProposedAction();
    addFolders(folders);
}

void CustomFoldersCard::choose()
{
    auto *panel = new QFileDialog(
        this, u"选择要加入系统清理的自定义文件夹（最多 %1 个）"_s.arg(SystemCleaner::maxCustomPathsAllowed));
    panel->setObjectName(u"cleanupAddPanel"_s);
    panel->setFileMode(QFileDialog::Directory);
    panel->setOption(QFileDialog::ShowDirsOnly);
    panel->setLabelText(QFileDialog::Accept, u"添加"_s);
    panel->setLabelText(QFileDialog::Reject, u"取消"_s);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    connect(panel, &QFileDialog::filesSelected, this, &CustomFoldersCard::addFolders);
    panel->open();
}

QCoro::Task<> CustomFoldersCard::addFolders(QStringList paths)
{
    const QPointer self(this);
    QStringList problems;
    for (const QString &path : paths) {
        const auto added = co_await _cleaner.addCustomPath(path);
        if (!self)
            co_return;
        if (!added)
            problems.append(u"%1：%2"_s.arg(QFileInfo(path).fileName(), added.error().message));
    }
    _problem->setVisible(!problems.isEmpty());
    _problem->setDescription(problems.join(u'\n'));
}

void CustomFoldersCard::showFolders()
{
    QList<CleanupItem> wanted = _cleaner.items();
    wanted.removeIf([](const CleanupItem &item) { return !item.customPath; });
    auto *rows = static_cast<QVBoxLayout *>(_folders->layout());
    for (const QString &id : _rows.keys()) {
        if (std::ranges::find(wanted, id, &CleanupItem::id) != wanted.end())
            continue;
        QWidget *const row = _rows.take(id);
        row->hide();
        rows->removeWidget(row);
        row->deleteLater(); // its button may have been clicked just now
        _problem->hide();   // there is room again
    }
    for (const CleanupItem &item : std::as_const(wanted)) {
        if (_rows.contains(item.id))
            continue;
        QWidget *const row = makeRow(new CleanupRow(_context, item));
        _rows.insert(item.id, row);
        rows->addWidget(row);
    }
    _folders->setVisible(!wanted.isEmpty());
    showAdding();
}

void CustomFoldersCard::showAdding()
{
    const auto count = std::ranges::count_if(
        _cleaner.items(), [](const CleanupItem &item) { return item.customPath.has_value(); });
    _add->setEnabled(!_cleaner.isCleaning() && count < SystemCleaner::maxCustomPathsAllowed);
}

} // namespace velbrix
