#pragma once

#include <QtGlobal>

namespace velbrix {

// 'VBHK' and the like, first character in the highest byte.
consteval quint32 fourCharCode(const char (&text)[5])
{
    quint32 code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(text[i]);
    return code;
}

} // namespace velbrix
