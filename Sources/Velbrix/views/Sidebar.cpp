#include "views/Sidebar.h"

#include "app/AppServices.h"
#include "app/Tools.h"
#include "foundation/Job.h"
#include "views/Follow.h"
#include "views/Theme.h"
#include "views/components/JobRing.h"
#include "views/components/Parts.h"

#include <QApplication>
#include <QButtonGroup>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int sidebarWidth = 208;
constexpr char toolProperty[] = "tool"; // the button's tool

} // namespace

Sidebar::Sidebar(const Theme &theme, AppServices &services, QWidget *parent)
    : QWidget(parent),
      _theme(theme),
      _services(services),
      _tabs(new QButtonGroup(this)),
      _list(new QVBoxLayout(this))
{
    setObjectName(u"sidebar"_s);
    setAccessibleName(u"功能列表"_s);
    setAttribute(Qt::WA_StyledBackground);
    setFixedWidth(sidebarWidth);
    _list->setContentsMargins(12, 20, 12, 12);
    _list->setSpacing(2);

    QString group;
    for (const Tool &tool : tools()) {
        if (tool.group.isEmpty())
            continue;
        if (tool.group != group) {
            if (!group.isEmpty())
                _list->addSpacing(12);
            _list->addWidget(makeText(tool.group, u"group"_s));
            _list->addSpacing(2);
            group = tool.group;
        }
        add(tool);
    }
    _list->addStretch(1);
    for (const Tool &tool : tools()) {
        if (tool.group.isEmpty())
            add(tool);
    }

    AppRouter &router = services.router;
    connect(_tabs, &QButtonGroup::buttonToggled, this, [&router](const QAbstractButton *button, bool on) {
        if (on)
            router.show(button->property(toolProperty).toString());
    });
    follow(router, &AppRouter::activeTabChanged, this, [this, &router] {
        const auto all = _tabs->buttons();
        const auto chosen = std::ranges::find_if(all, [&](const QAbstractButton *button) {
            return button->property(toolProperty).toString() == router.activeTab();
        });
        if (chosen == all.end())
            return;
        (*chosen)->setChecked(true);
        // A focus in the list goes along, or two tabs would look chosen.
        if (isAncestorOf(QApplication::focusWidget()))
            (*chosen)->setFocus();
    });
}

void Sidebar::add(const Tool &tool)
{
    auto *button = new QPushButton(u"  "_s + tool.title);
    button->setObjectName(u"tab."_s + tool.identifier);
    button->setProperty(toolProperty, tool.identifier);
    button->setAccessibleName(tool.title);
    button->setProperty("role", u"tab"_s);
    button->setCheckable(true);
    button->setIcon(_theme.icon(tool.symbol, ThemeColor::accentText));
    button->setIconSize(QSize(18, 18));
    _tabs->addButton(button);
    _list->addWidget(button);
    Job *const job = jobOf(tool, _services);
    if (!job)
        return;
    auto *line = new QHBoxLayout(button);
    line->setContentsMargins(0, 0, 12, 0);
    line->addStretch(1);
    line->addWidget(ring(tool, *job));
}

QWidget *Sidebar::ring(const Tool &tool, Job &job)
{
    const bool isRecording = job.kind() == Job::Kind::recording;
    auto *ring = new JobRing(_theme, {}, isRecording ? JobRing::Look::recording : JobRing::Look::progress);
    ring->setObjectName(u"ring."_s + tool.identifier);
    follow(job, &Job::changed, ring, [ring, &job] {
        const Job::State state = job.state();
        ring->setVisible(!state.what.isEmpty());
        if (!state.what.isEmpty())
            ring->setJob(state.what, state.progress);
    });
    return ring;
}

} // namespace velbrix
