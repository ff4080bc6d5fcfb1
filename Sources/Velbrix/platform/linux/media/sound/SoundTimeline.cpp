#include "platform/linux/media/sound/SoundTimeline.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace velbrix {
namespace {

constexpr std::size_t observedFragments = 10;

std::int64_t median(std::span<const std::int64_t> all)
{
    std::vector<std::int64_t> values(all.begin(), all.end());
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

} // namespace

SoundTimeline::SoundTimeline(int sampleRate, int channels)
    : _sampleRate(sampleRate), _channels(static_cast<std::size_t>(channels))
{
}

void SoundTimeline::begin(std::int64_t zero)
{
    _zero = zero;
}

void SoundTimeline::restart()
{
    settle();
    _isSettled = false;
    _deviations.clear();
}

std::int64_t SoundTimeline::samplePosition(std::int64_t stamp) const
{
    const double seconds = static_cast<double>(stamp - _zero) / 1e9;
    return static_cast<std::int64_t>(seconds * _sampleRate + (seconds < 0 ? -0.5 : 0.5));
}

void SoundTimeline::push(std::int64_t stamp, std::span<const float> samples)
{
    if (samples.size() < _channels)
        return;
    const std::int64_t position = samplePosition(stamp);
    if (_isSettled) {
        follow(position, samples);
        return;
    }
    _starts.push_back(position - static_cast<std::int64_t>(_held.size() / _channels));
    _held.insert(_held.end(), samples.begin(), samples.end());
    if (_starts.size() >= mostSettlingFragments ||
        (_starts.size() >= settlingFragments && agree(std::span(_starts).last(observedFragments))))
        settle();
}

void SoundTimeline::settle()
{
    if (_starts.empty())
        return;
    const auto newest = std::span(_starts).last(std::min(_starts.size(), observedFragments));
    const std::int64_t start = median(agree(newest) ? newest : _starts);
    const std::vector<float> held = std::exchange(_held, {});
    _starts.clear();
    _isSettled = true;
    place(start, held);
}

void SoundTimeline::follow(std::int64_t position, std::span<const float> samples)
{
    _deviations.push_back(position - _next);
    if (_deviations.size() > observedFragments)
        _deviations.erase(_deviations.begin());
    const std::int64_t off = deviation();
    const std::int64_t jump = _sampleRate / 50;   // 20 ms
    const std::int64_t drift = _sampleRate / 500; // 2 ms
    if (std::abs(off) > jump) {
        _deviations.clear();
        place(_next + off, samples);
    } else if (off > drift) {
        place(_next, samples);
        place(_next, samples.last(_channels));
    } else if (off < -drift && samples.size() > _channels) {
        place(_next, samples.first(samples.size() - _channels));
    } else {
        place(_next, samples);
    }
}

// Zero while there is no telling.
std::int64_t SoundTimeline::deviation() const
{
    return agree(_deviations) ? median(_deviations) : 0;
}

// But for one outlier on each side. Whoever followed stamps that still slide
// would cut the sound into pieces.
bool SoundTimeline::agree(std::span<const std::int64_t> positions) const
{
    if (positions.size() < observedFragments)
        return false;
    std::vector<std::int64_t> sorted(positions.begin(), positions.end());
    std::ranges::sort(sorted);
    return sorted[sorted.size() - 2] - sorted[1] <= _sampleRate / 200; // 5 ms
}

void SoundTimeline::place(std::int64_t position, std::span<const float> samples)
{
    const auto count = static_cast<std::int64_t>(samples.size() / _channels);
    _next = position + count;
    if (_next <= _position)
        return;
    if (position > _position)
        appendSilence(position - _position);
    const std::int64_t skipped = _position - position;
    append(samples.subspan(static_cast<std::size_t>(skipped) * _channels));
}

void SoundTimeline::append(std::span<const float> samples)
{
    _ready.insert(_ready.end(), samples.begin(), samples.end());
    _position += static_cast<std::int64_t>(samples.size() / _channels);
}

void SoundTimeline::appendSilence(std::int64_t count)
{
    _ready.insert(_ready.end(), static_cast<std::size_t>(count) * _channels, 0.0F);
    _position += count;
}

void SoundTimeline::fillUntil(std::int64_t moment)
{
    if (const std::int64_t missing = samplePosition(moment) - _position; missing > 0)
        appendSilence(missing);
}

std::vector<float> SoundTimeline::take()
{
    return std::exchange(_ready, {});
}

} // namespace velbrix
