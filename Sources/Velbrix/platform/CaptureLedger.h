#pragma once

#include <QHash>
#include <QString>

#include <mutex>
#include <optional>

namespace velbrix {

// The counters of one recording at one moment. Times in seconds on the
// stream's own clock.
struct CaptureCounters {
    bool sessionStarted = false;      // a first picture was written
    bool audioSessionStarted = false; // a first sound was written
    int callbackCount = 0;
    int writtenFrameCount = 0;
    int audioSampleCount = 0;
    int micSampleCount = 0;
    QHash<QString, int> statusHistogram; // frame status name to count
    std::optional<double> firstPTS;      // of the first and the last written frame
    std::optional<double> lastPTS;

    bool operator==(const CaptureCounters &) const = default;
};

// What the sample threads of a recording have to agree on with the main
// thread. Every operation is safe on any thread.
class CaptureLedger {
public:
    // Every delivery, whatever it carries.
    void noteCallback();
    // "complete", "idle", "blank", "suspended", "started", "stopped".
    void noteFrameStatus(const QString &status);
    void noteWrittenFrame(double presentationTime);
    // Sound counts only after the first picture. False: too early, drop it.
    bool noteSystemAudio();
    bool noteMicrophone();
    // In system mode nothing is written here, but everything is counted.
    void countSystemAudio();
    void countMicrophone();

    CaptureCounters counters() const;

private:
    mutable std::mutex _stateLock;
    CaptureCounters _counters;
};

} // namespace velbrix
