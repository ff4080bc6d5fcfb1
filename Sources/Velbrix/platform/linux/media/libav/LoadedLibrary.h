#pragma once

#include <QLibrary>

namespace velbrix {

// Libraries that are loaded when they are first asked for, not with the program.

// False, and the function null, where the library has none of that name.
template <typename Function> bool resolve(QLibrary &library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    return function != nullptr;
}

// For the list of a table's functions: "library.load() LIST(VELB_RESOLVE)".
#define VELB_RESOLVE(name) &&resolve(library, #name, functions.name)

// The table that the first call fills; null where something was missing.
template <typename Functions> const Functions *loadedOnce(bool (*load)(Functions &))
{
    static Functions functions;
    static const bool isLoaded = load(functions);
    return isLoaded ? &functions : nullptr;
}

} // namespace velbrix
