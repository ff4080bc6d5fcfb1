#include "app/PrivacyConsent.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QStringList statementDetails()
{
    return {u"本应用提供应用卸载、系统清理、视频壁纸、屏幕录制等本地功能"_s,
            u"屏幕录制可能捕获屏幕画面、系统声音、麦克风声音"_s,
            u"视频壁纸会在本地读取并播放你选择或从服务器下载到本机的视频文件"_s,
            u"卸载与清理会访问你选择的应用/缓存路径并移入废纸篓"_s,
            u"所有处理默认在本地完成，不会主动上传你的文件内容"_s,
            u"同意后会依次请求通知、麦克风、摄像头、屏幕录制、辅助功能等系统权限（可拒绝）"_s,
            u"敏感操作均需你再次确认；系统权限仍由 macOS 单独授权"_s,
            u"你可随时停止录制/壁纸，并在系统设置中撤销权限"_s};
}

FeaturePrivacyNotice notice(PrivacyConsentKind kind, const QString &icon, const QList<QColor> &colors,
                            const QString &title, const QString &message, const QStringList &details = {})
{
    FeaturePrivacyNotice made;
    made.id = rawValue(kind);
    made.kind = kind;
    made.icon = icon;
    made.colors = colors;
    made.title = title;
    made.message = message;
    made.details = details;
    return made;
}

} // namespace

QString rawValue(PrivacyConsentKind kind)
{
    switch (kind) {
    case PrivacyConsentKind::firstLaunch:
        return u"firstLaunch"_s;
    case PrivacyConsentKind::screenRecording:
        return u"screenRecording"_s;
    case PrivacyConsentKind::microphone:
        return u"microphone"_s;
    case PrivacyConsentKind::systemAudio:
        return u"systemAudio"_s;
    case PrivacyConsentKind::videoWallpaper:
        return u"videoWallpaper"_s;
    case PrivacyConsentKind::fileAccess:
        return u"fileAccess"_s;
    case PrivacyConsentKind::systemCleanup:
        return u"systemCleanup"_s;
    case PrivacyConsentKind::uninstall:
        return u"uninstall"_s;
    }
    Q_UNREACHABLE();
}

FeaturePrivacyNotice featurePrivacyNotice(PrivacyConsentKind kind)
{
    static const QList<QColor> red = {QColor(u"#FF6961"_s), QColor(u"#D70015"_s)};
    static const QList<QColor> blue = {QColor(u"#5AC8FA"_s), QColor(u"#0A7AFF"_s)};
    static const QList<QColor> violet = {QColor(u"#BF5AF2"_s), QColor(u"#5E5CE6"_s)};
    static const QList<QColor> orange = {QColor(u"#FFB340"_s), QColor(u"#C93400"_s)};
    switch (kind) {
    case PrivacyConsentKind::screenRecording:
        return notice(kind, u"record.circle"_s, red, u"屏幕录制隐私确认"_s,
                      u"开始录制前请确认：本功能会捕获屏幕画面，并可能录制系统音频/麦克风音频。"_s,
                      {u"默认全屏录制"_s, u"可能捕获系统音频/麦克风（取决于你的配置）"_s,
                       u"文件仅保存到你设置的本地目录"_s, u"不会自动上传录制内容"_s,
                       u"可随时从菜单栏停止录制"_s});
    case PrivacyConsentKind::microphone:
        return notice(kind, u"mic.fill"_s, orange, u"麦克风隐私确认"_s,
                      u"开启后，录制可能会采集麦克风声音。录音仅保存在本地，不会上传。是否同意？"_s);
    case PrivacyConsentKind::systemAudio:
        return notice(kind, u"speaker.wave.2.fill"_s, blue, u"系统音频隐私确认"_s,
                      u"开启后，录制会捕获系统播放的声音。音频仅保存在本地，不会上传。是否同意？"_s);
    case PrivacyConsentKind::videoWallpaper:
        return notice(kind, u"video.badge.waveform.fill"_s, violet, u"视频壁纸隐私确认"_s,
                      u"播放动态壁纸会读取你选择的本地视频，并在桌面层持续渲染。"_s,
                      {u"仅使用你选择的本地视频文件"_s, u"不会上传视频内容"_s, u"可随时暂停或停止"_s});
    case PrivacyConsentKind::systemCleanup:
        return notice(kind, u"trash"_s, orange, u"系统清理隐私确认"_s,
                      u"清理会扫描并删除你勾选的缓存/临时文件路径，操作不可撤销。"_s,
                      {u"仅处理你勾选的本地路径"_s, u"不会上传文件内容"_s,
                       u"删除后通常不可恢复（废纸篓策略取决于系统）"_s});
    case PrivacyConsentKind::uninstall:
        return notice(kind, u"xmark.circle.fill"_s, red, u"应用卸载隐私确认"_s,
                      u"卸载会访问应用安装路径及你选择的关联数据位置，并将文件移入废纸篓。"_s,
                      {u"仅处理你确认卸载的应用及其关联数据"_s, u"不会上传应用数据"_s,
                       u"可在废纸篓中找回（在清空前）"_s});
    case PrivacyConsentKind::firstLaunch:
    case PrivacyConsentKind::fileAccess:
        break;
    }
    const PrivacyStatement statement = reviewedStatement();
    return notice(kind, u"hand.raised.fill"_s, blue, statement.title, statement.message, statement.details);
}

FeaturePrivacyNotice quickRecordingNotice()
{
    FeaturePrivacyNotice quick = featurePrivacyNotice(PrivacyConsentKind::screenRecording);
    quick.message = u"快捷录制将默认全屏捕获，并使用你当前在录制面板中设置的帧率、画质、音频等配置。"_s;
    return quick;
}

PrivacyStatement firstLaunchStatement(int remainingSeconds)
{
    return {
        u"使用声明与隐私提示"_s,
        u"欢迎使用 Velbrix。请认真阅读以下声明。为保障你的权益并降低法律风险，首次启动需等待%1秒后才能确认。"_s
            .arg(remainingSeconds),
        statementDetails(), u"我已阅读并同意"_s};
}

PrivacyStatement reviewedStatement()
{
    return {u"隐私与使用声明"_s, u"以下为 Velbrix 的隐私与功能使用说明，请确认你已知悉。"_s,
            statementDetails(), u"我已知悉"_s};
}

} // namespace velbrix
