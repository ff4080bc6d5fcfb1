#include "views/wallpaper/WallpaperBadge.h"

#include "views/components/Parts.h"
#include "views/components/SymbolLabel.h"

#include <QHBoxLayout>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace velbrix {

WallpaperBadge::WallpaperBadge(const Theme &theme, QWidget *parent)
    : QWidget(parent),
      _symbol(new SymbolLabel(theme, u"film"_s, 16, ThemeColor::secondary)),
      _text(makeText({}, u"note"_s))
{
    setObjectName(u"wallpaperBadge"_s);
    _text->setWordWrap(false);
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    line->addWidget(_symbol);
    line->addWidget(_text);
}

void WallpaperBadge::show(WallpaperLook look)
{
    const BadgeLook badge = badgeOf(look);
    _symbol->show(badge.symbol, badge.tint);
    _text->setText(badge.text);
    setLook(_text, "role", badge.role);
}

} // namespace velbrix
