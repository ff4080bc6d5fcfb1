#include "platform/macos/desktop/ScreenPictures.h"
#include "support/Test.h"

#include <QJsonDocument>

namespace {

const ScreenPicture plain{u"/图片/海.heic"_s, std::nullopt, std::nullopt, std::nullopt};
const ScreenPicture fitted{u"/b.png"_s, 3, false, QColor(10, 20, 30, 40)};

} // namespace

class ScreenPicturesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void survivesBeingStored()
    {
        const ScreenPictures pictures{{1, plain}, {4128829, fitted}};
        const QByteArray stored = QJsonDocument(toJson(pictures)).toJson();
        QCOMPARE(screenPictures(QJsonDocument::fromJson(stored).object()), pictures);
    }

    void leavesOutWhatItCannotRead()
    {
        const QJsonObject json{{u"1"_s, QJsonObject{{u"path"_s, plain.path}, {u"clips"_s, 7}}},
                               {u"2"_s, u"text"_s},
                               {u"x"_s, QJsonObject{{u"path"_s, u"/c.png"_s}}}};
        QCOMPARE(screenPictures(json), (ScreenPictures{{1, plain}}));
    }

    void leavesAnUnknownDisplayAlone()
    {
        ScreenPictures pictures{{1, plain}, {2, fitted}};
        QCOMPARE(pictureFor(pictures, 2), fitted);
        QVERIFY(!pictureFor(pictures, 9));
        const auto isThere = [](const QString &path) { return path == plain.path; };
        QCOMPARE(replaceGone(pictures, u"/default.heic"_s, isThere), QStringList{fitted.path});
        QCOMPARE(pictures[1], plain);
        QCOMPARE(pictures[2].path, u"/default.heic"_s);
    }
};

QTEST_GUILESS_MAIN(ScreenPicturesTest)
#include "ScreenPicturesTest.moc"
