#include "platform/macos/media/CoreAudioOtherSound.h"

#include "platform/macos/media/AudioObject.h"

#include <algorithm>
#include <map>
#include <unistd.h>
#include <utility>

namespace velbrix {
namespace {

template <typename Value> Value audioValue(AudioObjectID object, AudioObjectPropertySelector selector)
{
    const AudioObjectPropertyAddress address = globalProperty(selector);
    Value value{};
    UInt32 size = sizeof value;
    return AudioObjectGetPropertyData(object, &address, 0, nullptr, &size, &value) == noErr ? value : Value{};
}

// Calls on the main thread when the property has changed.
class PropertyListener {
public:
    PropertyListener(AudioObjectID object, AudioObjectPropertySelector selector,
                     AudioObjectPropertyListenerBlock changed)
        : _object(object), _address(globalProperty(selector)), _changed(changed)
    {
        AudioObjectAddPropertyListenerBlock(_object, &_address, dispatch_get_main_queue(), _changed);
    }
    ~PropertyListener()
    {
        AudioObjectRemovePropertyListenerBlock(_object, &_address, dispatch_get_main_queue(), _changed);
    }
    PropertyListener(const PropertyListener &) = delete;
    PropertyListener &operator=(const PropertyListener &) = delete;

private:
    const AudioObjectID _object;
    const AudioObjectPropertyAddress _address;
    const AudioObjectPropertyListenerBlock _changed;
};

} // namespace

class CoreAudioOtherSound::Programs : public std::enable_shared_from_this<Programs> {
public:
    // Once it is shared.
    void follow()
    {
        _list = std::make_unique<PropertyListener>(kAudioObjectSystemObject,
                                                   kAudioHardwarePropertyProcessObjectList, listener());
        look();
    }
    bool isHeard() const { return _isHeard; }
    Observation add(std::function<void()> changed)
    {
        return _observers.add(std::move(changed), [self = shared_from_this()]() mutable { self.reset(); });
    }

private:
    // A change may still be on its way when nobody observes any more.
    AudioObjectPropertyListenerBlock listener()
    {
        const std::weak_ptr<Programs> self = weak_from_this();
        return ^(UInt32, const AudioObjectPropertyAddress *) {
            if (const auto alive = self.lock())
                alive->look();
        };
    }
    void readPrograms()
    {
        const QList<AudioObjectID> now = audioObjects(kAudioHardwarePropertyProcessObjectList);
        std::erase_if(_programs, [&now](const auto &program) { return !now.contains(program.first); });
        for (const AudioObjectID program : now) {
            if (!_programs.contains(program) &&
                audioValue<pid_t>(program, kAudioProcessPropertyPID) != ::getpid())
                _programs.try_emplace(program, program, kAudioProcessPropertyIsRunningOutput, listener());
        }
    }
    void look()
    {
        readPrograms();
        const bool isHeard = std::ranges::any_of(_programs, [](const auto &program) {
            return audioValue<UInt32>(program.first, kAudioProcessPropertyIsRunningOutput) != 0;
        });
        if (std::exchange(_isHeard, isHeard) != isHeard)
            _observers.notify();
    }

    std::unique_ptr<PropertyListener> _list;
    std::map<AudioObjectID, PropertyListener> _programs; // but this one
    bool _isHeard = false;
    ObserverList<void()> _observers; // each keeps this alive
};

bool CoreAudioOtherSound::isHeard() const
{
    const auto programs = _programs.lock();
    return programs && programs->isHeard();
}

Observation CoreAudioOtherSound::observe(std::function<void()> changed)
{
    auto programs = _programs.lock();
    if (!programs) {
        programs = std::make_shared<Programs>();
        programs->follow();
        _programs = programs;
    }
    return programs->add(std::move(changed));
}

} // namespace velbrix
