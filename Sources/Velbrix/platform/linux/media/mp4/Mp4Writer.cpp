#include "platform/linux/media/mp4/Mp4Writer.h"

#include <algorithm>
#include <limits>
#include <sys/uio.h>
#include <utility>

namespace velbrix {
namespace {

// A screen on which nothing moves needs a few kilobytes, as little as what is
// taken for a broken movie: room that stays empty tells them apart.
Bytes padded(Bytes header, std::uint64_t before)
{
    constexpr std::uint64_t leastMovie = 12'000;
    const std::uint64_t size = before + header.size();
    if (size >= leastMovie)
        return header;
    BoxWriter room;
    room.box("free", [&] { room.zeros(static_cast<std::size_t>(leastMovie - size)); });
    const Bytes box = room.take();
    header.insert(header.end(), box.begin(), box.end());
    return header;
}

} // namespace

Result<std::unique_ptr<Mp4Writer>> Mp4Writer::create(const QString &path,
                                                     std::vector<TrackDescription> tracks)
{
    std::unique_ptr<Mp4Writer> writer(new Mp4Writer);
    if (auto created = writer->_file.create(path); !created)
        return std::unexpected(created.error());
    const LiveStart start = liveStart(tracks);
    writer->_gapOffset = start.gapOffset;
    if (auto written = writer->_file.append(start.bytes); !written)
        return std::unexpected(written.error());
    writer->_tables.resize(tracks.size());
    writer->_pending.resize(tracks.size());
    writer->_tracks = std::move(tracks);
    return writer;
}

Result<void> Mp4Writer::add(std::size_t index, std::span<const std::uint8_t> bytes, std::int64_t time,
                            bool isKey)
{
    const std::scoped_lock lock(_lock);
    if (!_state)
        return _state;
    Pending &track = _pending[index];
    closeLast(track, time);
    if (track.place || isFragmentDue(index, isKey))
        if (_state = writeFragment(false); !_state)
            return _state;
    track.samples.push_back({static_cast<std::uint32_t>(bytes.size()), 0, isKey});
    track.bytes.insert(track.bytes.end(), bytes.begin(), bytes.end());
    return {};
}

Result<bool> Mp4Writer::repeatPair(std::int64_t keyTime, std::int64_t time)
{
    const std::scoped_lock lock(_lock);
    Pending &track = _pending.front();
    if (track.samples.size() != 2 || !track.samples.front().isKey || track.samples.back().isKey)
        return false;
    std::vector<SampleRecord> pair = track.samples;
    closeLast(track, keyTime);
    if (_state)
        _state = writeFragment(false);
    if (!_state)
        return std::unexpected(_state.error());
    pair.front().duration = static_cast<std::uint32_t>(std::max<std::int64_t>(time - keyTime, 1));
    pair.back().duration = 0;
    track.lastTime += pair.front().duration;
    track.samples = std::move(pair);
    track.place = _tables.front().chunks().back().offset;
    return true;
}

// Gives the last sample its duration and moves the time on.
void Mp4Writer::closeLast(Pending &track, std::int64_t time)
{
    if (!std::exchange(track.hasBegun, true))
        return;
    constexpr std::int64_t longest = std::numeric_limits<std::int32_t>::max();
    const std::int64_t passed = time - static_cast<std::int64_t>(track.lastTime);
    const auto duration = static_cast<std::uint32_t>(std::clamp<std::int64_t>(passed, 1, longest));
    if (!track.samples.empty())
        track.samples.back().duration = duration;
    track.lastTime += duration;
}

bool Mp4Writer::isFragmentDue(std::size_t index, bool isKey) const
{
    const Pending &track = _pending[index];
    if (track.samples.empty())
        return false;
    const std::uint64_t second = _tracks[index].timescale;
    const std::uint64_t length = track.lastTime - track.firstTime;
    // The other tracks only step in when the first one has nothing to say.
    return index == 0 ? isKey || length >= second : length >= 2 * second;
}

// The last sample of a track waits for its duration unless it has one.
Result<void> Mp4Writer::writeFragment(bool everything)
{
    std::vector<FragmentRun> runs;
    std::vector<iovec> pieces(1);
    std::vector<std::size_t> sources;
    for (std::size_t i = 0; i < _pending.size(); ++i) {
        Pending &track = _pending[i];
        std::size_t count = track.samples.size();
        if (count > 0 && !everything && track.samples.back().duration == 0)
            --count;
        // A pair that may be repeated stays together.
        const bool isHalfPair = i == 0 && count == 1 && track.samples.size() == 2;
        if (count == 0 || isHalfPair)
            continue;
        FragmentRun run{.trackId = static_cast<std::uint32_t>(i + 1),
                        .isVideo = _tracks[i].isVideo,
                        .firstTime = track.firstTime,
                        .samples = {track.samples.begin(), track.samples.begin() + static_cast<long>(count)},
                        .place = std::exchange(track.place, std::nullopt)};
        for (const SampleRecord &sample : run.samples)
            run.byteCount += run.place ? 0 : sample.size;
        pieces.push_back({track.bytes.data(), static_cast<std::size_t>(run.byteCount)});
        runs.push_back(std::move(run));
        sources.push_back(i);
    }
    if (runs.empty())
        return {};

    Bytes header = fragmentHeader(++_sequence, runs);
    pieces[0] = {header.data(), header.size()};
    std::uint64_t offset = _file.size() + header.size();
    if (auto written = _file.append(pieces); !written)
        return written;
    _file.startWriting();

    for (std::size_t i = 0; i < runs.size(); ++i) {
        Pending &track = _pending[sources[i]];
        _tables[sources[i]].append(runs[i].place.value_or(offset), runs[i].samples);
        offset += runs[i].byteCount;
        track.bytes.erase(track.bytes.begin(), track.bytes.begin() + static_cast<long>(runs[i].byteCount));
        track.samples.erase(track.samples.begin(),
                            track.samples.begin() + static_cast<long>(runs[i].samples.size()));
        for (const SampleRecord &sample : runs[i].samples)
            track.firstTime += sample.duration;
    }
    return {};
}

Result<void> Mp4Writer::finish(std::span<const std::int64_t> endTimes)
{
    const std::scoped_lock lock(_lock);
    if (_state) {
        for (std::size_t i = 0; i < _pending.size(); ++i)
            if (!_pending[i].samples.empty())
                closeLast(_pending[i], endTimes[i]);
        _state = writeFragment(true);
    }
    const std::uint64_t end = _file.size();
    if (auto appended = _file.append(padded(finalHeader(_tracks, _tables), end)); !appended)
        return appended;
    auto completed = _file.sync();
    if (completed)
        completed = _file.overwrite(_gapOffset, hugeDataHeader(end - _gapOffset));
    if (!completed) {
        _file.truncate(end);
        return completed;
    }
    return _file.sync();
}

Result<void> Mp4Writer::state() const
{
    const std::scoped_lock lock(_lock);
    return _state;
}

Result<void> Mp4Writer::sync()
{
    auto synced = _file.sync();
    const std::scoped_lock lock(_lock);
    if (_state)
        _state = std::move(synced);
    return _state;
}

} // namespace velbrix
