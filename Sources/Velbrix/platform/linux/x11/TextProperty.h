#pragma once

#include <QByteArray>
#include <QString>

namespace velbrix {

enum class TextEncoding { utf8, latin1, compound };

// The text of a window property. Compound text (X Consortium, Compound Text
// Encoding) is ISO 2022 with Latin-1 as its start: characters of sets that
// nobody uses for titles any more become "�".
QString decodeText(const QByteArray &bytes, TextEncoding encoding);

} // namespace velbrix
