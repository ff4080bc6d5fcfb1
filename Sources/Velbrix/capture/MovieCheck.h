#pragma once

#include "capture/RecordingFile.h"
#include "foundation/Clock.h"
#include "platform/MovieFiles.h"

#include <QCoroTask>
#include <QStringList>

namespace velbrix {

struct MovieReport {
    bool exists = false;
    bool isPlayable = false;
    MovieVerdict verdict;
    QStringList remarks; // further lines for the log
};

// What a finished recording is worth. Waits at most three seconds for the
// answer; a movie that takes longer counts as one that does not play.
class MovieCheck {
public:
    MovieCheck(MovieFiles &movies, Clock &clock) : _movies(movies), _clock(clock) {}

    QCoro::Task<bool> plays(QString path);
    QCoro::Task<MovieReport> inspect(QString path, bool systemMode);

private:
    MovieFiles &_movies;
    Clock &_clock;
};

} // namespace velbrix
