#include "views/uninstall/UninstallReviewSheet.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/ShownText.h"
#include "views/components/JobBar.h"
#include "views/components/Parts.h"
#include "views/components/RowList.h"
#include "views/uninstall/ReviewRows.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int sheetWidth = 680;

QString question(const QString &name)
{
    return u"确定要卸载「%1」吗？此操作会将文件移到废纸篓。"_s.arg(shownName(name));
}

QString packagesText(const UninstallReview &review)
{
    const InstalledApplication &source = review.app.source;
    if (source.kind != InstalledApplication::Kind::managed)
        return {};
    const QString all = review.packages.join(u"、"_s);
    return u"应用本体由 %1 移除（可能需要输入密码），不会进入废纸篓%2"_s.arg(
        source.manager, all.isEmpty() ? u"。"_s : u"。一并移除的软件包：%1"_s.arg(all));
}

} // namespace

UninstallReviewSheet::UninstallReviewSheet(const ViewContext &context, const QString &appName, QWidget *page)
    : Sheet(context.theme, {u"uninstallReview"_s, u"卸载「%1」"_s.arg(shownName(appName)), question(appName)},
            sheetWidth, page),
      _context(context)
{
    setBody(makeBody());
    _total = makeText({}, u"note"_s);
    _total->setObjectName(u"reviewTotal"_s);
    setFoot(_total);
    _cancel = addButton({u"reviewCancel"_s, u"取消"_s, {}, {}});
    _confirm = addButton({u"reviewConfirm"_s, u"卸载"_s, {}, u"destructive"_s});
    AppScanner &scanner = context.services.uninstaller;
    connect(this, &Sheet::cancelled, this, [&scanner] { scanner.openReview().close(); });
    connect(_cancel, &QPushButton::clicked, this, [&scanner] { scanner.openReview().close(); });
    connect(_confirm, &QPushButton::clicked, this, [this] { confirm(); });
    connect(_list, &RowList::spaced, this, [this](const QModelIndex &index) { toggle(index); });
    follow(scanner.openReview(), &OpenReview::reviewChanged, this, [this] { refresh(); });
}

QWidget *UninstallReviewSheet::makeBody()
{
    auto *body = new QWidget;
    auto *rows = new QVBoxLayout(body);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(6);
    _running = makeText(u"⚠ 该应用正在运行，请先退出，以免它重新写入文件。"_s, u"warning"_s);
    _running->setObjectName(u"reviewRunning"_s);
    _packages = makeText({}, u"warning"_s);
    _packages->setObjectName(u"reviewPackages"_s);
    _mode = makeText({}, u"note"_s);
    _mode->setObjectName(u"reviewMode"_s);
    _job = new JobBar(_context.theme, u"reviewJob"_s);
    _job->setCancellable(false);
    _job->setJob(u"正在查找关联数据…"_s, 0, 0);
    _rows = new ReviewRows(this);
    _list = new RowList(_context.theme, u"reviewRows"_s, ReviewRow::height);
    _list->setAccessibleName(u"将要移走的项目"_s);
    _list->setModel(_rows);
    auto *row = new ReviewRow(_context.theme, *_list, *_rows);
    _list->setItemDelegate(row);
    connect(row, &ReviewRow::toggled, this, [this](const QModelIndex &index) { toggle(index); });
    for (QWidget *part : {static_cast<QWidget *>(_mode), static_cast<QWidget *>(_packages),
                          static_cast<QWidget *>(_running), static_cast<QWidget *>(_job)})
        rows->addWidget(part);
    rows->addWidget(_list, 1);
    return body;
}

void UninstallReviewSheet::focusDefault()
{
    _cancel->setFocus();
}

void UninstallReviewSheet::refresh()
{
    const auto review = _context.services.uninstaller.openReview().review();
    _job->setVisible(!review);
    _list->setVisible(review.has_value());
    _confirm->setEnabled(review && !review->isRunning);
    _mode->setVisible(review.has_value());
    _total->setText(review ? tickedText(review->items) : QString());
    if (review) {
        setTitle(u"卸载「%1」"_s.arg(shownName(review->app.name)));
        setMessage(question(review->app.name));
        _rows->replace(review->items);
    }
    showNotes(review.value_or(UninstallReview{}));
}

void UninstallReviewSheet::showNotes(const UninstallReview &review)
{
    const QString info = infoText(review.mode);
    _mode->setText(u"%1：%2"_s.arg(rawValue(review.mode), info.isEmpty() ? description(review.mode) : info));
    _running->setVisible(review.isRunning);
    const QString packages = packagesText(review);
    _packages->setText(packages);
    _packages->setVisible(!packages.isEmpty());
}

void UninstallReviewSheet::toggle(const QModelIndex &index)
{
    const ReviewItem item = _rows->item(index);
    if (!item.isFixed)
        _context.services.uninstaller.openReview().setTicked(item.path, !item.isTicked);
}

void UninstallReviewSheet::confirm()
{
    AppScanner &scanner = _context.services.uninstaller;
    if (const auto review = scanner.openReview().review())
        scanner.uninstall(*review);
}

} // namespace velbrix
