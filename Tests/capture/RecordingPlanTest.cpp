#include "capture/RecordingPlan.h"
#include "support/Test.h"

class RecordingPlanTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sizes()
    {
        using enum RecordMode;
        using enum RecordQuality;
        const auto row = [](const char *name, RecordMode mode, RecordQuality quality,
                            const CaptureGeometry &filter, QSize size) {
            const QSize made = captureSize(mode, quality, filter);
            const QString seen = u"%1: %2x%3"_s.arg(QLatin1String(name)).arg(made.width()).arg(made.height());
            QVERIFY2(made == size, qPrintable(seen));
        };
        const CaptureGeometry fiveK{{2560, 1440}, 2, {5120, 2880}};
        row("5K original", fullScreen, original, fiveK, {3840, 2160});
        row("5K half", fullScreen, half, fiveK, {2560, 1440});
        row("5K, longer side 1080", fullScreen, p1080, fiveK, {1080, 608});
        const QSize full{1920, 1080};
        const CaptureGeometry hd{full, 1, full};
        row("HD half", fullScreen, half, hd, {960, 540});
        row("upright 1080", fullScreen, p1080, {{1080, 1920}, 1, {1080, 1920}}, {608, 1080});
        row("small stays under 1080", fullScreen, p1080, {{1024, 768}, 1, {1024, 768}}, {1024, 768});
        row("huge half is capped", fullScreen, half, {{7680, 4320}, 1, {7680, 4320}}, {2560, 1440});

        row("scale below one is one", fullScreen, original, {{1280, 800}, 0.5, {1280, 800}}, {1280, 800});
        row("tiny rect: the display", fullScreen, original, {{80, 80}, 1, {1280, 800}}, {1280, 800});
        // An implausible scale: of a small or flat rect, then of one that fits unscaled.
        row("small rect: the display", fullScreen, original, {{1000, 700}, 4, full}, full);
        row("flat rect: the display", fullScreen, original, {{1800, 600}, 3, full}, full);
        row("fitting rect: unscaled", fullScreen, original, {full, 2, full}, full);
        row("half as much again is plausible", fullScreen, original, {{960, 540}, 3, full}, {2880, 1620});

        row("odd window", window, original, {{801, 601}, 1, full}, {800, 600});
        row("window, scaled", window, original, {{400.4, 300.3}, 2, full}, {800, 600});
        row("window without width", window, original, {{0, 300}, 1, full}, {2, 300});
        row("window of one pixel, half", window, half, {{1, 1}, 1, full}, {2, 2});
        row("side below four, half", window, half, {{3, 100}, 1, full}, {2, 50});
        row("long window is capped", window, original, {{8000, 400}, 1, full}, {3840, 192});
    }

    void displays()
    {
        const ShareableContent content{{{3, {}, false}, {4, {}, true}}, {}};
        const std::tuple<std::optional<quint32>, std::optional<quint32>> rows[] = {{{}, 4}, {3, 3}, {5, {}}};
        for (const auto &[wanted, shown] : rows) {
            RecordingRequest request;
            request.displayId = wanted;
            const auto filter = recordingFilter(request, content, 1);
            QCOMPARE(filter.has_value() ? std::optional(filter->displayId) : std::nullopt, shown);
        }
    }

    void bitRates()
    {
        using enum RecordQuality;
        QCOMPARE(videoBitRate(half, {1920, 1080}), 8'294'400);
        // The least, the most, and the most of what is not the original.
        QCOMPARE(videoBitRate(original, {640, 480}), 4'000'000);
        QCOMPARE(videoBitRate(original, {3840, 2400}), 40'000'000);
        QCOMPARE(videoBitRate(p1080, {2560, 2560}), 20'000'000);
    }
};

QTEST_GUILESS_MAIN(RecordingPlanTest)
#include "RecordingPlanTest.moc"
