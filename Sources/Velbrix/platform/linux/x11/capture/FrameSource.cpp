#include "platform/linux/x11/capture/FrameSource.h"

using namespace Qt::StringLiterals;

namespace velbrix {

QString statusName(FrameStatus status)
{
    switch (status) {
    case FrameStatus::complete:
        return u"complete"_s;
    case FrameStatus::idle:
        return u"idle"_s;
    case FrameStatus::blank:
        return u"blank"_s;
    case FrameStatus::suspended:
        return u"suspended"_s;
    case FrameStatus::stopped:
        return u"stopped"_s;
    }
    return {};
}

} // namespace velbrix
