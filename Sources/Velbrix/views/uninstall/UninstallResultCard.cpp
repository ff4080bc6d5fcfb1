#include "views/uninstall/UninstallResultCard.h"

#include "app/AppServices.h"
#include "views/ShownText.h"
#include "views/components/ElidedLabel.h"
#include "views/components/Parts.h"
#include "views/components/SymbolLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr qsizetype mostLines = 50;

} // namespace

UninstallResultCard::UninstallResultCard(const ViewContext &context, QWidget *parent)
    : Card(parent),
      _context(context),
      _symbol(new SymbolLabel(context.theme, u"checkmark.circle.fill"_s, 22, ThemeColor::good)),
      _message(makeText({}, u"body"_s)),
      _failures(new QWidget)
{
    setObjectName(u"uninstallResult"_s);
    _message->setObjectName(u"uninstallMessage"_s);
    _message->setMinimumWidth(1); // a name without a blank would make the page as wide as it is
    QPushButton *const seen =
        makeButton(context.theme, {u"uninstallResultSeen"_s, u"知道了"_s, {}, u"plain"_s});
    auto *top = new QWidget;
    auto *line = new QHBoxLayout(top);
    line->setContentsMargins(0, 10, 0, 10);
    line->setSpacing(12);
    line->addWidget(_symbol, 0, Qt::AlignVCenter);
    line->addWidget(_message, 1);
    line->addWidget(seen, 0, Qt::AlignVCenter);
    addRow(top);
    _failures->setObjectName(u"uninstallFailures"_s);
    auto *rows = new QVBoxLayout(_failures);
    rows->setContentsMargins(0, 8, 0, 10);
    rows->setSpacing(8);
    addRow(_failures);
    hide();
    connect(seen, &QPushButton::clicked, this, &QWidget::hide);
    AppScanner &scanner = context.services.uninstaller;
    connect(&scanner, &AppScanner::finished, this, [this](const QString &message) { show(message); });
    connect(&scanner, &AppScanner::isUninstallingChanged, this, [this, &scanner] {
        if (scanner.isUninstalling())
            hide();
    });
    connect(&scanner, &AppScanner::isPuttingBackChanged, this, [this, &scanner] {
        if (!scanner.isPuttingBack())
            return;
        _wasPutBack = true;
        hide();
    });
}

void UninstallResultCard::show(const QString &message)
{
    const AppScanner &scanner = _context.services.uninstaller;
    const bool wasPutBack = std::exchange(_wasPutBack, false);
    const bool hasFailed = !wasPutBack && scanner.progressStage().kind == UninstallStage::Kind::failed;
    if (hasFailed)
        _symbol->show(u"xmark.circle.fill"_s, ThemeColor::bad);
    else if (!scanner.failures().isEmpty())
        _symbol->show(u"exclamationmark.triangle.fill"_s, ThemeColor::warning);
    else
        _symbol->show(u"checkmark.circle.fill"_s, ThemeColor::good);
    _message->setText(message);
    showFailures();
    setVisible(!message.isEmpty());
}

void UninstallResultCard::showFailures()
{
    const auto old = _failures->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    for (QWidget *line : old) {
        line->hide();
        line->deleteLater();
    }
    const QList<FailedItem> failures = _context.services.uninstaller.failures();
    QLayout *const rows = _failures->layout();
    for (const FailedItem &item : failures.first(std::min(failures.size(), mostLines))) {
        auto *line = new QWidget;
        auto *words = new QVBoxLayout(line);
        words->setContentsMargins(0, 0, 0, 0);
        words->setSpacing(0);
        words->addWidget(new ElidedLabel(shownPath(item.path), u"body"_s, Qt::ElideMiddle));
        words->addWidget(makeText(item.reason, u"bad"_s));
        rows->addWidget(line);
    }
    if (failures.size() > mostLines)
        rows->addWidget(makeText(u"还有 %1 项没有移动"_s.arg(failures.size() - mostLines), u"note"_s));
    _failures->setVisible(!failures.isEmpty());
}

} // namespace velbrix
