// A tray icon with a menu and nothing behind it: the least that a program in the tray costs.
#include <QApplication>
#include <QIcon>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QPixmap picture(32, 32);
    picture.fill(Qt::darkCyan);
    QMenu menu;
    for (int i = 1; i <= 12; ++i)
        menu.addAction(u"第 %1 项"_s.arg(i));
    QSystemTrayIcon icon{QIcon(picture)};
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}
