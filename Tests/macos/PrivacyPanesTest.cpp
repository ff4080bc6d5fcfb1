#include "platform/macos/system/PrivacyPanes.h"
#include "support/Test.h"

#include <QSet>
#include <QUrl>

class PrivacyPanesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void namesThePagesOfTheRecorder()
    {
        QCOMPARE(privacyPaneUrl(PrivacyPane::screenCapture),
                 u"x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"_s);
        QCOMPARE(privacyPaneUrl(PrivacyPane::microphone),
                 u"x-apple.systempreferences:com.apple.preference.security?Privacy_Microphone"_s);
    }

    void hasAPageOfItsOwnForEachPane()
    {
        QSet<QString> pages;
        for (const PrivacyPane pane :
             {PrivacyPane::screenCapture, PrivacyPane::microphone, PrivacyPane::camera,
              PrivacyPane::accessibility, PrivacyPane::notifications}) {
            const QUrl page(privacyPaneUrl(pane), QUrl::StrictMode);
            QVERIFY(page.isValid());
            QCOMPARE(page.scheme(), u"x-apple.systempreferences"_s);
            pages.insert(page.toString());
        }
        QCOMPARE(pages.size(), 5);
    }
};

QTEST_GUILESS_MAIN(PrivacyPanesTest)
#include "PrivacyPanesTest.moc"
