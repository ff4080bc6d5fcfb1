#pragma once

#include "app/Toast.h"
#include "foundation/Observation.h"

#include <QObject>
#include <QString>

namespace velbrix {

class AppServices;
class UserInterface;

// The tools' news, and the program's own, as banners.
class Banners final : public QObject {
    Q_OBJECT

public:
    Banners(AppServices &services, UserInterface &ui, QObject *parent = nullptr);

    // From now on, beginning with what the user should know of the start.
    void follow();
    void unfollow();

    // The icon is an SF Symbol.
    void show(const QString &title, const QString &body, const QString &icon,
              ToastTone tone = ToastTone::plain);
    void warn(const QString &title, const QString &body);
    // What the main window tells itself while it is visible. Nothing without a body.
    void warnBehindWindow(const QString &title, const QString &body);

private:
    AppServices &_services;
    UserInterface &_ui;
    Observation _settingsFailures;
};

} // namespace velbrix
