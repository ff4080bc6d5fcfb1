#include "platform/linux/media/mp4/MovieTrack.h"

namespace velbrix {

Bytes h264SampleEntry(int width, int height, std::span<const std::uint8_t> sps,
                      std::span<const std::uint8_t> pps)
{
    BoxWriter w;
    w.box("avc1", [&] {
        w.zeros(6);
        w.u16(1); // data reference
        w.zeros(16);
        w.u16(static_cast<unsigned>(width));
        w.u16(static_cast<unsigned>(height));
        w.u32(0x00480000); // 72 dpi
        w.u32(0x00480000);
        w.u32(0);
        w.u16(1); // frames in a sample
        w.zeros(32);
        w.u16(24); // depth
        w.u16(0xFFFF);
        w.box("avcC", [&] {
            w.u8(1);
            w.raw(sps.subspan(1, 3)); // profile, constraints, level
            w.u8(0xFC | 3);           // four-byte lengths
            w.u8(0xE0 | 1);
            w.u16(static_cast<unsigned>(sps.size()));
            w.raw(sps);
            w.u8(1);
            w.u16(static_cast<unsigned>(pps.size()));
            w.raw(pps);
            w.u8(0xFC | 1); // 4:2:0, 8 bits
            w.u8(0xF8);
            w.u8(0xF8);
            w.u8(0);
        });
        // What the conversion from the screen yields: BT.601 limited range of sRGB.
        w.box("colr", [&] {
            w.tag("nclx");
            w.u16(1);
            w.u16(13);
            w.u16(6);
            w.u8(0);
        });
        w.box("pasp", [&] {
            w.u32(1);
            w.u32(1);
        });
    });
    return w.take();
}

Bytes aacSampleEntry(int sampleRate, int channels, int bitRate, std::span<const std::uint8_t> audioConfig)
{
    const auto configSize = static_cast<unsigned>(audioConfig.size());
    const auto rate = static_cast<unsigned>(bitRate);
    BoxWriter w;
    w.box("mp4a", [&] {
        w.zeros(6);
        w.u16(1);
        w.zeros(8);
        w.u16(static_cast<unsigned>(channels));
        w.u16(16);
        w.u32(0);
        w.u32(static_cast<std::uint64_t>(sampleRate) << 16);
        w.fullBox("esds", 0, 0, [&] {
            w.u8(3); // elementary stream
            w.u8(3 + 2 + 13 + 2 + configSize + 3);
            w.u16(0);
            w.u8(0);
            w.u8(4); // decoder configuration
            w.u8(13 + 2 + configSize);
            w.u8(0x40); // MPEG-4 audio
            w.u8(0x15);
            w.u8(0);
            w.u16(0);
            w.u32(rate);
            w.u32(rate);
            w.u8(5); // decoder specific
            w.u8(configSize);
            w.raw(audioConfig);
            w.u8(6);
            w.u8(1);
            w.u8(2);
        });
    });
    return w.take();
}

} // namespace velbrix
