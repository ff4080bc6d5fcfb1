#include "wallpaper/StaticDesktop.h"

#include "support/CapturedLog.h"
#include "support/FakeDesktop.h"
#include "support/SettingsRig.h"
#include "support/Test.h"
#include "wallpaper/PictureFiles.h"

#include <QJsonArray>

namespace {

const QString originalKey = u"Velbrix_WallpaperOriginalDesktopPicture"_s;

QImage filled(QColor color)
{
    QImage image(32, 18, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

struct Rig : SettingsRig {
    QTemporaryDir home;
    QString folder = home.filePath(u"我的 数据/StaticDesktop"_s);
    FakeDesktopPicture picture{clock};
    StaticDesktop desktop{picture, store, clock, folder};
    CapturedLog log;

    QStringList files() const { return entriesOf(folder); }
    // Both return when it is done.
    void set(QColor color)
    {
        clock.advance(1ms);
        desktop.setStaticDesktop(filled(color));
        QTRY_VERIFY(!desktop.isWorking());
    }
    void putBack()
    {
        desktop.putBack();
        QTRY_VERIFY(!desktop.isWorking());
    }
};

} // namespace

class StaticDesktopTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sixPicturesRemain()
    {
        QTemporaryDir home;
        const QString folder = home.filePath(u"new/folder"_s);
        for (qint64 stamp = 1; stamp <= 7; ++stamp)
            QCOMPARE(writePicture(filled(Qt::red), folder, stamp),
                     Result<QString>(folder + u"/static_%1.jpg"_s.arg(stamp)));
        writeFile(folder + u"/own.png"_s);
        writeFile(folder + u"/STATIC_1.JPG"_s); // its age is that of the file: the newest
        // The clock went back: what was just written stays all the same.
        const auto early = writePicture(filled(Qt::red), folder, 0);
        QVERIFY(QFile::exists(early.value()) && QFile::remove(early.value()));
        QVERIFY(writePicture(filled(Qt::red), folder, 8));
        QCOMPARE(entriesOf(folder).join(u' '), u"own.png STATIC_1.JPG static_4.jpg static_5.jpg "
                                               "static_6.jpg static_7.jpg static_8.jpg"_s);
        // Two in the same millisecond are two.
        QCOMPARE(writePicture(filled(Qt::blue), folder, 8), Result<QString>(folder + u"/static_9.jpg"_s));
        const QImage read(folder + u"/static_9.jpg"_s);
        QCOMPARE(read.size(), QSize(32, 18));
        QVERIFY(qBlue(read.pixel(5, 5)) > 240 && qRed(read.pixel(5, 5)) < 15);
        const QString inFile = folder + u"/own.png/inside"_s;
        QVERIFY(errorText(writePicture(filled(Qt::red), inFile, 1))
                    .startsWith(u"无法创建文件夹 %1："_s.arg(inFile)));
    }

    void theUsersPictureComesBack()
    {
        Rig rig;
        rig.set(Qt::red);
        rig.set(Qt::green);
        QCOMPARE(rig.files().size(), 2);
        QCOMPARE(rig.picture.calls.last(), u"set "_s + rig.folder + u'/' + rig.files().last());
        // On disk: a crash must find it.
        const QJsonArray stored = rig.disk.stored.value(originalKey)[u"path"_s].toArray();
        QCOMPARE(stored[0][u"own"_s].toString(), u"/own/picture.png"_s);
        rig.putBack();
        QCOMPARE(rig.picture.calls.last(), u"restore {\"path\":\"/own/picture.png\"}"_s);
        QVERIFY(!rig.store.contains(originalKey));
        rig.desktop.putBack();
        QVERIFY(!rig.desktop.isWorking());

        // One that they choose meanwhile is theirs.
        rig.set(Qt::red);
        rig.picture.now = QJsonObject{{u"path"_s, u"/newer.png"_s}};
        rig.set(Qt::green);
        rig.putBack();
        QCOMPARE(rig.picture.calls.last(), u"restore {\"path\":\"/newer.png\"}"_s);

        rig.set(Qt::red);
        rig.picture.now = QJsonObject{{u"path"_s, u"/newest.png"_s}};
        rig.putBack();
        QCOMPARE(rig.picture.calls.last(), u"current"_s);
        QVERIFY(!rig.store.contains(originalKey));

        // A program that takes the desktop over is remembered, too.
        rig.set(Qt::red);
        rig.picture.now->insert(u"manager"_s, u"/its.png"_s);
        rig.set(Qt::green);
        rig.picture.now->insert(u"manager"_s, *rig.picture.now->find(u"path"_s));
        rig.picture.restoreAnswer = QStringList{u"/its.png"_s};
        rig.putBack();
        QCOMPARE(rig.picture.calls.last(), u"restore {\"manager\":\"/its.png\",\"path\":\"/newest.png\"}"_s);
        QCOMPARE(rig.desktop.problem(), u"原来的桌面图片已不在原处，桌面改用了默认图片：/its.png"_s);
    }

    void everySpaceGetsItsOwnPictureBack()
    {
        Rig rig;
        rig.picture.hasSpaces = true;
        const auto restored = [&rig] { return rig.picture.calls.last(); };
        const auto space = [](const QString &path) { return QJsonObject{{u"path"_s, path}}; };
        rig.set(Qt::red);
        rig.set(Qt::green);
        const QJsonObject first = *rig.picture.now;
        rig.picture.show(space(u"/second.png"_s));
        rig.set(Qt::blue);
        rig.putBack();
        QCOMPARE(restored(), u"restore {\"path\":\"/second.png\"}"_s);
        // The other one is out of view until the user goes there.
        rig.picture.show(first);
        QTRY_VERIFY(!rig.desktop.isWorking());
        QCOMPARE(restored(), u"restore {\"path\":\"/own/picture.png\"}"_s);
        QVERIFY(!rig.store.contains(originalKey));
    }

    void onlyTheNewestWishIsCarriedOut()
    {
        Rig rig;
        rig.picture.delay = 1s;
        for (QColor color : {Qt::red, Qt::green, Qt::blue})
            rig.desktop.setStaticDesktop(filled(color));
        rig.desktop.putBack();
        QTRY_VERIFY((rig.clock.advance(1s), !rig.desktop.isWorking()));
        QCOMPARE(rig.files().size(), 1);
        QCOMPARE(rig.picture.calls.size(), 4);
        QVERIFY(rig.picture.calls.last().startsWith(u"restore "_s));
        QCOMPARE(rig.picture.overlaps, 0);
    }

    void ourOwnPictureIsNobodysOriginal()
    {
        Rig rig;
        const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(rig.folder, "/"));
        const std::initializer_list<QJsonValue> ours = {QJsonArray{rig.folder + u"/static_1.jpg"_s},
                                                        u"file://"_s + encoded + u"/static_1.jpg"_s,
                                                        QJsonObject{{u"ours"_s, true}}};
        for (const auto &entry : ours) {
            rig.picture.now = QJsonObject{{u"place"_s, entry}};
            rig.picture.calls.clear();
            rig.set(Qt::red);
            QVERIFY(!rig.store.contains(originalKey));
            QCOMPARE(rig.picture.calls.size(), 2);
        }
    }

    void failuresAreLoggedAndTriedAgain()
    {
        Rig rig;
        // What cannot be remembered is not replaced.
        const auto own = std::exchange(rig.picture.now, failure(u"桌面没有回答"_s));
        rig.set(Qt::red);
        QCOMPARE(rig.picture.calls, QStringList{u"current"_s});
        QCOMPARE(rig.log.take(u"Wallpaper"_s), QStringList{u"设置桌面失败:桌面没有回答"_s});
        rig.picture.now = own;
        rig.picture.setAnswer = failure(u"拒绝"_s);
        rig.set(Qt::red);
        QCOMPARE(rig.log.take(u"Wallpaper"_s), QStringList{u"设置桌面失败:拒绝"_s});
        rig.picture.setAnswer = {};
        rig.set(Qt::red);
        rig.picture.restoreAnswer = failure(u"还是不行"_s);
        rig.putBack();
        QVERIFY(rig.store.contains(originalKey));
        QVERIFY(rig.desktop.problem().contains(u"还是不行"_s));
        rig.picture.restoreAnswer = {};
        rig.putBack();
        QVERIFY(!rig.store.contains(originalKey));
    }
};

QTEST_GUILESS_MAIN(StaticDesktopTest)
#include "StaticDesktopTest.moc"
