#include "views/Sidebar.h"

#include "app/AppRouter.h"
#include "views/Follow.h"
#include "views/TabActivity.h"
#include "views/Theme.h"
#include "views/components/JobRing.h"
#include "views/components/Parts.h"

#include <QApplication>
#include <QButtonGroup>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int sidebarWidth = 208;

} // namespace

Sidebar::Sidebar(const Theme &theme, AppRouter &router, const TabActivity &activity, QWidget *parent)
    : QWidget(parent),
      _theme(theme),
      _activity(activity),
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
    for (const AppTabInfo &tab : appTabs()) {
        if (tab.group.isEmpty())
            continue;
        if (tab.group != group) {
            if (!group.isEmpty())
                _list->addSpacing(12);
            _list->addWidget(makeText(tab.group, u"group"_s));
            _list->addSpacing(2);
            group = tab.group;
        }
        add(tab);
    }
    _list->addStretch(1);
    for (const AppTabInfo &tab : appTabs()) {
        if (tab.group.isEmpty())
            add(tab);
    }

    connect(_tabs, &QButtonGroup::idToggled, this, [&router](int id, bool on) {
        if (on)
            router.show(static_cast<AppTab>(id));
    });
    follow(router, &AppRouter::activeTabChanged, this, [this, &router] {
        const auto tab = router.activeTab();
        if (!tab)
            return;
        QAbstractButton *const button = _tabs->button(static_cast<int>(*tab));
        button->setChecked(true);
        // A focus in the list goes along, or two tabs would look chosen.
        if (isAncestorOf(QApplication::focusWidget()))
            button->setFocus();
    });
}

void Sidebar::add(const AppTabInfo &tab)
{
    auto *button = new QPushButton(u"  "_s + tab.title);
    button->setObjectName(u"tab."_s + tab.identifier);
    button->setAccessibleName(tab.title);
    button->setProperty("role", u"tab"_s);
    button->setCheckable(true);
    button->setIcon(_theme.icon(tab.symbol, ThemeColor::accentText));
    button->setIconSize(QSize(18, 18));
    _tabs->addButton(button, static_cast<int>(tab.tab));
    _list->addWidget(button);
    if (!_activity.isWatched(tab.tab))
        return;
    auto *line = new QHBoxLayout(button);
    line->setContentsMargins(0, 0, 12, 0);
    line->addStretch(1);
    line->addWidget(ring(tab));
}

QWidget *Sidebar::ring(const AppTabInfo &tab)
{
    const bool records = tab.tab == AppTab::recorder;
    auto *ring = new JobRing(_theme, {}, records ? JobRing::Look::recording : JobRing::Look::progress);
    ring->setObjectName(records ? u"recordingRing"_s : u"ring."_s + tab.identifier);
    const auto refresh = [this, ring, which = tab.tab] {
        const auto job = _activity.job(which);
        ring->setVisible(job.has_value());
        if (job)
            ring->setJob(job->what, job->progress);
    };
    refresh();
    connect(&_activity, &TabActivity::changed, ring, [refresh, which = tab.tab](AppTab changed) {
        if (changed == which)
            refresh();
    });
    return ring;
}

} // namespace velbrix
