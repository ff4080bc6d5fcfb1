#include "views/components/Confirmation.h"

#include "views/Theme.h"

#include <QApplication>
#include <QMainWindow>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString sheetName = u"confirmation"_s;

// Title bars, menus and the like stay free.
QWidget *surfaceOf(QWidget *asker)
{
    const auto *window = qobject_cast<QMainWindow *>(asker->window());
    return window && window->centralWidget() ? window->centralWidget() : asker->window();
}

void close(NoticeSheet *sheet, QWidget *focusBefore)
{
    sheet->hide();
    sheet->deleteLater();
    if (focusBefore)
        focusBefore->setFocus();
}

} // namespace

void Confirmation::ask(const Theme &theme, QWidget *asker, NoticeSheet::Words words,
                       std::function<void()> confirmed, std::function<void()> cancelled)
{
    QWidget *const surface = surfaceOf(asker);
    const auto open = surface->findChildren<NoticeSheet *>(sheetName, Qt::FindDirectChildrenOnly);
    for (NoticeSheet *sheet : open) {
        if (!sheet->isHidden())
            Q_EMIT sheet->cancelled();
    }
    QPointer<QWidget> focusBefore;
    if (QWidget *focus = QApplication::focusWidget(); focus && surface->isAncestorOf(focus))
        focusBefore = focus;
    if (words.cancel.isEmpty())
        words.cancel = u"取消"_s;
    if (words.colors.isEmpty() && words.isDestructive)
        words.colors = {QColor(0xFF, 0x8A, 0x80), QColor(0xD7, 0x00, 0x15)};

    auto *sheet = new NoticeSheet(theme, words, surface);
    sheet->setObjectName(sheetName);
    sheet->setGeometry(surface->rect());
    const auto answer = [sheet, focusBefore](const std::function<void()> &act) {
        if (sheet->isHidden())
            return; // answered already
        close(sheet, focusBefore);
        if (act)
            act();
    };
    QObject::connect(sheet, &NoticeSheet::confirmed, asker,
                     [answer, act = std::move(confirmed)] { answer(act); });
    QObject::connect(sheet, &NoticeSheet::cancelled, asker,
                     [answer, act = std::move(cancelled)] { answer(act); });
    QObject::connect(asker, &QObject::destroyed, sheet, &QObject::deleteLater);
    sheet->show();
}

} // namespace velbrix
