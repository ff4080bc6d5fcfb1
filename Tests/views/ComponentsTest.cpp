#include "support/WindowRig.h"
#include "views/FocusRings.h"
#include "views/ShownText.h"
#include "views/Theme.h"
#include "views/components/JobBar.h"
#include "views/components/PacedSlider.h"
#include "views/components/Parts.h"
#include "views/components/PathField.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/Switch.h"
#include "views/components/ThumbnailGrid.h"
#include "views/components/ValueSlider.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QTextDocument>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace {

QList<ThumbnailItem> videos(int count)
{
    QList<ThumbnailItem> items;
    for (int i = 0; i < count; ++i)
        items.append({QString::number(i), u"视频"_s, {}});
    return items;
}

} // namespace

class ComponentsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void switchOnlyAsks()
    {
        Switch control(_theme, u"switch"_s);
        const QSignalSpy wanted(&control, &Switch::wanted);
        QTest::mouseClick(&control, Qt::LeftButton);
        QTest::keyClick(&control, Qt::Key_Space);
        QTest::keyClick(&control, Qt::Key_Return);
        QCOMPARE(wanted, (QList<QVariantList>{{true}, {true}, {true}}));
        QVERIFY(!control.isChecked());
    }

    void switchKnobTakesItsTime()
    {
        Switch control(_theme, u"switch"_s);
        control.show();
        QVERIFY(QTest::qWaitForWindowExposed(&control));
        const QImage off = control.grab().toImage();
        _desktop.reducedMotion = true;
        control.setOn(true);
        const QImage on = control.grab().toImage();
        QVERIFY(on != off); // there at once
        _desktop.reducedMotion = false;
        control.setOn(false);
        QVERIFY(control.grab().toImage() != off); // on its way
        QTRY_COMPARE(control.grab().toImage(), off);
    }

    void sliderByKeyAndDoubleClick()
    {
        ValueSlider slider(u"minutes"_s, {1, 120, 30, u"分钟"_s});
        connect(&slider, &ValueSlider::wanted, &slider, &ValueSlider::setValue);
        auto *const handle = slider.findChild<QSlider *>();
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Left})
            QTest::keyClick(handle, key);
        QCOMPARE(slider.value(), 31);
        QCOMPARE(handle->accessibleDescription(), u"31 分钟"_s);
        slider.setValue(120);
        QTest::mouseDClick(handle, Qt::LeftButton);
        QCOMPARE(slider.value(), 30);
    }

    void theWheelIsLeftToThePage()
    {
        ValueSlider slider(u"minutes"_s, {1, 120, 30, u"分钟"_s});
        QSpinBox number;
        number.setValue(5);
        makeNumberField(number, 72);
        QWheelEvent wheel(QPointF(5, 5), QPointF(5, 5), QPoint(), QPoint(0, 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(slider.findChild<QSlider *>(), &wheel);
        QCOMPARE(slider.value(), 30);
        QVERIFY(!wheel.isAccepted());
        wheel.accept();
        QCoreApplication::sendEvent(&number, &wheel);
        QCOMPARE(number.value(), 5);
        QVERIFY(!wheel.isAccepted());
    }

    void segmentsByArrowKeys()
    {
        SegmentedChoice choice(u"choice"_s, {u"一"_s, u"二"_s, u"三"_s});
        choice.setCurrent(0);
        choice.show();
        QVERIFY(QTest::qWaitForWindowExposed(&choice));
        QSignalSpy wanted(&choice, &SegmentedChoice::wanted);
        choice.findChild<QWidget *>(u"choice.0"_s)->setFocus();
        QTest::keyClick(choice.focusWidget(), Qt::Key_Right);
        QTest::keyClick(choice.focusWidget(), Qt::Key_Right);
        QCOMPARE(wanted, (QList<QVariantList>{{1}, {2}}));
        QCOMPARE(choice.current(), 2);
    }

    void pathFieldTakesAFolderOnly()
    {
        QTemporaryDir folder;
        PathField field(_theme, u"path"_s, u"选择输出目录"_s);
        QSignalSpy wanted(&field, &PathField::wanted);
        QVERIFY(!drop(&field, {QUrl(u"https://example.org/"_s)}));
        QVERIFY(!drop(&field, {QUrl::fromLocalFile(folder.filePath(u"absent"_s))}));
        QVERIFY(drop(&field, {QUrl::fromLocalFile(folder.path())}));
        QCOMPARE(wanted, (QList<QVariantList>{{folder.path()}}));
        // A name is shown as it is, whatever stands in it.
        const auto *shown = field.findChild<QLabel *>();
        field.setPath(u"/plain & simple"_s);
        QCOMPARE(shown->toolTip(), u"/plain & simple"_s);
        field.setPath(u"/a/<b>&amp;<img src=x>"_s);
        QTextDocument document;
        document.setHtml(shown->toolTip());
        QCOMPARE(document.toPlainText(), field.path());
    }

    void jobBarFitsALongName()
    {
        JobBar job(_theme, u"job"_s);
        const int least = job.minimumSizeHint().width();
        job.setJob(u"正在清理 %1…"_s.arg(QString(200, u'长')), 1, 2);
        QVERIFY(job.minimumSizeHint().width() <= least + 60); // of which the bar and the button are most
    }

    void longNamesLoseTheirMiddle()
    {
        QCOMPARE(shownName(u"two\nlines"_s), u"two lines"_s);
        const QString name(48, u'长');
        QCOMPARE(shownName(name), name);
        const QString cut = shownName(u'a' + name + u'z');
        QVERIFY(cut.size() == 48 && cut.startsWith(u'a') && cut.endsWith(u'z'));
    }

    void ringsAreForTheKeyboard()
    {
        const FocusRings rings;
        QWidget window;
        auto *rows = new QVBoxLayout(&window);
        auto *first = new QPushButton;
        auto *second = new QPushButton;
        rows->addWidget(first);
        rows->addWidget(second);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const auto isRinged = [](const QPushButton *button) {
            return button->hasFocus() && button->property("keyed").toBool();
        };
        first->setFocus();
        QTest::keyClick(first, Qt::Key_Tab);
        QVERIFY(isRinged(second));
        QTest::mouseClick(first, Qt::LeftButton);
        first->setEnabled(false);
        QVERIFY(second->hasFocus() && !isRinged(second)); // it went on by itself
        first->setEnabled(true);
        QTest::keyClick(second, Qt::Key_Space);
        first->setFocus(); // as a sheet does that was opened by a key
        QVERIFY(isRinged(first));
    }

    void pacedSliderSparesTheSetting()
    {
        VirtualClock clock;
        QList<int> heard;
        ValueSlider slider(u"volume"_s, {0, 100, 30, u"%"_s});
        auto *const pace = new PacedSlider(&slider, clock, [&](int value) { heard.append(value); });
        const auto drag = [&](int value) { slider.findChild<QSlider *>()->setValue(value); };
        for (const int value : {31, 35, 40})
            drag(value);
        pace->show(30); // the setting's own echo does not pull at the handle
        QCOMPARE(slider.value(), 40);
        QCOMPARE(heard, QList<int>());
        clock.advance(100ms);
        QCOMPARE(heard, QList<int>{40});
        pace->show(40);
        drag(50);
        delete pace;
        QCOMPARE(heard, (QList<int>{40, 50}));
    }

    void gridKnowsWhatIsVisible()
    {
        constexpr int count = 20'000;
        QScrollArea page;
        page.setWidgetResizable(true);
        auto *const body = new QWidget;
        auto *const rows = new QVBoxLayout(body);
        auto *const grid = new ThumbnailGrid(_theme, u"grid"_s, u"film"_s);
        rows->addSpacing(1000);
        rows->addWidget(grid);
        page.setWidget(body);
        page.resize(760, 560);
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        QSignalSpy visible(grid, &ThumbnailGrid::visibleIdsChanged);
        grid->setItems(videos(count));
        QCoreApplication::processEvents();
        QCOMPARE(grid->visibleIds(), QStringList()); // the page hides it
        page.verticalScrollBar()->setValue(page.verticalScrollBar()->maximum());
        QTRY_COMPARE(visible.size(), 1);
        const QStringList top = visible.last().first().toStringList();
        QCOMPARE(top.first(), u"0"_s);
        QVERIFY(top.size() < 24);
        const auto isThere = [&](int row) {
            return grid->viewport()->rect().intersects(grid->visualRect(grid->model()->index(row, 0)));
        };
        for (const QString &id : top) // what is named is what is there
            QVERIFY(isThere(id.toInt()));
        QVERIFY(!isThere(static_cast<int>(top.size())));
        // The wheel is the page's until somebody points into the grid.
        const auto turn = [&] {
            const QPoint middle = grid->viewport()->rect().center();
            QWheelEvent wheel(middle, grid->viewport()->mapToGlobal(middle), {}, {0, -120}, {}, {},
                              Qt::NoScrollPhase, false);
            wheel.setAccepted(false);
            QCoreApplication::sendEvent(grid->viewport(), &wheel);
            return grid->verticalScrollBar()->value();
        };
        QCOMPARE(turn(), 0);
        QTest::mouseMove(grid->viewport(), {5, 5});
        QTest::mouseMove(grid->viewport(), {60, 60});
        QTRY_VERIFY(turn() > 0);
        page.verticalScrollBar()->setValue(page.verticalScrollBar()->maximum() - 10);
        const int place = grid->verticalScrollBar()->value();
        QCOMPARE(turn(), place);
        grid->verticalScrollBar()->setValue(grid->verticalScrollBar()->maximum());
        QCOMPARE(visible.last().first().toStringList().last(), QString::number(count - 1));
    }

    void gridByKeyboardKeepsItsPlace()
    {
        ThumbnailGrid grid(_theme, u"grid"_s, u"film"_s);
        grid.resize(600, 400);
        grid.setItems(videos(300));
        grid.show();
        QVERIFY(QTest::qWaitForWindowExposed(&grid));
        grid.setCurrentIndex(grid.model()->index(99, 0));
        QSignalSpy wanted(&grid, &ThumbnailGrid::wanted);
        QTest::keyClick(&grid, Qt::Key_Right);
        QTest::keyClick(&grid, Qt::Key_Space);
        QCOMPARE(wanted, (QList<QVariantList>{{u"100"_s}}));
        QSignalSpy confirmed(&grid, &ThumbnailGrid::confirmed);
        QTest::keyClick(&grid, Qt::Key_Return);
        const QPoint cell = grid.visualRect(grid.currentIndex()).center();
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, cell);
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, cell);
        QCOMPARE(confirmed, (QList<QVariantList>{{u"100"_s}, {u"100"_s}}));
        const int place = grid.verticalScrollBar()->value();
        QVERIFY(place > 0);
        grid.setItems(videos(301));
        QCOMPARE(grid.currentIndex().row(), 100);
        QCOMPARE(grid.verticalScrollBar()->value(), place);
    }

private:
    FakeDesktopServices _desktop;
    FakeSymbols _symbols;
    Theme _theme{_desktop, _symbols};
};

QTEST_MAIN(ComponentsTest)
#include "ComponentsTest.moc"
