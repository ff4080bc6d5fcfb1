#pragma once

#include "app/AppDelegate.h"
#include "support/FakePlatform.h"
#include "views/MainWindow.h"
#include "views/WidgetInterface.h"
#include "views/components/TabularLabel.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>

namespace velbrix::test {

// Drops these on the widget; whether it would have them.
inline bool drop(QWidget *on, const QList<QUrl> &urls)
{
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.setAccepted(false);
    QCoreApplication::sendEvent(on, &enter);
    QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    if (enter.isAccepted())
        QCoreApplication::sendEvent(on, &event);
    return enter.isAccepted();
}

// The whole program over fakes, with real windows. Change the host, then start() or open().
struct WindowRig : ServicesRig {
    WindowRig() { host.desktop.reducedMotion = true; }
    // The services outlive the windows.
    ~WindowRig()
    {
        delegate.reset();
        ui.reset();
    }

    void consentTo(PrivacyConsentKind kind, bool consents = true)
    {
        host.settings.stored.insert(u"Velbrix_Privacy_consent_"_s + rawValue(kind), consents);
    }
    void start(bool accepted = true)
    {
        host.settings.stored.insert(u"Velbrix_Privacy_firstLaunchAccepted"_s, accepted);
        AppServices &made = make();
        ui = std::make_unique<WidgetInterface>(made);
        delegate = std::make_unique<AppDelegate>(made, *ui);
        ui->setDelegate(*delegate);
        delegate->applicationDidFinishLaunching(false);
        settle();
        QVERIFY(QTest::qWaitForWindowExposed(window()));
    }
    // Starts on that tool's page.
    void open(const QString &tab)
    {
        start();
        services->router.show(tab);
    }

    MainWindow *window() const { return ui->mainWindow(); }
    // The widget of that object name; null when it is absent or hidden.
    template <typename Widget = QWidget> Widget *find(const QString &name) const
    {
        settle(); // shows what has come by then
        const auto all = window()->findChildren<Widget *>(name);
        const auto found =
            std::ranges::find_if(all, [this](QWidget *each) { return each->isVisibleTo(window()); });
        return found == all.end() ? nullptr : *found;
    }
    QPushButton *button(const QString &name) const { return find<QPushButton>(name); }
    // Of the label or button of that object name; empty when it is absent or hidden.
    QString text(const QString &name) const
    {
        const QWidget *const found = find(name);
        if (const auto *const tabular = dynamic_cast<const TabularLabel *>(found))
            return tabular->text();
        return found ? found->property("text").toString() : QString();
    }
    // Every text in sight inside the named widget.
    QStringList texts(const QString &name) const
    {
        QStringList found;
        const QWidget *const widget = find(name);
        const auto labels = widget ? widget->findChildren<QLabel *>() : QList<QLabel *>();
        for (const QLabel *label : labels) {
            if (label->isVisibleTo(widget) && !label->text().isEmpty())
                found.append(label->text());
        }
        return found;
    }
    // What a list says to those who do not see it, row by row.
    QStringList rows(const QString &name) const
    {
        QStringList words;
        const auto *const list = find<QAbstractItemView>(name);
        for (int row = 0; list && row < list->model()->rowCount(); ++row)
            words.append(list->model()->index(row, 0).data(Qt::AccessibleTextRole).toString());
        return words;
    }
    // How many controls the tabulator reaches; -1 when one of them has no name
    // for those who do not see it.
    int namedControls() const
    {
        int found = 0;
        const auto all = window()->findChildren<QWidget *>();
        for (QWidget *widget : all) {
            if (!widget->isVisible() || !(widget->focusPolicy() & Qt::TabFocus) || widget->focusProxy())
                continue;
            QAccessibleInterface *const face = QAccessible::queryAccessibleInterface(widget);
            if (!face || face->text(QAccessible::Name).isEmpty() || widget->objectName().isEmpty()) {
                qWarning() << "without a name:" << widget;
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
    void clickRow(const QString &list, int row) const
    {
        auto *const view = find<QAbstractItemView>(list);
        const QRect place = view->visualRect(view->model()->index(row, 0));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place.center());
        settle();
    }
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QWidget *const target = window()->focusWidget() ? window()->focusWidget() : window();
        QTest::keyClick(target, which, modifiers);
    }
    bool isEnabled(const QString &name) const { return find(name)->isEnabled(); }

    // Lets time pass until it is so.
    bool until(const std::function<bool()> &isSo)
    {
        return waitFor([&] {
            if (!isSo() && clock.pendingCount() > 0)
                clock.advance(20ms);
            return isSo();
        });
    }
    bool untilFound(const QString &name)
    {
        return until([&] { return find(name) != nullptr; });
    }

    std::unique_ptr<WidgetInterface> ui;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace velbrix::test
