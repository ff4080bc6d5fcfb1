#include "wallpaper/LaunchRestore.h"

using namespace Qt::StringLiterals;

namespace velbrix {

LaunchPlan launchPlan(const LaunchFacts &facts)
{
    using Step = LaunchPlan::Step;
    if (!facts.autoPlay)
        return {Step::nothing, {u"autoRestore skipped: autoPlay=false"_s}};
    if (facts.isOnBattery)
        return {Step::nothing, {u"autoRestore skipped: on battery"_s}};
    if (facts.isPlaying)
        return {Step::nothing, {u"autoRestore skipped: already playing"_s}};
    if (facts.contentMode != WallpaperContentMode::video)
        return {};
    if (facts.hasVideo)
        return {Step::applyCurrent, {u"autoRestore apply current videoURL"_s}};
    if (facts.lastVideoPath)
        return {Step::loadLast, {u"autoRestore load last path: "_s + *facts.lastVideoPath}};
    LaunchPlan plan{Step::nothing, {u"autoRestore: no last video path"_s}};
    if (facts.displayPaths > 0) {
        plan.step = Step::secondaryOnly;
        plan.log << u"autoRestore secondary-only paths count=%1"_s.arg(facts.displayPaths);
    }
    return plan;
}

} // namespace velbrix
