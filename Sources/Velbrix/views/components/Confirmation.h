#pragma once

#include "views/components/NoticeSheet.h"

#include <functional>

namespace velbrix {

// Asks over the whole window before something is done that matters. Esc and
// the cancel button leave everything as it is; afterwards the focus is where it
// was. A question that is still open gives way to a newer one and counts as
// cancelled.
class Confirmation final {
public:
    // `asker` is any widget of the window; the answers are dropped when it has gone.
    // The cancel button reads "取消" unless the words say otherwise.
    static void ask(const Theme &theme, QWidget *asker, NoticeSheet::Words words,
                    std::function<void()> confirmed, std::function<void()> cancelled = {});
};

} // namespace velbrix
