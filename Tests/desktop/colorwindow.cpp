// colorwindow TITLE RRGGBB X Y WIDTH HEIGHT
// An ordinary window of one colour; writes its number when it is shown and ends when it is closed.
#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>

#include <cstdio>
#include <utility>

namespace {

class ColorWindow final : public QRasterWindow {
public:
    explicit ColorWindow(QColor color) : _color(color) {}

private:
    void exposeEvent(QExposeEvent *event) override
    {
        QRasterWindow::exposeEvent(event);
        if (std::exchange(_isTold, true))
            return;
        std::printf("%llu\n", winId());
        std::fflush(stdout);
    }
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(QRect(QPoint(), size()), _color); }

    const QColor _color;
    bool _isTold = false;
};

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Colorwindow"));
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 7)
        return 2;
    const auto number = [&](int index) { return arguments[index].toInt(); };
    ColorWindow window(QColor(u'#' + arguments[2]));
    window.setTitle(arguments[1]);
    window.setFramePosition({number(3), number(4)});
    window.resize(number(5), number(6));
    window.show();
    return QGuiApplication::exec();
}
