#pragma once

#include "platform/linux/media/mpv/LibMpv.h"

namespace velbrix {

// Sets up a player that is not initialised yet: it plays one local file over
// and over, opens nothing else and touches nothing of the user's own player.
// False where that cannot be kept apart.
bool setMpvOptions(const LibMpv &mpv, mpv_handle *handle);

// How the track of the player's list, which is about to play, is decoded: the
// larger its pictures, the more quality gives way to speed.
void tuneMpvDecoder(const LibMpv &mpv, mpv_handle *handle, const mpv_node &track);

} // namespace velbrix
