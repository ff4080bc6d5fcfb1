#include "platform/linux/media/mp4/MovieBoxes.h"

#include <algorithm>

namespace velbrix {
namespace {

// A common multiple of the sound rate and every frame rate in use.
constexpr std::uint64_t movieTimescale = 144000;

std::uint64_t inMovieTime(std::uint64_t time, std::uint32_t timescale)
{
    return (time * movieTimescale + timescale - 1) / timescale;
}

void matrix(BoxWriter &w)
{
    for (const std::uint32_t value : {0x10000u, 0u, 0u, 0u, 0x10000u, 0u, 0u, 0u, 0x40000000u})
        w.u32(value);
}

void movieHeader(BoxWriter &w, std::uint64_t duration, std::size_t trackCount)
{
    w.fullBox("mvhd", 1, 0, [&] {
        w.u64(0);
        w.u64(0);
        w.u32(movieTimescale);
        w.u64(duration);
        w.u32(0x00010000);
        w.u16(0x0100);
        w.zeros(10);
        matrix(w);
        w.zeros(24);
        w.u32(trackCount + 1);
    });
}

void trackHeader(BoxWriter &w, const TrackDescription &track, std::uint32_t id, std::uint64_t duration)
{
    w.fullBox("tkhd", 1, 3, [&] {
        w.u64(0);
        w.u64(0);
        w.u32(id);
        w.u32(0);
        w.u64(duration);
        w.zeros(8);
        w.u16(0);
        w.u16(track.isVideo ? 0 : 1); // sound tracks are alternatives of one group
        w.u16(track.isVideo ? 0 : 0x0100);
        w.u16(0);
        matrix(w);
        w.u32(static_cast<std::uint64_t>(track.width) << 16);
        w.u32(static_cast<std::uint64_t>(track.height) << 16);
    });
}

void editList(BoxWriter &w, std::int64_t mediaStart, std::uint64_t duration)
{
    w.box("edts", [&] {
        w.fullBox("elst", 1, 0, [&] {
            w.u32(1);
            w.u64(duration);
            w.u64(static_cast<std::uint64_t>(mediaStart));
            w.u32(0x00010000);
        });
    });
}

void handler(BoxWriter &w, bool isVideo)
{
    w.fullBox("hdlr", 0, 0, [&] {
        w.u32(0);
        isVideo ? w.tag("vide") : w.tag("soun");
        w.zeros(12);
        w.u8(0);
    });
}

void mediaInformation(BoxWriter &w, bool isVideo)
{
    if (isVideo)
        w.fullBox("vmhd", 0, 1, [&] { w.zeros(8); });
    else
        w.fullBox("smhd", 0, 0, [&] { w.zeros(4); });
    w.box("dinf", [&] {
        w.fullBox("dref", 0, 0, [&] {
            w.u32(1);
            w.fullBox("url ", 0, 1, [] {});
        });
    });
}

void sampleTimes(BoxWriter &w, const SampleTable &table)
{
    w.fullBox("stts", 0, 0, [&] {
        w.u32(table.runs().size());
        for (const SampleTable::Run &run : table.runs()) {
            w.u32(run.count);
            w.u32(run.duration);
        }
    });
    if (table.keys().size() < table.sizes().size())
        w.fullBox("stss", 0, 0, [&] {
            w.u32(table.keys().size());
            for (const std::uint32_t key : table.keys())
                w.u32(key);
        });
}

void samplePlaces(BoxWriter &w, const SampleTable &table)
{
    w.fullBox("stsc", 0, 0, [&] {
        const std::size_t countAt = w.size();
        std::uint32_t entries = 0;
        std::uint32_t previous = 0;
        w.u32(0);
        for (std::size_t i = 0; i < table.chunks().size(); ++i) {
            if (table.chunks()[i].count == previous)
                continue;
            previous = table.chunks()[i].count;
            w.u32(i + 1);
            w.u32(previous);
            w.u32(1);
            ++entries;
        }
        w.patch32(countAt, entries);
    });
    w.fullBox("stsz", 0, 0, [&] {
        w.u32(0);
        w.u32(table.sizes().size());
        for (const std::uint32_t size : table.sizes())
            w.u32(size);
    });
    w.fullBox("co64", 0, 0, [&] {
        w.u32(table.chunks().size());
        for (const SampleTable::Chunk &chunk : table.chunks())
            w.u64(chunk.offset);
    });
}

// `editDuration` zero: until the end, whenever that comes.
void trackBox(BoxWriter &w, const TrackDescription &track, std::uint32_t id, const SampleTable &table)
{
    const auto start = static_cast<std::uint64_t>(track.mediaStart);
    const std::uint64_t shown = table.end() > start ? table.end() - start : 0;
    const std::uint64_t duration = inMovieTime(shown, track.timescale);
    w.box("trak", [&] {
        trackHeader(w, track, id, duration);
        editList(w, track.mediaStart, duration);
        w.box("mdia", [&] {
            w.fullBox("mdhd", 1, 0, [&] {
                w.u64(0);
                w.u64(0);
                w.u32(track.timescale);
                w.u64(table.end());
                w.u16(0x55C4); // language undetermined
                w.u16(0);
            });
            handler(w, track.isVideo);
            w.box("minf", [&] {
                mediaInformation(w, track.isVideo);
                w.box("stbl", [&] {
                    w.fullBox("stsd", 0, 0, [&] {
                        w.u32(1);
                        w.raw(track.sampleEntry);
                    });
                    sampleTimes(w, table);
                    samplePlaces(w, table);
                });
            });
        });
    });
}

void fragmentTrack(BoxWriter &w, const FragmentRun &run, std::vector<std::size_t> &offsetPlaces)
{
    constexpr unsigned hasOffset = 0x1, hasDuration = 0x100, hasSize = 0x200, hasFlags = 0x400;
    constexpr std::uint32_t keyFlags = 0x02000000, otherFlags = 0x01010000;
    w.box("traf", [&] {
        // Offsets count from the place named here, else from the moof.
        w.fullBox("tfhd", 0, run.place ? 0x1 : 0x020000, [&] {
            w.u32(run.trackId);
            if (run.place)
                w.u64(*run.place);
        });
        w.fullBox("tfdt", 1, 0, [&] { w.u64(run.firstTime); });
        const unsigned flags = hasOffset | hasDuration | hasSize | (run.isVideo ? hasFlags : 0);
        w.fullBox("trun", 0, flags, [&] {
            w.u32(run.samples.size());
            offsetPlaces.push_back(w.size());
            w.u32(0);
            for (const SampleRecord &sample : run.samples) {
                w.u32(sample.duration);
                w.u32(sample.size);
                if (run.isVideo)
                    w.u32(sample.isKey ? keyFlags : otherFlags);
            }
        });
    });
}

} // namespace

LiveStart liveStart(const std::vector<TrackDescription> &tracks)
{
    BoxWriter w;
    w.box("ftyp", [&] {
        w.tag("isom");
        w.u32(0x200);
        w.tag("isom");
        w.tag("iso5");
        w.tag("iso6");
        w.tag("avc1");
        w.tag("mp41");
    });
    const std::uint64_t gap = w.size();
    w.box("free", [&] { w.zeros(8); });
    w.box("moov", [&] {
        movieHeader(w, 0, tracks.size());
        for (std::size_t i = 0; i < tracks.size(); ++i)
            trackBox(w, tracks[i], static_cast<std::uint32_t>(i + 1), {});
        w.box("mvex", [&] {
            for (std::size_t i = 0; i < tracks.size(); ++i)
                w.fullBox("trex", 0, 0, [&] {
                    w.u32(i + 1);
                    w.u32(1);
                    w.u32(0);
                    w.u32(0);
                    w.u32(0);
                });
        });
    });
    return {w.take(), gap};
}

Bytes fragmentHeader(std::uint32_t sequence, const std::vector<FragmentRun> &runs)
{
    BoxWriter w;
    std::vector<std::size_t> offsetPlaces;
    w.box("moof", [&] {
        w.fullBox("mfhd", 0, 0, [&] { w.u32(sequence); });
        for (const FragmentRun &run : runs)
            fragmentTrack(w, run, offsetPlaces);
    });
    std::uint64_t offset = w.size() + 8;
    std::uint64_t total = 8;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        if (!runs[i].place)
            w.patch32(offsetPlaces[i], offset);
        offset += runs[i].byteCount;
        total += runs[i].byteCount;
    }
    w.u32(total);
    w.tag("mdat");
    return w.take();
}

Bytes finalHeader(const std::vector<TrackDescription> &tracks, const std::vector<SampleTable> &tables)
{
    std::uint64_t duration = 0;
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        const auto start = static_cast<std::uint64_t>(tracks[i].mediaStart);
        if (tables[i].end() > start)
            duration = std::max(duration, inMovieTime(tables[i].end() - start, tracks[i].timescale));
    }
    BoxWriter w;
    w.box("moov", [&] {
        movieHeader(w, duration, tracks.size());
        for (std::size_t i = 0; i < tracks.size(); ++i)
            if (!tables[i].isEmpty())
                trackBox(w, tracks[i], static_cast<std::uint32_t>(i + 1), tables[i]);
    });
    return w.take();
}

Bytes hugeDataHeader(std::uint64_t byteCount)
{
    BoxWriter w;
    w.u32(1);
    w.tag("mdat");
    w.u64(byteCount);
    return w.take();
}

} // namespace velbrix
