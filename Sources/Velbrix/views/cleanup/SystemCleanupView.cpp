#include "views/cleanup/SystemCleanupView.h"

#include "app/AppServices.h"
#include "views/cleanup/CleanupControlCard.h"
#include "views/cleanup/CleanupGroupCard.h"
#include "views/cleanup/CleanupOutcomeCard.h"
#include "views/cleanup/CustomFoldersCard.h"

using namespace Qt::StringLiterals;

namespace velbrix {

SystemCleanupView::SystemCleanupView(const ViewContext &context, QWidget *parent)
    : Page(u"cleanupPage"_s, u"系统清理"_s, u"看看缓存、日志和临时文件占了多少空间，勾选后一并清理。"_s,
           parent),
      _context(context)
{
    add(new CleanupControlCard(context, this));
    add(new CleanupOutcomeCard(context, this));
    for (const CleanupGroup group : {CleanupGroup::system, CleanupGroup::development, CleanupGroup::packages,
                                     CleanupGroup::browsers, CleanupGroup::editors, CleanupGroup::advanced}) {
        auto *const card = new CleanupGroupCard(context, group, this);
        if (card->isEmpty())
            delete card;
        else
            add(title(group), card);
    }
    add(CustomFoldersCard::heading(), new CustomFoldersCard(context, this));
}

void SystemCleanupView::showEvent(QShowEvent *event)
{
    Page::showEvent(event);
    _context.services.cleaner.calculateOnce();
}

} // namespace velbrix
