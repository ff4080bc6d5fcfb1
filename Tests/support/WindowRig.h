#pragma once

#include "app/AppDelegate.h"
#include "support/FakePlatform.h"
#include "support/Test.h"
#include "views/MainWindow.h"
#include "views/WidgetInterface.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QDebug>
#include <QLabel>
#include <QPushButton>
#include <QStringList>
#include <QWidget>

#include <chrono>
#include <functional>
#include <memory>

namespace velbrix::test {

// The whole program over fakes, with real windows. Change the host, then start().
struct WindowRig : ServicesRig {
    WindowRig() { host.desktop.reducedMotion = true; }
    // The services outlive the windows.
    ~WindowRig()
    {
        delegate.reset();
        ui.reset();
    }

    void start(bool accepted = true)
    {
        host.settings.stored.insert(QStringLiteral("Velbrix_Privacy_firstLaunchAccepted"), accepted);
        AppServices &made = make();
        ui = std::make_unique<WidgetInterface>(made);
        delegate = std::make_unique<AppDelegate>(made, *ui);
        ui->setDelegate(*delegate);
        delegate->applicationDidFinishLaunching(false);
        QVERIFY(QTest::qWaitForWindowExposed(window()));
    }

    MainWindow *window() const { return ui->mainWindow(); }
    // The widget of that object name; null when it is absent or hidden.
    template <typename Widget = QWidget> Widget *find(const QString &name) const
    {
        settle(); // shows what has come by then
        const auto all = window()->findChildren<Widget *>(name);
        for (Widget *widget : all) {
            if (widget->isVisibleTo(window()))
                return widget;
        }
        return nullptr;
    }
    QPushButton *button(const QString &name) const { return find<QPushButton>(name); }
    // Of the label of that object name; empty when it is absent or hidden.
    QString text(const QString &name) const
    {
        const auto *label = find<QLabel>(name);
        return label ? label->text() : QString();
    }
    // Every visible text inside the named widget.
    QStringList texts(const QString &name) const
    {
        QStringList found;
        const QWidget *widget = find(name);
        if (!widget)
            return found;
        const auto labels = widget->findChildren<QLabel *>();
        for (const QLabel *label : labels) {
            if (label->isVisibleTo(widget) && !label->text().isEmpty())
                found.append(label->text());
        }
        return found;
    }
    // How many controls the tabulator reaches inside it; -1 when one of them has
    // no name for those who do not see it.
    static int namedControls(const QWidget *inside)
    {
        int found = 0;
        const auto all = inside->findChildren<QWidget *>();
        for (QWidget *widget : all) {
            if (!widget->isVisible() || !(widget->focusPolicy() & Qt::TabFocus) || widget->focusProxy())
                continue;
            QAccessibleInterface *const face = QAccessible::queryAccessibleInterface(widget);
            const QString name = face ? face->text(QAccessible::Name) : QString();
            if (name.isEmpty() || widget->objectName().isEmpty()) {
                qWarning() << "without a name:" << widget << name;
                return -1;
            }
            ++found;
        }
        return found;
    }
    void click(const QString &name) const
    {
        QTest::mouseClick(find<QAbstractButton>(name), Qt::LeftButton);
        settle();
    }
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QWidget *const target = window()->focusWidget() ? window()->focusWidget() : window();
        QTest::keyClick(target, which, modifiers);
    }

    // Lets time pass until it is so.
    bool until(const std::function<bool()> &isSo)
    {
        const auto isSoNow = [&] {
            if (!isSo() && clock.pendingCount() > 0)
                clock.advance(std::chrono::milliseconds(20));
            return isSo();
        };
        return waitFor(isSoNow);
    }

    std::unique_ptr<WidgetInterface> ui;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace velbrix::test
