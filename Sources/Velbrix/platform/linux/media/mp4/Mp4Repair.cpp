#include "platform/linux/media/mp4/Mp4Repair.h"

#include "platform/linux/media/mp4/BoxReader.h"
#include "platform/linux/media/mp4/MovieBoxes.h"
#include "platform/linux/media/mp4/OutputFile.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr std::uint64_t gapSize = 16;
constexpr std::uint64_t largestHeader = 64 << 20; // no moov or moof of ours comes near
constexpr std::size_t mostTracks = 16;
constexpr int mostBoxes = 100'000; // before the header of an ordinary movie

// What a movie file of this program consists of.
struct MovieContents {
    bool isFinished = false;     // an ordinary movie already
    std::uint64_t gapOffset = 0; // what finishing has to patch
    std::vector<TrackDescription> tracks;
    std::vector<SampleTable> tables; // of the complete fragments
};

struct FileBox {
    std::string name;
    std::uint64_t offset = 0;
    std::uint64_t headerSize = 0;
    std::uint64_t size = 0; // with the header

    std::uint64_t end() const { return offset + size; }
};

// None where no complete box begins.
std::optional<FileBox> boxAt(const OutputFile &file, std::uint64_t offset)
{
    std::uint8_t bytes[16] = {};
    const auto got = file.read(offset, bytes);
    if (!got || *got < 8)
        return {};
    BoxReader reader(std::span(bytes).first(*got));
    FileBox box;
    box.offset = offset;
    box.headerSize = 8;
    box.size = reader.u32();
    box.name.assign(reinterpret_cast<const char *>(bytes) + 4, 4);
    reader.skip(4);
    if (box.size == 1) {
        box.headerSize = 16;
        box.size = reader.u64();
    }
    if (!reader.isGood() || box.size < box.headerSize || box.size > file.size() - offset)
        return {};
    return box;
}

std::optional<Bytes> load(const OutputFile &file, const FileBox &box)
{
    if (box.size > largestHeader)
        return {};
    Bytes bytes(box.size - box.headerSize);
    const auto got = file.read(box.offset + box.headerSize, bytes);
    if (!got || *got != bytes.size())
        return {};
    return bytes;
}

std::optional<TrackDescription> readTrack(BoxReader track)
{
    TrackDescription description;
    auto header = track.find("tkhd");
    const auto media = track.find("mdia");
    const auto edits = track.find("edts");
    if (!header || !media || !edits)
        return {};
    header->skip(header->left() - std::min<std::size_t>(header->left(), 8));
    description.width = static_cast<int>(header->u32() >> 16);
    description.height = static_cast<int>(header->u32() >> 16);

    auto edit = edits->find("elst");
    auto mediaHeader = media->find("mdhd");
    auto handler = media->find("hdlr");
    const auto information = media->find("minf");
    const auto samples = information ? information->find("stbl") : std::nullopt;
    auto entries = samples ? samples->find("stsd") : std::nullopt;
    if (!edit || !mediaHeader || !handler || !entries)
        return {};
    edit->skip(4 + 4 + 8);
    description.mediaStart = static_cast<std::int64_t>(edit->u64());
    mediaHeader->skip(4 + 16);
    description.timescale = mediaHeader->u32();
    handler->skip(8);
    description.isVideo = handler->u32() == 0x76696465; // "vide"
    entries->skip(8);
    description.sampleEntry.assign(entries->rest().begin(), entries->rest().end());

    const bool isGood = header->isGood() && edit->isGood() && mediaHeader->isGood() && handler->isGood() &&
                        !description.sampleEntry.empty() && description.timescale > 0 &&
                        description.mediaStart >= 0 &&
                        description.mediaStart <= std::numeric_limits<std::int32_t>::max();
    return isGood ? std::optional(std::move(description)) : std::nullopt;
}

std::optional<std::vector<TrackDescription>> readTracks(BoxReader header)
{
    std::vector<TrackDescription> tracks;
    while (const auto box = header.next()) {
        if (box->name != "trak")
            continue;
        auto track = readTrack(BoxReader(box->contents));
        if (!track || tracks.size() == mostTracks)
            return {};
        tracks.push_back(std::move(*track));
    }
    return tracks.empty() ? std::nullopt : std::optional(std::move(tracks));
}

// One track of a fragment, before it is believed.
struct ReadRun {
    std::size_t track = 0;
    std::uint64_t firstTime = 0;
    std::uint64_t offset = 0;
    std::uint64_t byteCount = 0;
    std::uint64_t length = 0;
    bool isRepeat = false; // its samples lie in an earlier fragment
    std::vector<SampleRecord> samples;
};

// As this program writes them; everything else is not believed.
std::optional<ReadRun> readRun(BoxReader fragment, std::uint64_t fragmentOffset)
{
    auto header = fragment.find("tfhd");
    auto time = fragment.find("tfdt");
    auto samples = fragment.find("trun");
    if (!header || !time || !samples)
        return {};
    ReadRun run;
    constexpr std::uint32_t isPlaced = 0x1;
    run.isRepeat = (header->u32() & isPlaced) != 0;
    run.track = header->u32() - std::size_t{1};
    run.offset = run.isRepeat ? header->u64() : fragmentOffset;
    time->skip(4);
    run.firstTime = time->u64();

    constexpr std::uint32_t withoutFlags = 0x301;
    constexpr std::uint32_t withFlags = 0x701;
    constexpr std::uint32_t notKey = 0x10000;
    const std::uint32_t flags = samples->u32();
    const std::uint32_t count = samples->u32();
    run.offset += samples->u32();
    if (flags != withoutFlags && flags != withFlags)
        return {};
    const std::size_t entrySize = flags == withFlags ? 12 : 8;
    if (!header->isGood() || !time->isGood() || !samples->isGood() || samples->left() != count * entrySize)
        return {};
    run.samples.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t duration = samples->u32();
        const std::uint32_t size = samples->u32();
        run.samples.push_back({size, duration, flags == withoutFlags || !(samples->u32() & notKey)});
        run.byteCount += size;
        run.length += duration;
    }
    return run;
}

// Takes the fragment over if all of it makes sense.
bool takeFragment(const Bytes &header, const FileBox &at, const FileBox &data, MovieContents &movie)
{
    std::vector<ReadRun> runs;
    BoxReader reader(header);
    while (const auto box = reader.next()) {
        if (box->name != "traf")
            continue;
        auto run = readRun(BoxReader(box->contents), at.offset);
        if (!run || run->track >= movie.tracks.size() || runs.size() == movie.tracks.size())
            return false;
        const std::uint64_t dataStart = run->isRepeat ? movie.gapOffset : data.offset + data.headerSize;
        const std::uint64_t dataEnd = run->isRepeat ? at.offset : data.end();
        if (run->offset < dataStart || run->offset > dataEnd || run->byteCount > dataEnd - run->offset)
            return false;
        const std::uint64_t end = movie.tables[run->track].end();
        if (run->firstTime < end || run->firstTime - end > std::numeric_limits<std::int32_t>::max())
            return false;
        for (const ReadRun &other : runs)
            if (other.track == run->track)
                return false;
        runs.push_back(std::move(*run));
    }
    for (const ReadRun &run : runs) {
        SampleTable &table = movie.tables[run.track];
        table.extendLast(static_cast<std::uint32_t>(run.firstTime - table.end()));
        table.append(run.offset, run.samples);
    }
    return !runs.empty();
}

void readFragments(const OutputFile &file, std::uint64_t offset, MovieContents &movie)
{
    for (;;) {
        const auto header = boxAt(file, offset);
        if (!header || header->name != "moof")
            return;
        const auto data = boxAt(file, header->end());
        if (!data || data->name != "mdat")
            return;
        const auto bytes = load(file, *header);
        if (!bytes || !takeFragment(*bytes, *header, *data, movie))
            return;
        offset = data->end();
    }
}

// A movie that other programs play as it is.
bool hasOrdinaryHeader(const OutputFile &file)
{
    std::uint64_t offset = 0;
    for (int boxes = 0; boxes < mostBoxes; ++boxes) {
        const auto box = boxAt(file, offset);
        if (!box)
            return false;
        if (box->name == "moov") {
            const auto bytes = load(file, *box);
            return bytes && !BoxReader(*bytes).find("mvex") && BoxReader(*bytes).find("trak");
        }
        offset = box->end();
    }
    return false;
}

// Reads any bytes without harm; memory is bounded by the size of the file.
Result<MovieContents> readMovie(const OutputFile &file)
{
    MovieContents movie;
    movie.isFinished = hasOrdinaryHeader(file);
    if (movie.isFinished)
        return movie;

    const auto type = boxAt(file, 0);
    if (!type || type->name != "ftyp")
        return failure(u"这不是录制的视频文件"_s);
    movie.gapOffset = type->end();
    // The gap may have been patched already when the power went.
    std::uint8_t gap[gapSize] = {};
    const auto got = file.read(movie.gapOffset, gap);
    const std::string gapName(reinterpret_cast<const char *>(gap) + 4, 4);
    const auto header = boxAt(file, movie.gapOffset + gapSize);
    const auto bytes = header && header->name == "moov" ? load(file, *header) : std::nullopt;
    if (!got || *got != gapSize || (gapName != "free" && gapName != "mdat") || !bytes)
        return failure(u"录制文件的开头已损坏，无法修复"_s);
    auto tracks = readTracks(BoxReader(*bytes));
    if (!tracks)
        return failure(u"录制文件的开头已损坏，无法修复"_s);
    movie.tracks = std::move(*tracks);
    movie.tables.resize(movie.tracks.size());
    readFragments(file, header->end(), movie);
    return movie;
}

} // namespace

Result<void> repairMovie(const QString &path)
{
    OutputFile file;
    if (auto opened = file.open(path); !opened)
        return opened;
    const auto movie = readMovie(file);
    if (!movie)
        return std::unexpected(movie.error());
    if (movie->isFinished)
        return {};
    if (std::ranges::all_of(movie->tables, &SampleTable::isEmpty))
        return failure(u"录制文件里没有可恢复的画面"_s);

    const std::uint64_t end = file.size();
    if (auto appended = file.append(finalHeader(movie->tracks, movie->tables)); !appended)
        return appended;
    // The header has to be on the disk before anything points to it.
    auto repaired = file.sync();
    if (repaired)
        repaired = file.overwrite(movie->gapOffset, hugeDataHeader(end - movie->gapOffset));
    if (!repaired) {
        file.truncate(end);
        return repaired;
    }
    return file.sync();
}

} // namespace velbrix
