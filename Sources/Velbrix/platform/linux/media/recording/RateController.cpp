#include "platform/linux/media/recording/RateController.h"

#include <algorithm>
#include <cmath>

namespace velbrix {

RateController::RateController(int bitRate, int framesPerSecond)
    : _bitRate(bitRate),
      _bitsPerInterval(static_cast<double>(bitRate) / framesPerSecond),
      _averageBits(_bitsPerInterval)
{
}

int RateController::nextQp(bool isKey) const
{
    const double finest = isKey ? finestKeyQp : finestQp;
    const double qp = isKey ? _qp - keyGain() : _qp;
    return static_cast<int>(std::lround(std::clamp<double>(qp, finest, coarsestQp)));
}

// Pictures that copy most of the key picture inherit its quality: the cheaper
// they are beside it, the better it should be.
double RateController::keyGain() const
{
    if (_keyBits <= 0)
        return 5;
    const double share = std::clamp(_otherBits / _keyBits, 0.0, 1.0);
    return 2 + 6 * (1 - share);
}

int RateController::restingQp() const
{
    if (_keyBits <= 0)
        return nextQp(true);
    // Six steps halve a picture.
    const double qp = _keyQp - 6 * std::log2(1.5 * _bitRate / _keyBits);
    return static_cast<int>(std::lround(std::clamp<double>(qp, finestRestingQp, coarsestQp)));
}

void RateController::spent(long long bits, int qp, bool isKey, long long intervals)
{
    const auto spentBits = static_cast<double>(bits);
    const auto passed = static_cast<double>(std::max(1LL, intervals));
    // What was overdrawn beyond two seconds is forgiven: the pictures
    // that follow are not to blame.
    _debt = std::clamp(_debt + spentBits - _bitsPerInterval * passed, -_bitRate / 2, 2 * _bitRate);
    if (isKey) {
        _keyBits = spentBits;
        _keyQp = qp;
    } else {
        _otherBits += (spentBits - _otherBits) * 0.12;
    }
    // One key picture a second is expected to be big; its excess counts in the debt alone.
    const double sample = isKey ? spentBits / 8 : spentBits;
    _averageBits += (sample / passed - _averageBits) * (1 - std::pow(0.88, passed));
    const double excess = std::log2(std::max(_averageBits, 1.0) / _bitsPerInterval) + _debt / _bitRate;
    // Down with the time, which a still screen has; up with the pictures, of
    // which one that was too big tells little about the next.
    const double step = std::clamp(excess / 2 * (excess < 0 ? passed : 1), -0.3 * passed, 1.2);
    _qp = std::clamp<double>(_qp + step, finestQp, coarsestQp);
}

} // namespace velbrix
