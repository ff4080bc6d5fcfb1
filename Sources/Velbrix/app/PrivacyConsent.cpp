#include "app/PrivacyConsent.h"

#include "app/Tools.h"

#include <algorithm>

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

QList<QColor> colorsOf(NoticeTint tint)
{
    switch (tint) {
    case NoticeTint::red:
        return {QColor(u"#FF6961"_s), QColor(u"#D70015"_s)};
    case NoticeTint::orange:
        return {QColor(u"#FFB340"_s), QColor(u"#C93400"_s)};
    case NoticeTint::blue:
        return {QColor(u"#5AC8FA"_s), QColor(u"#0A7AFF"_s)};
    case NoticeTint::violet:
        return {QColor(u"#BF5AF2"_s), QColor(u"#5E5CE6"_s)};
    }
    Q_UNREACHABLE();
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

FeaturePrivacyNotice privacyNotice(PrivacyConsentKind kind, const QString &icon, NoticeTint tint,
                                   const QString &title, const QString &message, const QStringList &details)
{
    FeaturePrivacyNotice made;
    made.id = rawValue(kind);
    made.kind = kind;
    made.icon = icon;
    made.colors = colorsOf(tint);
    made.title = title;
    made.message = message;
    made.details = details;
    return made;
}

FeaturePrivacyNotice featurePrivacyNotice(PrivacyConsentKind kind)
{
    for (const Tool &tool : tools()) {
        const auto found = std::ranges::find(tool.notices, kind, &FeaturePrivacyNotice::kind);
        if (found != tool.notices.end())
            return *found;
    }
    // What belongs to no tool is agreed to with the statement.
    const PrivacyStatement statement = reviewedStatement();
    return privacyNotice(kind, u"hand.raised.fill"_s, NoticeTint::blue, statement.title, statement.message,
                         statement.details);
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
