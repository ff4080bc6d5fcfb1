#pragma once

#include "capture/RecordingFile.h"
#include "foundation/Clock.h"
#include "platform/MovieFiles.h"

#include <QCoroTask>
#include <QStringList>

#include <optional>

namespace velbrix {

struct MovieReport {
    bool exists = false;
    bool isPlayable = false; // false also when nobody could tell
    MovieVerdict verdict;
    QStringList remarks; // further lines for the log
};

// What a finished recording is worth. Waits at most three seconds for the
// answer.
class MovieCheck {
public:
    MovieCheck(MovieFiles &movies, Clock &clock) : _movies(movies), _clock(clock) {}

    // Nothing when it could not be found out.
    QCoro::Task<std::optional<bool>> plays(QString path);
    QCoro::Task<MovieReport> inspect(QString path, bool systemMode);

private:
    MovieFiles &_movies;
    Clock &_clock;
};

} // namespace velbrix
