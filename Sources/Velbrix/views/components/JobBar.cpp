#include "views/components/JobBar.h"

#include "views/components/ElidedLabel.h"
#include "views/components/Parts.h"

#include <QHBoxLayout>
#include <QProgressBar>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int leastBar = 120;

} // namespace

JobBar::JobBar(const Theme &theme, const QString &name, QWidget *parent)
    : QWidget(parent),
      _text(new ElidedLabel({}, u"note"_s, Qt::ElideMiddle)),
      _progress(new QProgressBar),
      _cancel(makeButton(theme, {name + u"Cancel"_s, u"取消"_s, {}, u"plain"_s}))
{
    setObjectName(name);
    setMinimumHeight(36);
    _progress->setTextVisible(false);
    _progress->setMinimumWidth(leastBar);
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(12);
    line->addWidget(_text);
    line->addWidget(_progress, 1);
    line->addWidget(_cancel);
    connect(_cancel, &QPushButton::clicked, this, &JobBar::cancelled);
}

void JobBar::setJob(const QString &text, int done, int total)
{
    _text->setText(text);
    _progress->setRange(0, total);
    _progress->setValue(done);
    _progress->setAccessibleName(text);
}

void JobBar::setCancellable(bool cancellable)
{
    _cancel->setVisible(cancellable);
}

void JobBar::setRunning(bool runs, const QList<QWidget *> &starters)
{
    if (runs)
        show();
    for (QWidget *starter : starters) {
        if (runs && starter->hasFocus() && _cancel->isVisible()) {
            _focusBefore = starter;
            _cancel->setFocus();
        }
        starter->setEnabled(!runs);
    }
    if (runs)
        return;
    if (_focusBefore && _cancel->hasFocus())
        _focusBefore->setFocus();
    _focusBefore = nullptr;
    hide();
}

} // namespace velbrix
