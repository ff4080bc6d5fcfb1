// iconset PICTURE FOLDER: the picture in the sizes and under the names that iconutil makes an icon of.

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QImageReader>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

bool draw(const QString &picture, int pixels, const QString &file)
{
    QImageReader reader(picture);
    reader.setScaledSize(QSize(pixels, pixels));
    const QImage image = reader.read();
    if (image.isNull())
        std::fprintf(stderr, "%s: %s\n", qPrintable(picture), qPrintable(reader.errorString()));
    return !image.isNull() && image.save(file);
}

} // namespace

int main(int argc, char **argv)
{
    // The plugin for the picture's format is looked for beside Qt.
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() != 3 || !QDir().mkpath(words.at(2)))
        return 2;
    for (const int points : {16, 32, 128, 256, 512})
        for (const int scale : {1, 2}) {
            const QString name = u"icon_%1x%1%2.png"_s.arg(points).arg(scale == 2 ? u"@2x" : u"");
            if (!draw(words.at(1), points * scale, words.at(2) + u'/' + name))
                return 1;
        }
    return 0;
}
