#pragma once

#include <QByteArrayList>
#include <QStringList>

namespace velbrix {

// The patterns of Archiver as zip's, which are for the whole path inside the
// archive and whose "*" passes slashes. Names match in either normal form.
QByteArrayList zipExcludes(const QStringList &excludes, const QString &topName);

} // namespace velbrix
