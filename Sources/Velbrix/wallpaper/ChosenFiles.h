#pragma once

#include "platform/MediaProbe.h"

#include <QHash>
#include <QObject>
#include <QSet>

namespace velbrix {

// Which of the chosen files can be found, as of the last look at each. Whoever
// only wants to know does not touch the disk. Main thread.
class ChosenFiles final : public QObject {
    Q_OBJECT

public:
    explicit ChosenFiles(MediaProbe &probe, QObject *parent = nullptr);

    // Looks now; a failure where the disk does not answer in time.
    QCoro::Task<Result<bool>> look(const QString path);
    // Unless somebody has looked already, or is looking.
    void lookOnce(const QString &path);
    // Was found, or was looked for in vain. Neither where nobody has looked yet.
    bool isFound(const QString &path) const { return _found.value(path, false); }
    bool isMissing(const QString &path) const { return !_found.value(path, true); }

Q_SIGNALS:
    void changed();

private:
    MediaProbe &_probe;
    QHash<QString, bool> _found;
    QSet<QString> _asked;
};

} // namespace velbrix
