#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

#include <QHash>

class QLabel;

namespace velbrix {

class DisplayMap;
struct WallpaperDisplayInfo;

// The connected displays and the video of each.
class WallpaperDisplaysCard final : public Card {
public:
    explicit WallpaperDisplaysCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    class Row;
    QWidget *makeTop();
    Row *makeRow(const WallpaperDisplayInfo &display);
    void refresh();
    void chooseFor(const WallpaperDisplayInfo &display);
    void play(quint32 displayID, const QString &path);

    ViewContext _context;
    QLabel *_count = nullptr;
    DisplayMap *_map = nullptr;
    QWidget *_list;
    QList<Row *> _rows;
    QHash<quint32, QString> _refusals; // of what was chosen last, by display
};

} // namespace velbrix
