// A Wayland compositor that offers nothing but a seat and the idle notification (ext-idle-notify-v1),
// for the tests of the activity monitor that listens to it. It listens on the socket named by its
// argument in $XDG_RUNTIME_DIR and says "ready" once it does. The test plays the user on its standard
// input, one command a line, and after each it answers "<events sent so far> <notification objects>":
//   input       the user does something: idle notifications resume, and their timeouts start afresh
//   idle <ms>   the user does nothing for so long: notifications whose timeout is reached go idle
// As the protocol has it, a new notification object is not idle, and its timeout runs from its creation.
#include "ext-idle-notify-v1-server.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <string>
#include <unistd.h>
#include <wayland-server.h>

namespace {

struct Notification {
    wl_resource* resource;
    std::uint32_t timeout;
    std::uint64_t idleFor = 0;
    bool idle = false;
};

std::list<Notification> notifications;
int sent = 0;
std::string pending; // what arrived on standard input short of a whole line

void destroyResource(wl_client*, wl_resource* resource) {
    wl_resource_destroy(resource);
}

const struct ext_idle_notification_v1_interface notificationRequests = {destroyResource};

void getIdleNotification(wl_client* client, wl_resource* notifier, std::uint32_t id, std::uint32_t timeout,
                         wl_resource*) {
    wl_resource* resource = wl_resource_create(client, &ext_idle_notification_v1_interface,
                                               wl_resource_get_version(notifier), id);
    notifications.push_back({resource, timeout});
    wl_resource_set_implementation(resource, &notificationRequests, nullptr, [](wl_resource* gone) {
        notifications.remove_if([gone](const Notification& n) { return n.resource == gone; });
    });
}

const struct ext_idle_notifier_v1_interface notifierRequests = {destroyResource, getIdleNotification};

void bindNotifier(wl_client* client, void*, std::uint32_t version, std::uint32_t id) {
    wl_resource* resource = wl_resource_create(client, &ext_idle_notifier_v1_interface, int(version), id);
    wl_resource_set_implementation(resource, &notifierRequests, nullptr, nullptr);
}

// The seat has no devices; it is there to name in get_idle_notification.
void noDevice(wl_client*, wl_resource*, std::uint32_t) {}
const struct wl_seat_interface seatRequests = {noDevice, noDevice, noDevice, destroyResource};

void bindSeat(wl_client* client, void*, std::uint32_t version, std::uint32_t id) {
    wl_resource* resource = wl_resource_create(client, &wl_seat_interface, int(version), id);
    wl_resource_set_implementation(resource, &seatRequests, nullptr, nullptr);
    wl_seat_send_capabilities(resource, 0);
}

void command(const std::string& line) {
    if (line == "input") {
        for (Notification& n : notifications) {
            n.idleFor = 0;
            if (n.idle) {
                n.idle = false;
                ext_idle_notification_v1_send_resumed(n.resource);
                ++sent;
            }
        }
    } else if (line.rfind("idle ", 0) == 0) {
        const std::uint64_t milliseconds = std::strtoull(line.c_str() + 5, nullptr, 10);
        for (Notification& n : notifications) {
            n.idleFor += milliseconds;
            if (!n.idle && n.idleFor >= n.timeout) {
                n.idle = true;
                ext_idle_notification_v1_send_idled(n.resource);
                ++sent;
            }
        }
    }
}

int readCommands(int fd, std::uint32_t, void* data) {
    auto* display = static_cast<wl_display*>(data);
    char buffer[256];
    const ssize_t n = read(fd, buffer, sizeof buffer);
    if (n <= 0) { // the test has ended
        wl_display_terminate(display);
        return 0;
    }
    pending.append(buffer, std::size_t(n));
    for (std::size_t end; (end = pending.find('\n')) != std::string::npos; pending.erase(0, end + 1)) {
        command(pending.substr(0, end));
        wl_display_flush_clients(display);
        std::printf("%d %zu\n", sent, notifications.size());
        std::fflush(stdout);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    wl_display* display = wl_display_create();
    if (!display || wl_display_add_socket(display, argv[1]) != 0)
        return 1;
    wl_global_create(display, &wl_seat_interface, 1, nullptr, bindSeat);
    wl_global_create(display, &ext_idle_notifier_v1_interface, 1, nullptr, bindNotifier);
    wl_event_loop_add_fd(wl_display_get_event_loop(display), STDIN_FILENO, WL_EVENT_READABLE, readCommands,
                         display);
    std::puts("ready");
    std::fflush(stdout);
    wl_display_run(display);
    wl_display_destroy_clients(display);
    wl_display_destroy(display);
    return 0;
}
