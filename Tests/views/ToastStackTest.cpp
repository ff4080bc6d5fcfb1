#include "views/ToastStack.h"
#include "support/FakeDesktop.h"
#include "support/Test.h"
#include "support/VirtualClock.h"
#include "views/Theme.h"
#include "views/components/ToastView.h"

#include <QEnterEvent>

namespace {

const QRect screen(100, 50, 1000, 700);

struct Rig {
    Rig() { desktop.reducedMotion = true; }
    void show(const QString &title)
    {
        Toast toast;
        toast.title = title;
        toasts.show(toast);
    }

    FakeDesktopServices desktop;
    FakeSymbols symbols;
    VirtualClock clock;
    Theme theme{desktop, symbols};
    ToastQueue toasts{clock};
    ToastStack stack{theme, toasts, [] { return screen; }};
};

void enter(ToastView *view)
{
    QEnterEvent event(QPointF(5, 5), QPointF(5, 5), QPointF(5, 5));
    QCoreApplication::sendEvent(view, &event);
}

} // namespace

class ToastStackTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stacksAtTheTopRight()
    {
        Rig rig;
        rig.show(u"一"_s);
        rig.clock.advance(1s);
        rig.show(u"二"_s);
        const auto views = rig.stack.views();
        QCOMPARE(views.size(), 2);
        for (ToastView *view : views) {
            QVERIFY(view->isVisible());
            QCOMPARE(view->geometry().right(), screen.right() - 16);
            QVERIFY(view->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        }
        QVERIFY(views[1]->y() > views[0]->geometry().bottom());
        rig.clock.advance(2s);
        QCOMPARE(rig.stack.views().size(), 1);
        QCOMPARE(rig.stack.views().first()->y(), screen.top() + 16);
    }

    void staysWhileHoveredAndGoesWithAClick()
    {
        Rig rig;
        rig.show(u"一"_s);
        ToastView *const view = rig.stack.views().first();
        enter(view);
        rig.clock.advance(60s);
        QCOMPARE(rig.toasts.visible().size(), 1);
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(view, &leave);
        rig.clock.advance(500ms);
        rig.show(u"二"_s);
        enter(view);
        QTest::mouseClick(view, Qt::LeftButton);
        QCOMPARE(rig.toasts.visible().size(), 1);
        rig.clock.advance(10s); // the other is not held by a window that is gone
        QCOMPARE(rig.toasts.visible().size(), 0);
    }
};

QTEST_MAIN(ToastStackTest)
#include "ToastStackTest.moc"
