#include "platform/macos/system/PrivacyPanes.h"

using namespace Qt::StringLiterals;

namespace velbrix {

QString privacyPaneUrl(PrivacyPane pane)
{
    const QString security = u"x-apple.systempreferences:com.apple.preference.security?"_s;
    switch (pane) {
    case PrivacyPane::screenCapture:
        return security + u"Privacy_ScreenCapture"_s;
    case PrivacyPane::microphone:
        return security + u"Privacy_Microphone"_s;
    case PrivacyPane::camera:
        return security + u"Privacy_Camera"_s;
    case PrivacyPane::accessibility:
        return security + u"Privacy_Accessibility"_s;
    case PrivacyPane::notifications:
        return u"x-apple.systempreferences:com.apple.preference.notifications"_s;
    }
    Q_UNREACHABLE();
}

} // namespace velbrix
