#pragma once

namespace velbrix {

// Chooses the quantiser of each picture so that the average bit rate is kept
// over about a second, while a still screen is drawn sharp. Pure.
class RateController {
public:
    // QP: 20 looks like the screen itself, 46 is the worst that is still read.
    static constexpr int finestQp = 20;
    static constexpr int coarsestQp = 46;
    static constexpr int finestKeyQp = 15;
    static constexpr int finestRestingQp = 4;

    RateController(int bitRate, int framesPerSecond);

    int nextQp(bool isKey) const;
    // Of a key picture that is going to stay: it may take more than a second
    // has, as nothing else will.
    int restingQp() const;
    // What the picture took at that quantiser, and the frame intervals since
    // the one before.
    void spent(long long bits, int qp, bool isKey, long long intervals);

private:
    double keyGain() const;

    const double _bitRate;
    const double _bitsPerInterval;
    double _qp = 26;
    double _averageBits; // per interval, key pictures spread out
    double _debt = 0;    // bits over the allowance, of a bucket of one second
    double _keyBits = 0; // of the last key picture
    int _keyQp = 0;
    double _otherBits = 0; // of the pictures since then, on average
};

} // namespace velbrix
