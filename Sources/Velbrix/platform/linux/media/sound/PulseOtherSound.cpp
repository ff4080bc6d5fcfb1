#include "platform/linux/media/sound/PulseOtherSound.h"

#include "foundation/MainThreadRelay.h"
#include "platform/linux/media/sound/PulseConnection.h"
#include "platform/linux/media/sound/PulseWatch.h"

#include <QCoroFuture>
#include <QtConcurrent/QtConcurrentRun>

#include <atomic>
#include <unistd.h>
#include <utility>

namespace velbrix {
namespace {

// What has no client is played by the server itself, from one device to another.
bool isHeardFromAnother(const pa_sink_input_info &input)
{
    const char *const process = pa_proplist_gets(input.proplist, PA_PROP_APPLICATION_PROCESS_ID);
    const char *const role = pa_proplist_gets(input.proplist, PA_PROP_MEDIA_ROLE);
    const bool isOwn = process && QByteArray(process).toLongLong() == ::getpid();
    const bool isEvent = role && QByteArray(role) == "event";
    const bool isSilent = input.corked != 0 || input.mute != 0 || pa_cvolume_is_muted(&input.volume) != 0;
    return input.client != PA_INVALID_INDEX && !isOwn && !isEvent && !isSilent;
}

bool doOthersPlay()
{
    bool isAny = false;
    PulseConnection connection;
    if (!connection.open())
        return false;
    const auto take = [](pa_context *, const pa_sink_input_info *input, int end, void *data) {
        if (end == 0 && input && isHeardFromAnother(*input))
            *static_cast<bool *>(data) = true;
    };
    const auto listed =
        connection.finish(pa_context_get_sink_input_info_list(connection.context(), take, &isAny));
    return listed && isAny;
}

} // namespace

class PulseOtherSound::Watching : public std::enable_shared_from_this<Watching> {
public:
    bool isHeard() const { return _isHeard; }

    Observation add(std::function<void()> changed)
    {
        Observation observation = _observers.add(std::move(changed), [self = weak_from_this()] {
            if (const auto alive = self.lock(); alive && alive->_observers.isEmpty())
                alive->end();
        });
        if (!_watch) {
            _watch = std::make_unique<PulseWatch>(PulseWatch::Subject::playback, [this] { announce(); });
            _watch->start();
        }
        return observation;
    }

    void end()
    {
        _watch.reset();
        _isHeard = false;
    }

private:
    // On the watch's thread. A burst of events is one change.
    void announce()
    {
        if (!_isAnnounced.exchange(true))
            _relay.post([this] {
                _isAnnounced = false;
                look();
            });
    }

    QCoro::Task<> look()
    {
        _isStale = true;
        if (std::exchange(_isLooking, true))
            co_return;
        const auto self = shared_from_this();
        bool isHeard = false;
        while (std::exchange(_isStale, false)) {
            const QFuture<bool> looking = QtConcurrent::run(doOthersPlay);
            isHeard = co_await looking;
        }
        _isLooking = false;
        if (_watch && std::exchange(_isHeard, isHeard) != isHeard)
            _observers.notify();
    }

    ObserverList<void()> _observers;
    bool _isHeard = false;
    bool _isLooking = false;
    bool _isStale = false;
    std::atomic<bool> _isAnnounced = false;
    MainThreadRelay _relay;
    std::unique_ptr<PulseWatch> _watch; // while there are observers; ends first: it posts
};

PulseOtherSound::PulseOtherSound() : _watching(std::make_shared<Watching>()) {}

PulseOtherSound::~PulseOtherSound()
{
    _watching->end();
}

bool PulseOtherSound::isHeard() const
{
    return _watching->isHeard();
}

Observation PulseOtherSound::observe(std::function<void()> changed)
{
    return _watching->add(std::move(changed));
}

} // namespace velbrix
