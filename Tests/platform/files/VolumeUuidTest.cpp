#include "platform/linux/files/VolumeUuid.h"

#include "support/Test.h"

#include <QDir>
#include <QFile>
#include <QStorageInfo>

class VolumeUuidTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isTheNameOfTheLinkToTheDevice()
    {
        const QTemporaryDir folder;
        const QString device = QString::fromUtf8(QStorageInfo(folder.path()).device());
        const auto link = [&](const QString &to, const QString &name) {
            return QFile::link(to, folder.filePath(name));
        };
        QVERIFY(link(u"/dev/null"_s, u"1111-2222"_s) && link(u"/nowhere"_s, u"3333-4444"_s));
        QCOMPARE(volumeIdentity(folder.path(), folder.path()), QString());
        const bool isDevice = QFile::exists(device); // not within a container
        QVERIFY(link(device, u"5555-6666"_s));
        QCOMPARE(volumeIdentity(folder.path(), folder.path()), isDevice ? u"5555-6666"_s : QString());
    }
};

QTEST_GUILESS_MAIN(VolumeUuidTest)
#include "VolumeUuidTest.moc"
