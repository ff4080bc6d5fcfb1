#include "app/HostText.h"

using namespace Qt::StringLiterals;

namespace velbrix {

QString hostText(QString text, HostFamily family)
{
    if (family == HostFamily::macos)
        return text;
    // Between Chinese words a foreign one stands free, a Chinese one does not.
    for (const auto &[mac, here] : {std::pair(u"macOS"_s, u"系统"_s), {u"Dock"_s, u"面板"_s}}) {
        text.replace(u' ' + mac + u' ', here);
        text.replace(u' ' + mac, here);
        text.replace(mac, here);
    }
    return text;
}

} // namespace velbrix
