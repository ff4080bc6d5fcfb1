#include "platform/linux/media/recording/MovieRecorder.h"
#include "platform/linux/x11/capture/X11ScreenCapture.h"

#include "support/PaintedWindow.h"
#include "support/Test.h"

#include <QGuiApplication>
#include <QProcess>
#include <QScreen>

namespace {

// A recording into a real file.
struct MovieRig {
    MovieRig()
    {
        const auto content = QCoro::waitFor(capture.shareableContent());
        filter.displayId = content->displays.first().displayId;
    }

    Result<void> start()
    {
        const auto geometry = capture.geometry(filter);
        if (!geometry)
            return std::unexpected(geometry.error());
        StreamConfiguration configuration;
        configuration.width = geometry->contentSize.toSize().width() & ~1;
        configuration.height = geometry->contentSize.toSize().height() & ~1;
        configuration.framesPerSecond = 30;
        configuration.showsCursor = false;
        const CaptureObserver observer{.streamStopped = [this](Failure why) { stops << why.message; },
                                       .warning = {},
                                       .recordingStarted = {},
                                       .recordingFailed = {},
                                       .recordingFinished = {}};
        auto made = capture.makeSession(filter, configuration, observer);
        if (!made)
            return std::unexpected(made.error());
        session = std::move(*made);
        MovieSettings settings;
        settings.path = folder.filePath(u"movie.mp4"_s);
        settings.width = configuration.width;
        settings.height = configuration.height;
        settings.framesPerSecond = 30;
        settings.videoBitRate = 20'000'000;
        settings.keyFrameInterval = 30;
        if (const auto tracks = session->openWriter(settings); !tracks)
            return std::unexpected(tracks.error());
        if (const auto added = session->addOutput(CaptureOutput::screen); !added)
            return added;
        return QCoro::waitFor(session->startCapture());
    }

    Result<void> stop()
    {
        if (const auto stopped = QCoro::waitFor(session->stopCapture()); !stopped)
            return stopped;
        return QCoro::waitFor(session->finishWriting());
    }

    int written() const { return session->ledger().counters().writtenFrameCount; }

    // As another program decodes it.
    QImage lastPicture() const
    {
        const QString picture = folder.filePath(u"last.png"_s);
        QProcess ffmpeg;
        ffmpeg.start(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, folder.filePath(u"movie.mp4"_s),
                                   u"-fps_mode"_s, u"passthrough"_s, u"-update"_s, u"1"_s, picture});
        ffmpeg.waitForFinished();
        return QImage(picture);
    }

    QTemporaryDir folder;
    X11ScreenCapture capture{&MovieRecorder::create};
    CaptureFilter filter;
    std::unique_ptr<CaptureSession> session;
    QStringList stops;
};

double meanDifference(const QImage &a, const QImage &b)
{
    qint64 sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            sum += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y)));
    }
    return static_cast<double>(sum) / (a.width() * a.height());
}

} // namespace

class RecordedMovieTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsWhatTheScreenShowed()
    {
        PaintedWindow window(u"Editor"_s, QRect(150, 120, 501, 333), QColor(0, 160, 0));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        MovieRig rig;
        QVERIFY(rig.start());
        QScreen *const screen = QGuiApplication::primaryScreen();
        window.repaint(QColor(40, 60, 200));
        QTRY_COMPARE(screen->grabWindow(0, 400, 300, 1, 1).toImage().pixelColor(0, 0), QColor(40, 60, 200));
        QTRY_VERIFY(rig.written() >= 2);
        const QImage shot = screen->grabWindow(0).toImage();
        QVERIFY(rig.stop());
        const QImage last = rig.lastPicture();
        QCOMPARE(last.size(), shot.size());
        QVERIFY2(meanDifference(last, shot) < 1.0, qPrintable(QString::number(meanDifference(last, shot))));
        const QColor middle = last.pixelColor(400, 300);
        QVERIFY2(std::abs(middle.red() - 40) < 8 && std::abs(middle.green() - 60) < 8 &&
                     std::abs(middle.blue() - 200) < 8,
                 qPrintable(middle.name()));
    }

    void staysAfterItsWindow()
    {
        auto window =
            std::make_unique<PaintedWindow>(u"Editor"_s, QRect(150, 120, 300, 200), QColor(200, 0, 0));
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        MovieRig rig;
        rig.filter.windowId = window->id();
        QVERIFY(rig.start());
        QTRY_VERIFY(rig.written() >= 1);
        window.reset();
        QTRY_COMPARE(rig.stops, QStringList{u"窗口已关闭"_s});
        QVERIFY(rig.stop());
        const QColor middle = rig.lastPicture().pixelColor(150, 120);
        QVERIFY2(std::abs(middle.red() - 200) < 8 && middle.green() < 8 && middle.blue() < 8,
                 qPrintable(middle.name()));
    }
};

QTEST_MAIN(RecordedMovieTest)
#include "RecordedMovieTest.moc"
