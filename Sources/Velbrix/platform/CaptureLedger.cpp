#include "platform/CaptureLedger.h"

namespace velbrix {

void CaptureLedger::noteCallback()
{
    const std::scoped_lock lock(_stateLock);
    ++_counters.callbackCount;
}

void CaptureLedger::noteFrameStatus(const QString &status)
{
    const std::scoped_lock lock(_stateLock);
    ++_counters.statusHistogram[status];
}

void CaptureLedger::noteWrittenFrame(double presentationTime)
{
    const std::scoped_lock lock(_stateLock);
    _counters.sessionStarted = true;
    if (!_counters.firstPTS)
        _counters.firstPTS = presentationTime;
    _counters.lastPTS = presentationTime;
    ++_counters.writtenFrameCount;
}

bool CaptureLedger::noteSystemAudio()
{
    const std::scoped_lock lock(_stateLock);
    if (!_counters.sessionStarted)
        return false;
    _counters.audioSessionStarted = true;
    ++_counters.audioSampleCount;
    return true;
}

bool CaptureLedger::noteMicrophone()
{
    const std::scoped_lock lock(_stateLock);
    if (!_counters.sessionStarted)
        return false;
    _counters.audioSessionStarted = true;
    ++_counters.micSampleCount;
    return true;
}

void CaptureLedger::countSystemAudio()
{
    const std::scoped_lock lock(_stateLock);
    ++_counters.audioSampleCount;
}

void CaptureLedger::countMicrophone()
{
    const std::scoped_lock lock(_stateLock);
    ++_counters.micSampleCount;
}

CaptureCounters CaptureLedger::counters() const
{
    const std::scoped_lock lock(_stateLock);
    CaptureCounters copy = _counters;
    // Shares nothing with what the sample threads go on changing.
    copy.statusHistogram.detach();
    return copy;
}

} // namespace velbrix
