#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

class DeviceList;
class SettingRow;

// System sound and microphone, each with its devices.
class RecordAudioCard final : public Card {
public:
    explicit RecordAudioCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    void addSystemAudio();
    void addMicrophone();
    void showDevices();
    void showNote();

    ViewContext _context;
    DeviceList *_speakers;
    DeviceList *_microphones;
    SettingRow *_systemRow = nullptr;
    SettingRow *_microphoneRow = nullptr;
};

} // namespace velbrix
