#pragma once

#include "foundation/Clock.h"
#include "foundation/Published.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <chrono>
#include <memory>

namespace velbrix {

class NotificationCenter;

enum class ToastTone { plain, good, warning };

// A short banner over everything.
struct Toast {
    int id = 0;
    QString title;
    QString body;
    QString icon; // SF Symbol name, may be empty
    ToastTone tone = ToastTone::plain;
    std::chrono::milliseconds duration{3000};

    bool operator==(const Toast &) const = default;
};

inline const QString bannerToastNotification = QStringLiteral("velBrixShowBannerToast");

// The user info of that notification: "title", "body", "icon", "tone" and
// "duration" in seconds, each of them optional.
Toast toastFromUserInfo(const QVariantMap &userInfo);
// The icon is an SF Symbol.
void postBanner(NotificationCenter &center, const QString &title, const QString &body, const QString &icon,
                ToastTone tone = ToastTone::plain);

// The visible banners. At most three at a time; the others wait their turn.
// One that says the same as a visible one only keeps that one longer.
class ToastQueue final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(ToastQueue, QList<Toast>, visible)

public:
    static constexpr int mostVisible = 3;

    explicit ToastQueue(Clock &clock, QObject *parent = nullptr);
    ~ToastQueue() override;

    void show(Toast toast);
    void dismiss(int id);
    // No banner goes while the pointer rests on one.
    void setHeld(bool held);
    void clear();

private:
    void fill();
    void scheduleHide();
    void hideDue();

    Clock &_clock;
    QList<Toast> _waiting;
    QHash<int, std::chrono::milliseconds> _hideAt;
    std::unique_ptr<Alarm> _toastHideWorkItem;
    bool _held = false;
    int _lastId = 0;
};

} // namespace velbrix
