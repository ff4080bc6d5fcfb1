#include "maintenance/uninstall/OpenReview.h"

#include "maintenance/uninstall/ReviewListing.h"

using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto sizesShownEvery = 100ms;

} // namespace

void OpenReview::prepare(const UninstallPlan &plan)
{
    close();
    _isPreparing = true;
    run(plan, _wanted);
}

QCoro::Task<> OpenReview::run(UninstallPlan plan, Cancellation wanted)
{
    const UninstallReview review = co_await listedReview(plan, _hosts.catalog, _hosts.programs);
    if (wanted.isCancelled())
        co_return;
    _review = review;
    _isPreparing = false;
    const auto measured = [this](qsizetype item, qint64 bytes) {
        _sizes.insert(item, bytes);
        if (!_sizesDue)
            _sizesDue = _clock.after(sizesShownEvery, [this] { showSizes(); });
    };
    co_await measureReview(review, _hosts.usage, measured, wanted);
    if (!wanted.isCancelled())
        showSizes();
}

// Together: a publication for each of thousands would stand still.
void OpenReview::showSizes()
{
    _sizesDue.reset();
    std::optional<UninstallReview> now = review();
    if (!now)
        return;
    for (const auto &[item, bytes] : std::as_const(_sizes).asKeyValueRange())
        now->items[item].bytes = bytes;
    _sizes.clear();
    _review = now;
}

void OpenReview::setTicked(const QString &path, bool isTicked)
{
    std::optional<UninstallReview> now = review();
    if (!now)
        return;
    for (ReviewItem &item : now->items) {
        if (item.path == path && !item.isFixed)
            item.isTicked = isTicked;
    }
    _review = now;
}

void OpenReview::close()
{
    _wanted.cancel();
    _wanted = Cancellation();
    _sizesDue.reset();
    _sizes.clear();
    _isPreparing = false;
    _review = std::nullopt;
}

} // namespace velbrix
