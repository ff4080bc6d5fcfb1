#include "views/settings/SettingsPage.h"

#include "app/AppServices.h"
#include "platform/Platform.h"
#include "views/Follow.h"
#include "views/ShownText.h"
#include "views/components/Card.h"
#include "views/components/GradientIcon.h"
#include "views/components/Parts.h"
#include "views/components/SettingRow.h"
#include "views/components/ShortcutField.h"
#include "views/components/Switch.h"
#include "views/settings/PermissionSection.h"

#include <QCoreApplication>
#include <QPushButton>
#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// The shortcuts of the tools that exist.
Card *makeHotkeys(const ViewContext &context)
{
    auto *card = new Card;
    HotkeyManager &hotkeys = context.services.hotkeys;
    for (const HotkeyActionInfo &info : hotkeyActions()) {
        if (hotkeys.isAvailable(info.action))
            card->addRow(new ShortcutField(context.theme, hotkeys, info.action));
    }
    return card;
}

// Only where the program runs from its download.
void addInstallOffer(Card &card, const ViewContext &context, const QString &place)
{
    InstallOffer &offer = context.services.installOffer;
    QPushButton *const move =
        makeButton(context.theme, {u"moveToApplications"_s, u"移动并重新打开"_s, {}, {}});
    auto *row = new SettingRow(u"移到“应用程序”文件夹"_s,
                               u"正在从 %1 运行，登录时可能无法启动"_s.arg(shownPath(place)), move);
    row->setObjectName(u"installRow"_s);
    card.addRow(row);
    QObject::connect(move, &QPushButton::clicked, &offer, &InstallOffer::moveToApplications);
    follow(offer, &InstallOffer::isMovingChanged, move,
           [move, &offer] { move->setDisabled(offer.isMoving()); });
    follow(offer, &InstallOffer::problemChanged, row,
           [row, &offer] { row->setNote(offer.problem(), u"bad"_s); });

    auto *atStart = new Switch(context.theme, u"autoMoveToAppDir"_s);
    card.addRow(new SettingRow(u"启动时提醒移动"_s, {}, atStart));
    QObject::connect(atStart, &Switch::wanted, &offer, &InstallOffer::setAutoMoveToAppDir);
    follow(offer, &InstallOffer::autoMoveToAppDirChanged, atStart,
           [atStart, &offer] { atStart->setOn(offer.autoMoveToAppDir()); });
}

Card *makeLogin(const ViewContext &context)
{
    auto *card = new Card;
    LoginItem &login = *context.services.platform.loginItem;
    auto *atLogin = new Switch(context.theme, u"loginItem"_s);
    auto *row = new SettingRow(u"登录时启动"_s,
                               context.services.platform.family == HostFamily::macos
                                   ? u"登录后在菜单栏中运行，不打开窗口"_s
                                   : u"登录后在托盘中运行，不打开窗口"_s,
                               atLogin);
    row->setObjectName(u"loginRow"_s);
    atLogin->setOn(login.isEnabled());
    card->addRow(row);
    QObject::connect(atLogin, &Switch::wanted, card, [&login, atLogin, row](bool on) {
        const auto changed = login.setEnabled(on);
        row->setNote(changed ? QString() : u"没有改成："_s + changed.error().message, u"bad"_s);
        atLogin->setOn(login.isEnabled());
    });
    if (const auto place = context.services.installOffer.misplacedAt())
        addInstallOffer(*card, context, *place);
    return card;
}

// The statement that was agreed to.
Card *makePrivacy(const ViewContext &context)
{
    auto *card = new Card;
    QPushButton *const show = makeButton(context.theme, {u"reviewStatement"_s, u"查看声明"_s, {}, {}});
    auto *row = new SettingRow(u"隐私与使用声明"_s, {}, show);
    row->setObjectName(u"privacyRow"_s);
    card->addRow(row);
    QObject::connect(show, &QPushButton::clicked, &context.services.router, &AppRouter::openStatement);
    const PrivacyManager &privacy = context.services.privacy;
    follow(privacy, &PrivacyManager::hasAcceptedFirstLaunchNoticeChanged, card, [row, &privacy] {
        row->setDescription(privacy.hasAcceptedFirstLaunchNotice()
                                ? u"你已同意首启使用声明。可随时在托盘菜单再次查看。"_s
                                : u"尚未完成首启声明确认。"_s);
    });
    return card;
}

// Name, version and host.
Card *makeAbout(const ViewContext &context)
{
    auto *card = new Card;
    const QString version = QCoreApplication::applicationVersion();
    auto *row = new SettingRow(
        u"Velbrix"_s,
        (version.isEmpty() ? QString() : u"版本 %1\n"_s.arg(version)) +
            u"%1 · %2"_s.arg(QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture()),
        nullptr);
    row->setLeading(new GradientIcon(context.theme, u"shippingbox.fill"_s, {}));
    card->addRow(row);
    return card;
}

} // namespace

SettingsPage::SettingsPage(const ViewContext &context, QWidget *parent)
    : Page(u"settingsPage"_s, u"设置"_s, u"快捷键、权限、启动与隐私。"_s, parent)
{
    add(u"快捷键"_s, makeHotkeys(context));
    add(u"系统权限"_s, new PermissionSection(context));
    add(u"启动"_s, makeLogin(context));
    add(u"隐私"_s, makePrivacy(context));
    add(u"关于"_s, makeAbout(context));
}

} // namespace velbrix
