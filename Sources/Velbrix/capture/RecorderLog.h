#pragma once

#include "foundation/Published.h"

#include <QObject>
#include <QStringList>

namespace velbrix {

// What changes many times a second while a recording runs, apart from the
// rest, so that only the live badge is redrawn.
class RecordLiveUI final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(RecordLiveUI, QString, statusMessage)
    VELB_PUBLISHED(RecordLiveUI, int, frameCountUI, 0)
    VELB_PUBLISHED(RecordLiveUI, int, elapsedSeconds, 0)
    VELB_PUBLISHED(RecordLiveUI, qint64, fileSize, 0) // bytes
    // What the recording lacks, in words for the user; empty while all is well.
    VELB_PUBLISHED(RecordLiveUI, QString, warning)

public:
    using QObject::QObject;

    void setStatusMessage(const QString &text) { _statusMessage = text; }
    void setProgress(int frameCount, int elapsedSeconds)
    {
        _frameCountUI = frameCount;
        _elapsedSeconds = elapsedSeconds;
    }
    void setFileSize(qint64 bytes) { _fileSize = bytes; }
    void setWarning(const QString &text) { _warning = text; }
    // For a new recording.
    void reset()
    {
        setProgress(0, 0);
        setFileSize(0);
        setWarning({});
    }
};

// The recorder's visible log: the only report of what it does. Keeps the last
// lines; the newest is the live status as well.
class RecorderLog final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(RecorderLog, QStringList, logLines)

public:
    static constexpr int capacity = 500;

    explicit RecorderLog(QObject *parent = nullptr) : QObject(parent) {}

    RecordLiveUI &live() { return _live; }
    void append(const QString &line);
    // A line that the live display shows as well.
    void warn(const QString &text);
    void clear();

private:
    RecordLiveUI _live;
};

} // namespace velbrix
