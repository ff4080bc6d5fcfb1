#include "capture/StreamPreparation.h"

#include "capture/RecorderLog.h"
#include "foundation/Log.h"

using namespace Qt::StringLiterals;

namespace velbrix {

Result<MovieWriter> StreamPreparation::chooseWriter(const RecordingRequest &request, QSize size,
                                                    const QString &path)
{
    const bool withAudio = request.systemAudio || request.microphone;
    if (_features.recordingOutput) {
        const auto added = _stream.addRecordingOutput(path);
        if (added) {
            _log.append(withAudio ? u"[5/6] ✅ 模式=SCRecordingOutput + 音频配置"_s
                                  : u"[5/6] ✅ 模式=SCRecordingOutput（无音频直写）"_s);
            return MovieWriter::system;
        }
        _log.append((withAudio ? u"[5/6] 带音频的系统直写失败，回退手动:"_s
                               : u"[5/6] SCRecordingOutput 失败，回退手动:"_s) +
                    added.error().message);
    }
    if (const auto opened = openManualWriter(recordingMovie(request, size, _features, path)); !opened)
        return failure(opened.error().message);
    return MovieWriter::manual;
}

Result<void> StreamPreparation::addOutputs(const RecordingRequest &request)
{
    if (const auto added = _stream.addOutput(CaptureOutput::screen); !added)
        return added;
    if (request.systemAudio)
        addSound(CaptureOutput::systemAudio, u"系统音频"_s);
    if (request.microphone && _features.microphone)
        addSound(CaptureOutput::microphone, u"麦克风"_s);
    else if (request.microphone)
        _log.append(u"当前系统 < macOS 15，无法用 SCStream 录麦克风"_s);
    return {};
}

Result<void> StreamPreparation::openManualWriter(const MovieSettings &movie)
{
    const auto tracks = _stream.openWriter(movie);
    if (!tracks)
        return failure(tracks.error().message);
    if (movie.systemAudio && !tracks->systemAudio)
        _log.append(u"无法添加系统音频轨"_s);
    if (movie.microphone && !tracks->microphone)
        _log.append(u"无法添加麦克风轨（可能容器限制），将与系统音合并尝试失败时忽略）"_s);
    _log.append(u"写入器就绪 %1x%2 sysAudio=%3 mic=%4"_s.arg(movie.width)
                    .arg(movie.height)
                    .arg(log::text(tracks->systemAudio), log::text(tracks->microphone)));
    _log.append(u"[5/6] ✅ 模式=手动 AVAssetWriter"_s);
    return {};
}

void StreamPreparation::addSound(CaptureOutput output, const QString &source)
{
    const auto added = _stream.addOutput(output);
    _log.append(added ? u"已挂载%1 output"_s.arg(source)
                      : u"⚠️ 无法挂载%1 output:%2"_s.arg(source, added.error().message));
}

} // namespace velbrix
