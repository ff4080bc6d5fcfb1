#include "wallpaper/ChosenFiles.h"

#include <QPointer>

namespace velbrix {

ChosenFiles::ChosenFiles(MediaProbe &probe, QObject *parent) : QObject(parent), _probe(probe) {}

void ChosenFiles::lookOnce(const QString &path)
{
    if (!_asked.contains(path))
        look(path);
}

QCoro::Task<Result<bool>> ChosenFiles::look(const QString path)
{
    const QPointer self(this);
    _asked.insert(path);
    auto looking = _probe.isFile(path);
    const Result<bool> found = co_await looking;
    const bool isFound = found.value_or(false);
    if (self && (!_found.contains(path) || _found.value(path) != isFound)) {
        _found.insert(path, isFound);
        Q_EMIT changed();
    }
    co_return std::as_const(found);
}

} // namespace velbrix
