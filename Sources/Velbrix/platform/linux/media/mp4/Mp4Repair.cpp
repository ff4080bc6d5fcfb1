#include "platform/linux/media/mp4/Mp4Repair.h"

#include "platform/linux/media/mp4/FragmentReader.h"
#include "platform/linux/media/mp4/MovieBoxes.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

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
