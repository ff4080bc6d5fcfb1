#pragma once

#include "platform/linux/media/mpv/LibMpv.h"

namespace velbrix {

// How the track of the player's list, which is about to play, is decoded: the
// larger its pictures, the more speed goes before looks.
void tuneMpvDecoder(const LibMpv &mpv, mpv_handle *handle, const mpv_node &track);

} // namespace velbrix
