#include "support/FakeDesktopServices.h"
#include "support/FakeSymbols.h"
#include "views/Theme.h"
#include "views/components/PathField.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/Switch.h"
#include "views/components/ThumbnailGrid.h"
#include "views/components/ValueSlider.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <QWheelEvent>

using namespace Qt::StringLiterals;
using namespace velbrix;
using namespace velbrix::test;

class ComponentsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void switchOnlyAsks_data();
    void switchOnlyAsks();
    void switchKnobTakesItsTime();
    void sliderByKeyAndDoubleClick();
    void sliderLeavesTheWheelToThePage();
    void segmentsByArrowKeys();
    void pathFieldTakesAFolderOnly();
    void gridByKeyboard();

private:
    FakeDesktopServices _desktop;
    FakeSymbols _symbols;
    Theme _theme{_desktop, _symbols};
};

void ComponentsTest::switchOnlyAsks_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("click") << 0;
    QTest::newRow("space") << int(Qt::Key_Space);
    QTest::newRow("return") << int(Qt::Key_Return);
}

void ComponentsTest::switchOnlyAsks()
{
    QFETCH(int, key);
    Switch control(_theme, u"switch"_s);
    QSignalSpy wanted(&control, &Switch::wanted);
    if (key == 0)
        QTest::mouseClick(&control, Qt::LeftButton);
    else
        QTest::keyClick(&control, static_cast<Qt::Key>(key));
    QCOMPARE(wanted, (QList<QVariantList>{{true}}));
    QVERIFY(!control.isChecked());
    control.setOn(true);
    QVERIFY(control.isChecked());
}

void ComponentsTest::switchKnobTakesItsTime()
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

void ComponentsTest::sliderByKeyAndDoubleClick()
{
    ValueSlider slider(u"minutes"_s, {1, 120, 30, u"分钟"_s});
    connect(&slider, &ValueSlider::wanted, &slider, &ValueSlider::setValue);
    auto *const handle = slider.findChild<QSlider *>();
    QTest::keyClick(handle, Qt::Key_Right);
    QTest::keyClick(handle, Qt::Key_Right);
    QTest::keyClick(handle, Qt::Key_Left);
    QCOMPARE(slider.value(), 31);
    QCOMPARE(handle->accessibleDescription(), u"31 分钟"_s);
    slider.setValue(120);
    QTest::mouseDClick(handle, Qt::LeftButton);
    QCOMPARE(slider.value(), 30);
}

void ComponentsTest::sliderLeavesTheWheelToThePage()
{
    ValueSlider slider(u"minutes"_s, {1, 120, 30, u"分钟"_s});
    QWheelEvent wheel(QPointF(5, 5), QPointF(5, 5), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(slider.findChild<QSlider *>(), &wheel);
    QCOMPARE(slider.value(), 30);
    QVERIFY(!wheel.isAccepted());
}

void ComponentsTest::segmentsByArrowKeys()
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

void ComponentsTest::pathFieldTakesAFolderOnly()
{
    QTemporaryDir folder;
    PathField field(_theme, u"path"_s, u"选择输出目录"_s);
    QSignalSpy wanted(&field, &PathField::wanted);
    const auto drop = [&](const QList<QUrl> &urls) {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.setAccepted(false);
        QCoreApplication::sendEvent(&field, &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&field, &event);
        return true;
    };
    QVERIFY(!drop({QUrl(u"https://example.org/"_s)}));
    QVERIFY(!drop({QUrl::fromLocalFile(folder.filePath(u"absent"_s))}));
    QVERIFY(drop({QUrl::fromLocalFile(folder.path())}));
    QCOMPARE(wanted, (QList<QVariantList>{{folder.path()}}));
}

void ComponentsTest::gridByKeyboard()
{
    ThumbnailGrid grid(_theme, u"grid"_s, u"film"_s);
    grid.resize(600, 400);
    grid.setItems({{u"7"_s, u"甲"_s, {}}, {u"8"_s, u"乙"_s, {}}, {u"9"_s, u"丙"_s, {}}});
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    QSignalSpy wanted(&grid, &ThumbnailGrid::wanted);
    grid.setCurrentIndex(grid.model()->index(0, 0));
    QTest::keyClick(&grid, Qt::Key_Right);
    QTest::keyClick(&grid, Qt::Key_Space);
    QCOMPARE(wanted, (QList<QVariantList>{{u"8"_s}}));
}

QTEST_MAIN(ComponentsTest)
#include "ComponentsTest.moc"
