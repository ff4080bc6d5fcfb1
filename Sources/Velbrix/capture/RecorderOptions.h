#pragma once

#include <QString>

#include <array>
#include <optional>

namespace velbrix {

enum class RecordMode { fullScreen, window };
enum class RecordFPS { fps30 = 30, fps60 = 60, fps90 = 90, fps120 = 120, fps240 = 240 };
enum class RecordQuality { original, half, p1080 };

inline constexpr std::array allRecordModes = {RecordMode::fullScreen, RecordMode::window};
inline constexpr std::array allRecordFPS = {RecordFPS::fps30, RecordFPS::fps60, RecordFPS::fps90,
                                            RecordFPS::fps120, RecordFPS::fps240};
inline constexpr std::array allRecordQualities = {RecordQuality::original, RecordQuality::half,
                                                  RecordQuality::p1080};

// The texts that are stored and shown.
QString rawValue(RecordMode mode);
QString rawValue(RecordQuality quality);

std::optional<RecordMode> recordModeFromRawValue(const QString &text);
std::optional<RecordQuality> recordQualityFromRawValue(const QString &text);
std::optional<RecordFPS> recordFPSFromInteger(int framesPerSecond);

constexpr int framesPerSecond(RecordFPS fps)
{
    return static_cast<int>(fps);
}

// What the quality does to the picture's size; empty for the original.
QString qualityDescription(RecordQuality quality);

} // namespace velbrix
