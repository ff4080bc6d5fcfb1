#include "views/uninstall/UninstallSettingsSheet.h"

#include "app/AppServices.h"
#include "views/Follow.h"
#include "views/components/Card.h"
#include "views/components/Parts.h"
#include "views/components/ScrollingBody.h"
#include "views/components/SettingRow.h"
#include "views/components/Switch.h"

#include <QButtonGroup>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int sheetWidth = 520;

} // namespace

QString cleanupSummary(UninstallMode mode, const CleanupOptions &options, const QList<LibraryKind> &kinds)
{
    if (mode != UninstallMode::custom)
        return infoText(mode);
    QStringList names;
    for (const LibraryKind kind : kinds) {
        if (flag(options, kind))
            names.append(label(kind));
    }
    return names.isEmpty() ? u"只移走应用本体，不清理任何数据"_s
                           : u"将移走应用本体，并清理：%1"_s.arg(names.join(u"、"_s));
}

UninstallSettingsSheet::UninstallSettingsSheet(const ViewContext &context, QWidget *page)
    : Sheet(context.theme,
            {u"uninstallSettingsSheet"_s, u"卸载设置"_s, u"决定卸载时连同哪些数据一起移到废纸篓。"_s},
            sheetWidth, page),
      _context(context)
{
    auto *body = new QWidget;
    auto *rows = new QVBoxLayout(body);
    rows->setContentsMargins(0, 0, 6, 0); // beside the scroll bar
    rows->setSpacing(12);
    rows->addWidget(makeModes());
    _toggles = makeToggles();
    rows->addWidget(_toggles);
    _summary = makeText({}, u"note"_s);
    _summary->setObjectName(u"cleanupSummary"_s);
    rows->addWidget(_summary);
    setBody(new ScrollingBody(body));
    _done = addButton({u"uninstallSettingsDone"_s, u"完成"_s, {}, u"primary"_s});
    connect(_done, &QPushButton::clicked, this, &Sheet::cancelled);
    connect(this, &Sheet::cancelled, this, &Sheet::dismiss);
    AppScanner &scanner = context.services.uninstaller;
    follow(scanner, &AppScanner::uninstallModeChanged, this, [this] { showMode(); });
    follow(scanner, &AppScanner::cleanupOptionsChanged, this, [this] { showSummary(); });
}

QWidget *UninstallSettingsSheet::makeModes()
{
    auto *section = new Card;
    section->setObjectName(u"uninstallModes"_s);
    _modes = new QButtonGroup(this);
    for (const UninstallMode mode : allUninstallModes)
        section->addRow(makeModeRow(mode));
    connect(_modes, &QButtonGroup::idToggled, this, [this](int id, bool on) {
        if (on)
            _context.services.uninstaller.setUninstallMode(static_cast<UninstallMode>(id));
    });
    return section;
}

QWidget *UninstallSettingsSheet::makeModeRow(UninstallMode mode)
{
    auto *button = new QRadioButton(rawValue(mode));
    button->setObjectName(u"uninstallMode.%1"_s.arg(static_cast<int>(mode)));
    button->setAccessibleDescription(description(mode));
    _modes->addButton(button, static_cast<int>(mode));
    auto *words = makeText(description(mode), u"note"_s);
    words->setContentsMargins(24, 0, 0, 0);
    auto *row = new QWidget;
    auto *rows = new QVBoxLayout(row);
    rows->setContentsMargins(0, 8, 0, 8);
    rows->setSpacing(2);
    rows->addWidget(button);
    rows->addWidget(words);
    return row;
}

QWidget *UninstallSettingsSheet::makeToggles()
{
    AppScanner &scanner = _context.services.uninstaller;
    auto *section = new Card;
    section->setObjectName(u"cleanupToggles"_s);
    const QList<LibraryKind> kinds = scanner.libraryKinds();
    for (const LibraryKind kind : kinds) {
        auto *toggle = new Switch(_context.theme, u"cleanup.%1"_s.arg(static_cast<int>(kind)));
        section->addRow(new SettingRow(toggleTitle(kind), {}, toggle));
        connect(toggle, &Switch::wanted, this, [&scanner, kind](bool on) {
            CleanupOptions options = scanner.cleanupOptions();
            flag(options, kind) = on;
            scanner.setCleanupOptions(options);
        });
        follow(scanner, &AppScanner::cleanupOptionsChanged, toggle, [toggle, kind, &scanner] {
            toggle->setOn(flag(std::as_const(scanner).cleanupOptions(), kind));
        });
    }
    return section;
}

void UninstallSettingsSheet::focusDefault()
{
    if (QAbstractButton *const chosen = _modes->checkedButton())
        chosen->setFocus();
}

void UninstallSettingsSheet::showMode()
{
    const UninstallMode mode = _context.services.uninstaller.uninstallMode();
    _modes->button(static_cast<int>(mode))->setChecked(true);
    _toggles->setVisible(mode == UninstallMode::custom);
    showSummary();
}

void UninstallSettingsSheet::showSummary()
{
    const AppScanner &scanner = _context.services.uninstaller;
    _summary->setText(
        cleanupSummary(scanner.uninstallMode(), scanner.cleanupOptions(), scanner.libraryKinds()));
}

} // namespace velbrix
