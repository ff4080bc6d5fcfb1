#include "platform/linux/media/mp4/LinuxMovieFiles.h"

#include "platform/linux/media/libav/LibAv.h"
#include "platform/linux/media/mp4/Mp4Repair.h"

#include <QCoroFuture>
#include <QFile>
#include <QFileInfo>
#include <QtConcurrent/QtConcurrentRun>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int packetsToTry = 500;
constexpr std::int64_t mostPixels = 16384LL * 16384; // no desktop is larger

bool decodes(AVFormatContext *input, int streamIndex)
{
    const auto codec = openAvDecoder(*input->streams[streamIndex], 1, mostPixels);
    const AvPacket packet(avCodec()->av_packet_alloc());
    const AvPicture frame(avCodec()->av_frame_alloc());
    if (!codec || !packet || !frame)
        return false;
    for (int tried = 0; tried < packetsToTry; ++tried) {
        const bool atEnd = avFormat()->av_read_frame(input, packet.get()) < 0;
        if (!atEnd && packet->stream_index != streamIndex) {
            avCodec()->av_packet_unref(packet.get());
            continue;
        }
        const int sent = avCodec()->avcodec_send_packet(codec.get(), atEnd ? nullptr : packet.get());
        avCodec()->av_packet_unref(packet.get());
        if (sent >= 0 && avCodec()->avcodec_receive_frame(codec.get(), frame.get()) >= 0)
            return true;
        if (atEnd)
            return false;
    }
    return false;
}

Result<MovieFacts> inspectFile(const QString &path)
{
    if (!QFileInfo::exists(path))
        return failure(u"文件不存在"_s);
    if (!avCodec() || !avFormat())
        return failure(u"系统没有所需版本的 libavcodec 与 libavformat，无法校验影片"_s);
    avCodec()->av_log_set_level(AV_LOG_QUIET); // the answer says it all
    MovieFacts facts;
    AVFormatContext *opened = nullptr;
    if (avFormat()->avformat_open_input(&opened, QFile::encodeName(path).constData(), nullptr, nullptr) < 0)
        return facts;
    const AvInput input(opened);
    if (avFormat()->avformat_find_stream_info(input.get(), nullptr) < 0)
        return facts;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        const AVMediaType type = input->streams[i]->codecpar->codec_type;
        facts.hasVideo = facts.hasVideo || type == AVMEDIA_TYPE_VIDEO;
        facts.audioTracks += type == AVMEDIA_TYPE_AUDIO ? 1 : 0;
    }
    if (input->duration > 0)
        facts.duration = static_cast<double>(input->duration) / AV_TIME_BASE;
    const AVMediaType wanted = facts.hasVideo ? AVMEDIA_TYPE_VIDEO : AVMEDIA_TYPE_AUDIO;
    const int stream = avFormat()->av_find_best_stream(input.get(), wanted, -1, -1, nullptr, 0);
    facts.isPlayable = stream >= 0 && decodes(input.get(), stream);
    return facts;
}

} // namespace

QCoro::Task<Result<MovieFacts>> LinuxMovieFiles::inspect(const QString path)
{
    const QFuture<Result<MovieFacts>> facts = QtConcurrent::run(inspectFile, path);
    co_return co_await facts;
}

QCoro::Task<Result<void>> LinuxMovieFiles::repair(const QString path)
{
    const QFuture<Result<void>> repaired = QtConcurrent::run(repairMovie, path);
    co_return co_await repaired;
}

} // namespace velbrix
