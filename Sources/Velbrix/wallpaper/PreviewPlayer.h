#pragma once

#include "foundation/Published.h"
#include "platform/DesktopSurfaces.h"

#include <QImage>
#include <QObject>

#include <memory>
#include <optional>

namespace velbrix {

// The silent video inside the program's own window.
class PreviewPlayer final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(PreviewPlayer, bool, isPreviewPlaying, false)
    VELB_PUBLISHED(PreviewPlayer, QString, problem)

public:
    static constexpr QSize bound{960, 540}; // pixels

    explicit PreviewPlayer(DesktopSurfaces &surfaces, QObject *parent = nullptr);

    // At rest, with its first picture.
    void load(const QString &path);
    void play(const QString &path);
    void pause();
    // Lets go of the player; for when the preview is hidden.
    void stop();
    // The latest picture; null before the first.
    const QImage &frame() const { return _frame; }
    // What is loaded, or could not be; nothing when stopped.
    const std::optional<QString> &previewItemURL() const { return _itemURL; }

Q_SIGNALS:
    void frameChanged();

private:
    // By value: what is passed goes with the player.
    void fail(QString problem);

    DesktopSurfaces &_surfaces;
    std::unique_ptr<VideoPreview> _player;
    std::optional<QString> _itemURL;
    QImage _frame;
};

} // namespace velbrix
