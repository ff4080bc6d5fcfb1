#include "views/settings/AboutSection.h"

#include "views/components/GradientIcon.h"
#include "views/components/SettingRow.h"

#include <QCoreApplication>
#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace velbrix {

AboutSection::AboutSection(const ViewContext &context, QWidget *parent) : Card(parent)
{
    const QString version = QCoreApplication::applicationVersion();
    auto *row = new SettingRow(
        u"Velbrix"_s,
        (version.isEmpty() ? QString() : u"版本 %1\n"_s.arg(version)) +
            u"%1 · %2"_s.arg(QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture()),
        nullptr);
    row->setLeading(new GradientIcon(context.theme, u"shippingbox.fill"_s, {}));
    addRow(row);
}

} // namespace velbrix
