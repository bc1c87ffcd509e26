#include "platform/linux/CanberraLibrary.h"

#include <dlfcn.h>

namespace tarvo {

namespace {

template <typename Function>
bool resolve(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

const CanberraLibrary* load() {
    // The run-time name of the library's ABI, as the Debian package libcanberra0 installs it.
    void* library = dlopen("libcanberra.so.0", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        return nullptr;
    static CanberraLibrary functions;
    CanberraLibrary& f = functions;
    const bool complete = resolve(library, "ca_context_create", f.context_create) &&
                          resolve(library, "ca_context_change_props", f.context_change_props) &&
                          resolve(library, "ca_context_open", f.context_open) &&
                          resolve(library, "ca_context_destroy", f.context_destroy) &&
                          resolve(library, "ca_context_play", f.context_play) &&
                          resolve(library, "ca_context_play_full", f.context_play_full) &&
                          resolve(library, "ca_proplist_create", f.proplist_create) &&
                          resolve(library, "ca_proplist_sets", f.proplist_sets) &&
                          resolve(library, "ca_proplist_destroy", f.proplist_destroy);
    return complete ? &functions : nullptr;
}

} // namespace

const CanberraLibrary* CanberraLibrary::get() {
    static const CanberraLibrary* const library = load();
    return library;
}

} // namespace tarvo
