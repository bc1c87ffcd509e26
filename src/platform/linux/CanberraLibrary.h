#pragma once

#include <canberra.h>

namespace tarvo {

// libcanberra, loaded the first time a sound is played rather than when the program starts. A
// break reminder sounds a few times an hour; linked in, the library and the codecs it brings along
// (Vorbis, Ogg, its cache database) would sit in every idle minute's memory and be relocated at every
// start. Without the library installed, every sound is silent.
struct CanberraLibrary {
    decltype(&::ca_context_create) context_create = nullptr;
    decltype(&::ca_context_change_props) context_change_props = nullptr;
    decltype(&::ca_context_open) context_open = nullptr;
    decltype(&::ca_context_destroy) context_destroy = nullptr;
    decltype(&::ca_context_play) context_play = nullptr;
    decltype(&::ca_context_play_full) context_play_full = nullptr;
    decltype(&::ca_proplist_create) proplist_create = nullptr;
    decltype(&::ca_proplist_sets) proplist_sets = nullptr;
    decltype(&::ca_proplist_destroy) proplist_destroy = nullptr;

    // The library, loaded on the first call and kept for the life of the process; nullptr when it
    // cannot be loaded or lacks one of the functions.
    static const CanberraLibrary* get();
};

} // namespace tarvo
