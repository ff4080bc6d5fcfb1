#pragma once

#include "foundation/Clock.h"
#include "foundation/Published.h"
#include "platform/DesktopPicture.h"

#include <QCoroTask>
#include <QImage>
#include <QJsonValue>
#include <QObject>

#include <optional>

namespace velbrix {

class SettingsStore;

// The still desktop picture under the live wallpaper. The user's own picture
// is remembered before it is first replaced and put back afterwards.
class StaticDesktop final : public QObject {
    Q_OBJECT
    // A picture is being set or put back.
    VELB_PUBLISHED(StaticDesktop, bool, isWorking, false)
    // What has become of the user's own picture, for them; empty when it came
    // back as it was.
    VELB_PUBLISHED(StaticDesktop, QString, problem)

public:
    // The folder for the pictures is created with the first one.
    StaticDesktop(DesktopPicture &picture, SettingsStore &settings, Clock &clock, QString folder,
                  QObject *parent = nullptr);

    // Only the newest of several wishes is carried out.
    void setStaticDesktop(const QImage &image);
    // The user's own picture comes back, if it was replaced. Also for what an
    // earlier run has left behind.
    void putBack();

private:
    QCoro::Task<> work();
    QCoro::Task<> apply(QImage image);
    QCoro::Task<> restoreOriginal();
    QCoro::Task<Result<void>> rememberOriginal(const QString path);
    Result<void> keep(const QJsonObject &originals);
    bool isOurs(const QJsonValue &place) const;

    DesktopPicture &_picture;
    SettingsStore &_settings;
    Clock &_clock;
    const QString _folder;
    std::optional<QImage> _wanted; // a null image: the user's own
    bool _isOursWanted = false;
    Observation _pictures;
};

} // namespace velbrix
