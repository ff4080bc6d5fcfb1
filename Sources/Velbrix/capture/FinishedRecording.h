#pragma once

#include "capture/RecordingFile.h"
#include "foundation/Cancellation.h"
#include "foundation/Published.h"

#include <QCoroTask>
#include <QImage>
#include <QObject>

namespace velbrix {

class MediaProbe;
class RecordingSession;
class TrashCan;

// The file of the last recording, from its end until the next one starts: what
// it shows, where it is, and what the user does with it. Others may move it at
// any time.
class FinishedRecording final : public QObject {
    Q_OBJECT

public:
    enum class Place {
        none,
        there,
        missing, // renamed, moved or removed by others
        trashed,
    };

    VELB_PUBLISHED(FinishedRecording, QString, path) // follows a renaming here; empty when there is none
    VELB_PUBLISHED(FinishedRecording, Place, place, Place::none)
    // A picture out of it; null while there is none, and when it shows nothing.
    VELB_PUBLISHED(FinishedRecording, QImage, thumbnail)
    // Why the last action did not succeed; empty when it did.
    VELB_PUBLISHED(FinishedRecording, QString, problem)
    VELB_PUBLISHED(FinishedRecording, bool, canPutBack, false)

public:
    FinishedRecording(RecordingSession &session, MediaProbe &probe, TrashCan &trash,
                      QObject *parent = nullptr);
    ~FinishedRecording() override;

    // Whether it is there at this moment.
    QCoro::Task<bool> look();
    // The name goes without the extension.
    void rename(const QString &name);
    void moveToTrash();
    void putBack();

private:
    // What the last outcome is not about is stopped and forgotten.
    void take(const RecordingOutcome &outcome);
    QCoro::Task<> findThumbnail(double seconds);
    QCoro::Task<> runRename(QString name);
    QCoro::Task<> runMoveToTrash();
    QCoro::Task<> runPutBack();
    bool begin();

    MediaProbe &_probe;
    TrashCan &_trash;
    Cancellation _cancellation;
    QString _trashed;     // where it lies in the trash, if the host tells
    bool _isBusy = false; // one action at a time
};

} // namespace velbrix
