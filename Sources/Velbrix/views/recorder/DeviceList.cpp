#include "views/recorder/DeviceList.h"

#include "views/components/Parts.h"

#include <QButtonGroup>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {

DeviceList::DeviceList(const QString &name, const QString &emptyText, QWidget *parent)
    : QWidget(parent),
      _group(new QButtonGroup(this)),
      _empty(makeText(emptyText, u"note"_s)),
      _rows(new QVBoxLayout(this))
{
    setObjectName(name);
    _rows->setContentsMargins(0, 0, 0, 10);
    _rows->setSpacing(2);
    _rows->addWidget(_empty);
    connect(_group, &QButtonGroup::idToggled, this, [this](int index, bool on) {
        if (on)
            Q_EMIT wanted(_devices[index].id);
    });
}

void DeviceList::show(const QList<AudioDeviceItem> &devices, const QString &selected)
{
    const QSignalBlocker quiet(_group);
    if (devices != _devices)
        rebuild(devices);
    _empty->setVisible(devices.isEmpty());
    bool isPresent = false;
    for (const AudioDeviceItem &device : devices)
        isPresent = isPresent || device.id == selected;
    for (qsizetype index = 0; index < devices.size(); ++index) {
        const bool isChosen = isPresent ? devices[index].id == selected : devices[index].isDefault;
        QAbstractButton *const button = _group->button(static_cast<int>(index));
        button->setText((isChosen ? u"✓  "_s : u"     "_s) + devices[index].name +
                        (devices[index].isDefault ? u"（系统默认）"_s : QString()));
        if (isChosen)
            button->setChecked(true);
    }
}

void DeviceList::rebuild(const QList<AudioDeviceItem> &devices)
{
    _devices = devices;
    const auto old = _group->buttons();
    for (QAbstractButton *button : old) {
        _group->removeButton(button);
        button->hide();
        button->deleteLater(); // it may be the one that was just clicked
    }
    for (qsizetype index = 0; index < devices.size(); ++index) {
        auto *button = new QPushButton(this);
        button->setObjectName(u"%1.%2"_s.arg(objectName()).arg(index));
        button->setAccessibleName(devices[index].name);
        button->setProperty("role", u"device"_s);
        button->setCheckable(true);
        button->setFocusPolicy(Qt::TabFocus);
        _group->addButton(button, static_cast<int>(index));
        _rows->addWidget(button);
    }
}

} // namespace velbrix
