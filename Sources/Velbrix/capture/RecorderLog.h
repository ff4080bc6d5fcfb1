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

public:
    using QObject::QObject;

    void setStatusMessage(const QString &text) { _statusMessage = text; }
    void setProgress(int frameCount, int elapsedSeconds)
    {
        _frameCountUI = frameCount;
        _elapsedSeconds = elapsedSeconds;
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
    void clear();

private:
    RecordLiveUI _live;
};

} // namespace velbrix
