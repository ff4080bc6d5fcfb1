#include "views/cleanup/SystemCleanupView.h"

using namespace Qt::StringLiterals;

namespace velbrix {

SystemCleanupView::SystemCleanupView(const ViewContext &, QWidget *parent)
    : Page(u"cleanupPage"_s, u"系统清理"_s, u"查看缓存、日志与临时文件占用的空间，勾选后清理。"_s, parent)
{
}

} // namespace velbrix
