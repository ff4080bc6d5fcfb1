#pragma once

#include "foundation/Result.h"

#include <QCoroTask>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

// How a content comes back by itself.
struct WallpaperReturn {
    enum class Step { nothing, show, load };

    Step step = Step::nothing;
    QString what; // a file to show, or to load before that; empty where it takes none
    QStringList log;
    QString hint; // for the user, where the file is not there
};

// One kind of thing that the wallpaper can show. It puts its windows on the
// stage, which decides where they lie and when what is in them moves; it sets
// the still picture under them. Only the content that is on shows anything.
// Main thread.
class WallpaperContent : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // What is loaded, a path or an address; empty when nothing is.
    virtual QString chosen() const = 0;
    // Something is chosen, or was once, for whatever display.
    virtual bool canShow() const = 0;
    // It is finding out whether what was chosen can be shown.
    virtual bool isLoading() const = 0;

    // Takes what it is to show from now on, once it is known to be fit for it;
    // what shows already goes over to it. Nothing when a newer choice or stop()
    // has overtaken this one; the failure has the words for the user.
    virtual QCoro::Task<std::optional<Result<void>>> choose(const QString what) = 0;

    // What should come before show(): at most a second for each choice.
    virtual QCoro::Task<Result<void>> prepareToShow() = 0;
    // Shows it on every display that it is for, or anew. Without anything
    // chosen the failure says what to choose. A display whose part is not there
    // is told of by partFailed().
    virtual Result<void> show() = 0;
    // Goes on where the stage does; the reason is for the log.
    virtual void hardResume(const QString &reason) = 0;
    virtual void displaysChanged() = 0;
    // Nothing of it is on the desktop afterwards, nor in memory, and nothing is
    // on its way; what is chosen stays chosen.
    virtual void stop() = 0;

    // When the program starts, and when the user resumes what does not show.
    virtual WallpaperReturn returnAtLaunch() const = 0;
    virtual WallpaperReturn returnAtResume() const = 0;
    // Where the file to show is not there.
    virtual WallpaperReturn returnWithoutFile() const = 0;

Q_SIGNALS:
    void chosenChanged();
    void isLoadingChanged();
    // It cannot go on; for the user.
    void failed(const QString &message);
    // Some display's part of it could not go on and has been taken off.
    void partFailed(const QString &message);
};

} // namespace velbrix
