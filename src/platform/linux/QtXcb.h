#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

struct xcb_connection_t;

namespace tarvo {

// Qt's own connection to the X server, where the application runs on Qt's X11 platform; null
// elsewhere (other platforms may still answer for the X11 interface, the offscreen one without a
// connection). What follows the desktop through it adds no socket of its own.
xcb_connection_t* qtXcbConnection();

// The atom of a name, asked of the server (a round trip); 0 where it does not answer.
std::uint32_t internAtom(xcb_connection_t* connection, std::string_view name);

// A reply or error of XCB, which the caller frees.
struct XcbFree {
    void operator()(void* p) const { std::free(p); }
};
template <typename T>
using XcbReply = std::unique_ptr<T, XcbFree>;

} // namespace tarvo
