// Starts a program and prints, in milliseconds, the time from its exec to the moment one of its
// windows is reparented into the notification area's panel (the XEmbed dock), then the program's pid.
// Watching X events directly keeps the measurement free of the polling delay of a shell loop.
//   dock_time <panel window id> <program> [arguments...]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

bool isInside(xcb_connection_t* c, xcb_window_t window, xcb_window_t panel) {
    for (int depth = 0; depth < 8 && window != XCB_NONE; ++depth) {
        if (window == panel)
            return true;
        Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr),
                                           &std::free);
        if (!tree || tree->parent == tree->root)
            return false;
        window = tree->parent;
    }
    return false;
}

void watchStructure(xcb_connection_t* c, xcb_window_t window, std::uint32_t mask) {
    xcb_change_window_attributes(c, window, XCB_CW_EVENT_MASK, &mask);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: dock_time <panel window id> <program> [arguments...]\n");
        return 2;
    }
    const auto panel = static_cast<xcb_window_t>(std::strtoul(argv[1], nullptr, 0));
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c)) {
        std::fprintf(stderr, "dock_time: cannot open the display\n");
        return 2;
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    // New top-level windows announce themselves on the root; each is then watched for its reparenting.
    watchStructure(c, root, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    xcb_flush(c);
    // A round trip: the server has the selection before the program can create its first window.
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));

    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        // Our standard output carries the figures alone.
        if (const int null = open("/dev/null", O_WRONLY); null >= 0)
            dup2(null, STDOUT_FILENO);
        execv(argv[2], argv + 2);
        std::perror("dock_time: exec");
        _exit(127);
    }
    while (xcb_generic_event_t* event = xcb_wait_for_event(c)) {
        const std::uint8_t type = event->response_type & 0x7f;
        if (type == XCB_CREATE_NOTIFY) {
            const auto* created = reinterpret_cast<xcb_create_notify_event_t*>(event);
            if (created->parent == root)
                watchStructure(c, created->window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
            xcb_flush(c);
        } else if (type == XCB_REPARENT_NOTIFY) {
            const auto* moved = reinterpret_cast<xcb_reparent_notify_event_t*>(event);
            if (isInside(c, moved->parent, panel)) {
                const auto ms =
                    std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start);
                std::printf("%.1f %d\n", ms.count(), static_cast<int>(child));
                std::free(event);
                xcb_disconnect(c);
                return 0;
            }
        }
        std::free(event);
    }
    std::fprintf(stderr, "dock_time: the X connection closed\n");
    return 1;
}
