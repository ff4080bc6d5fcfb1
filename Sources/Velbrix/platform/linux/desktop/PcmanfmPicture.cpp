#include "platform/linux/desktop/PcmanfmPicture.h"

#include "foundation/AtomicFile.h"
#include "platform/linux/desktop/DesktopSession.h"
#include "platform/linux/desktop/GonePicture.h"

#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

const QString colourMode = u"color"_s;

QString configuration(const QString &profile)
{
    return QStandardPaths::locate(QStandardPaths::GenericConfigLocation,
                                  u"pcmanfm/%1/desktop-items-0.conf"_s.arg(profile));
}

QString read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(1 << 20)) : QString();
}

QRegularExpression line(const QString &key)
{
    return QRegularExpression(u"^%1=(.*)$"_s.arg(key), QRegularExpression::MultilineOption);
}

QString entry(const QString &text, const QString &key)
{
    return line(key).match(text).captured(1);
}

Result<void> write(const QString &profile, const QString &path, const QString &mode)
{
    const QString name = configuration(profile);
    QString text = read(name);
    text.replace(line(u"wallpaper_mode"_s), u"wallpaper_mode="_s + mode);
    if (!path.isEmpty())
        text.replace(line(u"wallpaper"_s), u"wallpaper="_s + QString(path).replace(u'\\', u"\\\\"_s));
    if (text.isEmpty())
        return failure(u"无法读取 pcmanfm 的设置"_s);
    return replaceFile(name, text.toUtf8());
}

} // namespace

QString pcmanfmProfile(quint32 process)
{
    QFile file(u"/proc/%1/cmdline"_s.arg(process));
    const QByteArray line = file.open(QIODevice::ReadOnly) ? file.read(65536) : QByteArray();
    const QList<QByteArray> words = line.split('\0');
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (words[i].startsWith("--profile="))
            return QFile::decodeName(words[i].mid(10));
        if ((words[i] == "--profile" || words[i] == "-p") && i + 1 < words.size())
            return QFile::decodeName(words[i + 1]);
    }
    return u"default"_s;
}

PcmanfmPicture::PcmanfmPicture(const PictureRequest &request)
    : _programs(request.clock),
      _session(request.session),
      _profile(request.profile),
      _isRunning(request.isRunning)
{
}

QCoro::Task<Result<QJsonObject>> PcmanfmPicture::current()
{
    const QString text = read(configuration(_profile));
    const QString mode = entry(text, u"wallpaper_mode"_s);
    const QJsonObject shown{{u"profile"_s, _profile},
                            {u"mode"_s, mode.isEmpty() ? colourMode : mode},
                            {u"path"_s, entry(text, u"wallpaper"_s).replace(u"\\\\"_s, u"\\"_s)}};
    const QJsonObject picture{{QString(), shown}};
    co_return picture;
}

QCoro::Task<Result<void>> PcmanfmPicture::set(const QString path)
{
    // It would put the picture on one workspace and could not be told to put
    // back those of the others.
    if (entry(read(configuration(_profile)), u"wallpaper_common"_s) == u"0"_s)
        co_return failure(u"pcmanfm 为每个工作区设置了不同的图片，因此不作更改"_s);
    co_return co_await order(path, u"crop"_s);
}

QCoro::Task<Result<QStringList>> PcmanfmPicture::restore(const QJsonObject picture)
{
    const QJsonObject former = picture.value(QString()).toObject();
    QString mode = former.value(u"mode"_s).toString();
    QString path = former.value(u"path"_s).toString();
    QStringList gone;
    if (path.isEmpty() || co_await isGone(path)) {
        if (mode != colourMode)
            gone.append(path);
        path.clear();
        mode = colourMode;
    }
    const auto done = co_await order(path, mode);
    if (!done)
        co_return std::unexpected(done.error());
    // In plain colour pcmanfm leaves its last picture behind for those who look
    // at the root window's.
    if (_isRunning && mode == colourMode)
        _session->forgetRootPicture();
    co_return gone;
}

QCoro::Task<Result<void>> PcmanfmPicture::order(const QString path, const QString mode)
{
    if (!_isRunning)
        co_return write(_profile, path, mode);
    const QString program = QStandardPaths::findExecutable(u"pcmanfm"_s);
    if (program.isEmpty())
        co_return failure(u"没有找到 pcmanfm"_s);
    ProcessRequest request;
    request.program = program;
    request.arguments = {u"--wallpaper-mode="_s + mode};
    if (!path.isEmpty())
        request.arguments.prepend(u"--set-wallpaper="_s + path);
    request.timeout = 5s;
    const auto outcome = co_await _programs.run(request);
    if (!outcome)
        co_return std::unexpected(outcome.error());
    if (!outcome->succeeded())
        co_return failure(u"pcmanfm 没有接受桌面图片"_s);
    co_return Result<void>();
}

} // namespace velbrix
