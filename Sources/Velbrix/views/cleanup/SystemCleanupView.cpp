#include "views/cleanup/SystemCleanupView.h"

#include "app/AppServices.h"
#include "views/cleanup/CleanupControlCard.h"
#include "views/cleanup/CleanupOutcomeCard.h"
#include "views/cleanup/CleanupRow.h"
#include "views/cleanup/CustomFoldersCard.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// The built-in items under one heading; null when this machine has none.
Card *makeGroupCard(const ViewContext &context, CleanupGroup group)
{
    const SystemCleaner &cleaner = context.services.cleaner;
    Card *card = nullptr;
    for (const CleanupItem &item : cleaner.items()) {
        if (cleaner.group(item.id) != group)
            continue;
        if (!card)
            card = new Card;
        card->addRow(new CleanupRow(context, item));
    }
    if (!card)
        return nullptr;
    card->setObjectName(u"cleanupGroup.%1"_s.arg(static_cast<int>(group)));
    card->setAccessibleName(title(group));
    return card;
}

} // namespace

SystemCleanupView::SystemCleanupView(const ViewContext &context, QWidget *parent)
    : Page(u"cleanupPage"_s, u"系统清理"_s, u"看看缓存、日志和临时文件占了多少空间，勾选后一并清理。"_s,
           parent),
      _context(context)
{
    add(new CleanupControlCard(context, this));
    add(new CleanupOutcomeCard(context, this));
    for (const CleanupGroup group : {CleanupGroup::system, CleanupGroup::development, CleanupGroup::packages,
                                     CleanupGroup::browsers, CleanupGroup::editors, CleanupGroup::advanced}) {
        if (Card *const card = makeGroupCard(context, group))
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
