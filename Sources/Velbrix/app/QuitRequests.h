#pragma once

#include <QObject>

#include <functional>

namespace velbrix {

// Takes the system's wish to end the program (a menu's quit, the end of the
// session) away from the event loop, which would end at once, and hands it to
// somebody who ends things in their order.
class QuitRequests final : public QObject {
    Q_OBJECT

public:
    // Watches the running QCoreApplication while it lives.
    explicit QuitRequests(std::function<void()> requested, QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const std::function<void()> _requested;
};

} // namespace velbrix
