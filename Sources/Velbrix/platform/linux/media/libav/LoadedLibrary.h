#pragma once

#include <QLibrary>

namespace velbrix {

// False, and the function null, where the library has none of that name.
template <typename Function> bool resolve(QLibrary &library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    return function != nullptr;
}

} // namespace velbrix
