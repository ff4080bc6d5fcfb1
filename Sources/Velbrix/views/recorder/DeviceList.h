#pragma once

#include "platform/AudioDevices.h"

#include <QWidget>

class QButtonGroup;
class QLabel;
class QVBoxLayout;

namespace velbrix {

// Sound devices to choose one of; the arrow keys move in it.
class DeviceList final : public QWidget {
    Q_OBJECT

public:
    DeviceList(const QString &name, const QString &emptyText, QWidget *parent = nullptr);

    // Without a selection the system's default device counts as chosen.
    void show(const QList<AudioDeviceItem> &devices, const QString &selected);

Q_SIGNALS:
    void wanted(const QString &id);

private:
    void rebuild(const QList<AudioDeviceItem> &devices);

    QList<AudioDeviceItem> _devices;
    QButtonGroup *_group;
    QLabel *_empty;
    QVBoxLayout *_rows;
};

} // namespace velbrix
