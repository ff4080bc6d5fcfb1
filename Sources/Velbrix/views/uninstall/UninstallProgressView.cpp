#include "views/uninstall/UninstallProgressView.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/ShownText.h"
#include "views/components/Parts.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int sheetWidth = 420;
constexpr int steps = 1000;

} // namespace

UninstallProgressView::UninstallProgressView(const ViewContext &context, QWidget *page)
    : Sheet(context.theme,
            {u"uninstallProgress"_s,
             u"正在卸载「%1」"_s.arg(shownName(context.services.uninstaller.uninstallingName())),
             {}},
            sheetWidth, page),
      _context(context),
      _stage(makeText({}, u"secondary"_s)),
      _bar(new QProgressBar)
{
    _stage->setObjectName(u"uninstallStage"_s);
    _bar->setObjectName(u"uninstallBar"_s);
    _bar->setAccessibleName(u"卸载进度"_s);
    _bar->setTextVisible(false);
    _bar->setRange(0, steps);
    auto *body = new QWidget;
    auto *rows = new QVBoxLayout(body);
    rows->setContentsMargins(0, 0, 0, 4);
    rows->setSpacing(10);
    rows->addWidget(_stage);
    rows->addWidget(_bar);
    setBody(body);
    _stop = addButton({u"uninstallStop"_s, u"停止"_s, {}, {}});
    QSizePolicy policy = _stop->sizePolicy();
    policy.setRetainSizeWhenHidden(true); // the sheet keeps its height to the end
    _stop->setSizePolicy(policy);
    AppScanner &scanner = context.services.uninstaller;
    connect(_stop, &QPushButton::clicked, this, [this, &scanner] {
        scanner.cancelUninstall();
        _stop->setEnabled(false);
    });
    follow(scanner, &AppScanner::progressValueChanged, this,
           [this, &scanner] { _bar->setValue(qRound(scanner.progressValue() * steps)); });
    follow(scanner, &AppScanner::progressStageChanged, this, [this] { refresh(); });
}

void UninstallProgressView::focusDefault()
{
    if (_stop->isEnabled())
        _stop->setFocus();
    else
        setFocus();
}

void UninstallProgressView::refresh()
{
    using Kind = UninstallStage::Kind;
    const UninstallStage stage = _context.services.uninstaller.progressStage();
    _stage->setText(stage.label());
    setLook(_stage, "role", stage.kind == Kind::failed ? u"bad"_s : u"secondary"_s);
    const bool hasEnded = stage.kind == Kind::done || stage.kind == Kind::failed;
    _stop->setVisible(!hasEnded && stage.kind != Kind::finishing);
}

} // namespace velbrix
