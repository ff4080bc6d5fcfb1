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

void RateController::spent(long long bits, bool isKey, long long intervals)
{
    const auto spentBits = static_cast<double>(bits);
    const auto passed = static_cast<double>(std::max(1LL, intervals));
    _debt = std::max(_debt + spentBits - _bitsPerInterval * passed, -_bitRate / 2);
    if (isKey) {
        _keyBits = spentBits;
    } else {
        _otherBits += (spentBits - _otherBits) * 0.12;
    }
    // One key picture a second is expected to be big; its excess counts in the debt alone.
    const double sample = isKey ? spentBits / 8 : spentBits;
    _averageBits += (sample / passed - _averageBits) * 0.12;
    const double excess = std::log2(std::max(_averageBits, 1.0) / _bitsPerInterval) + _debt / _bitRate;
    _qp = std::clamp<double>(_qp + std::clamp(excess / 2, -0.3, 1.2), finestQp, coarsestQp);
}

} // namespace velbrix
