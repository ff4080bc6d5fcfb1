#include "views/backup/AddBackupTaskSheet.h"

#include "app/AppServices.h"
#include "views/backup/BackupScheduleField.h"
#include "views/backup/BackupWords.h"
#include "views/components/Parts.h"
#include "views/components/PathField.h"
#include "views/components/ScrollingBody.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/SettingRow.h"
#include "views/components/Switch.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int sheetWidth = 600;

QLabel *makeProblem(const QString &name)
{
    QLabel *const label = makeText({}, u"bad"_s);
    label->setObjectName(name);
    label->hide();
    return label;
}

// A label and what it names, one over the other.
void addField(QVBoxLayout &rows, const QString &title, QWidget *field)
{
    rows.addSpacing(10);
    rows.addWidget(makeText(title, u"heading"_s));
    rows.addSpacing(2);
    rows.addWidget(field);
}

QStringList lines(const QString &text)
{
    QStringList found;
    for (const QString &line : text.split(u'\n')) {
        if (!line.trimmed().isEmpty())
            found.append(line.trimmed());
    }
    return found;
}

} // namespace

AddBackupTaskSheet::AddBackupTaskSheet(const ViewContext &context, const BackupTask &task, QWidget *page)
    : Sheet(context.theme, {u"backupEditor"_s, task.id.isEmpty() ? u"添加任务"_s : u"编辑任务"_s, {}},
            sheetWidth, page),
      _context(context),
      _task(task)
{
    _body = new ScrollingBody(makeForm());
    setBody(_body);
    _problem = makeProblem(u"editorProblem"_s);
    setFoot(_problem);
    QPushButton *const cancel = addButton({u"editorCancel"_s, u"取消"_s, {}, {}});
    _save = addButton({u"editorSave"_s, u"保存"_s, {}, u"primary"_s});
    connect(cancel, &QPushButton::clicked, this, &Sheet::cancelled);
    connect(this, &Sheet::cancelled, this, &Sheet::dismiss);
    connect(_save, &QPushButton::clicked, this, [this] { save(); });
    showKind(_kind->current());
}

QWidget *AddBackupTaskSheet::makeForm()
{
    auto *form = new QWidget;
    auto *rows = new QVBoxLayout(form);
    rows->setContentsMargins(0, 0, 4, 8);
    rows->setSpacing(4);
    _kind = new SegmentedChoice(u"editorKind"_s,
                                {kindName(BackupTaskKind::backup), kindName(BackupTaskKind::sync)});
    _kind->setAccessibleName(u"任务类型"_s);
    _kind->setCurrent(static_cast<int>(_task.kind));
    _kindLine = makeText({}, u"note"_s);
    rows->addWidget(_kind);
    rows->addWidget(_kindLine);
    connect(_kind, &SegmentedChoice::wanted, this, [this](int index) { showKind(index); });

    addFolders(*rows);
    _name = new QLineEdit(_task.name);
    _name->setObjectName(u"editorName"_s);
    _name->setAccessibleName(u"任务名称"_s);
    _name->setPlaceholderText(u"留空则使用文件夹名称"_s);
    addField(*rows, u"名称"_s, _name);
    _schedule = new BackupScheduleField(_task.schedule);
    addField(*rows, u"运行时间"_s, _schedule);
    addRules(*rows);
    return form;
}

PathField *AddBackupTaskSheet::makeFolderField(const QString &name, const QString &title,
                                               const QString &panelTitle)
{
    auto *field = new PathField(_context.theme, name, panelTitle);
    field->setAccessibleName(title);
    connect(field, &PathField::wanted, this, [this, field](const QString &folder) {
        field->setPath(folder);
        show({});
    });
    connect(field, &PathField::revealWanted, this,
            [this](const QString &folder) { _context.reveal(folder); });
    return field;
}

void AddBackupTaskSheet::addFolders(QVBoxLayout &rows)
{
    _source = makeFolderField(u"editorSource"_s, u"源文件夹"_s, u"选择源文件夹"_s);
    _source->setPath(_task.sourcePath);
    _sourceProblem = makeProblem(u"sourceProblem"_s);
    _destination = makeFolderField(u"editorDestination"_s, u"保存目录"_s, u"选择保存目录"_s);
    _destination->setPath(_task.destPath);
    _destinationProblem = makeProblem(u"destinationProblem"_s);
    addField(rows, u"源文件夹"_s, _source);
    rows.addWidget(_sourceProblem);
    addField(rows, u"保存目录"_s, _destination);
    rows.addWidget(_destinationProblem);
}

void AddBackupTaskSheet::addRules(QVBoxLayout &rows)
{
    _keep = new QSpinBox;
    _keep->setObjectName(u"editorKeep"_s);
    _keep->setRange(0, 999);
    _keep->setSpecialValueText(u"全部保留"_s);
    _keep->setSuffix(u" 份"_s);
    makeNumberField(*_keep, 96);
    _keep->setValue(_task.keepLast);
    rows.addSpacing(6);
    _keepRow = new SettingRow(u"保留最近的归档"_s, u"更早的归档在新归档完成后删除；0 表示全部保留"_s, _keep);
    rows.addWidget(_keepRow);
    _aside = new Switch(_context.theme, u"editorSetsAside"_s);
    _aside->setOn(_task.setsAside);
    connect(_aside, &Switch::wanted, _aside, &Switch::setOn);
    _asideRow =
        new SettingRow(u"留存被删除和替换的文件"_s, u"同步前移到带日期的文件夹，保留 30 天"_s, _aside);
    rows.addWidget(_asideRow);

    _excludes = new QPlainTextEdit(_task.excludes.join(u'\n'));
    _excludes->setObjectName(u"editorExcludes"_s);
    _excludes->setAccessibleName(u"排除项"_s);
    _excludes->setPlaceholderText(u"每行一个，例如 *.tmp 或 node_modules"_s);
    _excludes->setTabChangesFocus(true);
    _excludes->setFixedHeight(72);
    addField(rows, u"排除"_s, _excludes);
}

void AddBackupTaskSheet::focusDefault()
{
    _save->setFocus();
}

void AddBackupTaskSheet::showKind(int index)
{
    const auto kind = static_cast<BackupTaskKind>(index);
    _kindLine->setText(kindLine(kind));
    _keepRow->setVisible(kind == BackupTaskKind::backup);
    _asideRow->setVisible(kind == BackupTaskKind::sync);
}

BackupTask AddBackupTaskSheet::entered() const
{
    BackupTask task = _task;
    task.kind = static_cast<BackupTaskKind>(_kind->current());
    task.name = _name->text().trimmed();
    task.sourcePath = _source->path();
    task.destPath = _destination->path();
    task.schedule = _schedule->schedule();
    task.keepLast = _keep->value();
    task.setsAside = _aside->isChecked();
    task.excludes = lines(_excludes->toPlainText());
    return task;
}

void AddBackupTaskSheet::save()
{
    if (!_save->isEnabled())
        return;
    _save->setEnabled(false);
    const QPointer self(this);
    _context.services.fileBackup.save(entered()).then([self](const FileBackupController::Saved &saved) {
        if (!self)
            return;
        if (saved)
            self->dismiss();
        else
            self->show(saved.error());
        self->_save->setEnabled(true);
    });
}

// Under its field. One without a message hides the last one.
void AddBackupTaskSheet::show(const BackupObstacle &obstacle)
{
    using Field = BackupObstacle::Field;
    const std::pair<Field, QLabel *> fields[] = {
        {Field::none, _problem}, {Field::source, _sourceProblem}, {Field::destination, _destinationProblem}};
    for (const auto &[field, label] : fields) {
        const bool isHere = field == obstacle.field && !obstacle.message.isEmpty();
        label->setText(isHere ? obstacle.message : QString());
        label->setVisible(isHere);
        if (isHere && label != _problem)
            _body->ensureWidgetVisible(label);
    }
}

} // namespace velbrix
