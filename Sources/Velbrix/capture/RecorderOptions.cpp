#include "capture/RecorderOptions.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

template <typename Enum, std::size_t size>
std::optional<Enum> withRawValue(const std::array<Enum, size> &all, const QString &text)
{
    const auto found = std::ranges::find_if(all, [&](Enum value) { return rawValue(value) == text; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

} // namespace

QString rawValue(RecordMode mode)
{
    return mode == RecordMode::fullScreen ? u"全屏录制"_s : u"窗口录制"_s;
}

QString rawValue(RecordQuality quality)
{
    switch (quality) {
    case RecordQuality::original:
        return u"原画"_s;
    case RecordQuality::half:
        return u"二分之一"_s;
    case RecordQuality::p1080:
        return u"1080p"_s;
    }
    Q_UNREACHABLE();
}

std::optional<RecordMode> recordModeFromRawValue(const QString &text)
{
    return withRawValue(allRecordModes, text);
}

std::optional<RecordQuality> recordQualityFromRawValue(const QString &text)
{
    return withRawValue(allRecordQualities, text);
}

std::optional<RecordFPS> recordFPSFromInteger(int framesPerSecond)
{
    const auto fps = static_cast<RecordFPS>(framesPerSecond);
    return std::ranges::find(allRecordFPS, fps) == allRecordFPS.end() ? std::nullopt : std::optional(fps);
}

QString qualityDescription(RecordQuality quality)
{
    switch (quality) {
    case RecordQuality::original:
        return {};
    case RecordQuality::half:
        return u"宽高各减半，更省性能"_s;
    case RecordQuality::p1080:
        return u"最长边限制到 1080"_s;
    }
    Q_UNREACHABLE();
}

} // namespace velbrix
