#include "views/wallpaper/VideoPanel.h"

#include "wallpaper/WallpaperController.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QStandardPaths>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString startFolder(WallpaperController &wallpaper)
{
    if (const auto path = wallpaper.video().videoURL())
        return QFileInfo(*path).path();
    if (const auto folder = wallpaper.preferences().wallpaperFolder())
        return *folder;
    return QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
}

} // namespace

void openVideoPanel(QWidget *owner, WallpaperController &wallpaper, const QString &title,
                    std::function<void(const QString &path)> chosen)
{
    const QString filter = u"视频文件 (*.%1)"_s.arg(wallpaper.folder().extensions().join(u" *."_s));
    auto *panel = new QFileDialog(owner, title, startFolder(wallpaper), filter);
    panel->setObjectName(u"videoPanel"_s);
    panel->setFileMode(QFileDialog::ExistingFile);
    panel->setLabelText(QFileDialog::Accept, u"选择"_s);
    panel->setLabelText(QFileDialog::Reject, u"取消"_s);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(panel, &QDialog::finished, owner,
                     [panel, &wallpaper, chosen = std::move(chosen)](int result) {
                         wallpaper.endSelecting();
                         const QStringList files = panel->selectedFiles();
                         if (result == QDialog::Accepted && !files.isEmpty())
                             chosen(files.first());
                     });
    wallpaper.beginSelecting();
    panel->open();
}

QString draggedVideo(const QMimeData *data, const QStringList &extensions)
{
    const QList<QUrl> urls = data->urls();
    if (urls.size() != 1 || !urls.first().isLocalFile())
        return {};
    const QString path = urls.first().toLocalFile();
    return hasExtension(path, extensions) ? path : QString();
}

} // namespace velbrix
