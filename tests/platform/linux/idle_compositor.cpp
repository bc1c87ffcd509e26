// A Wayland compositor that offers nothing but a seat and the idle notification (ext-idle-notify-v1),
// for the tests of the activity monitor that listens to it. It listens on the socket named by its
// argument in $XDG_RUNTIME_DIR and says "ready" once it does. The test plays the user on its standard
// input, one command a line, and after each it answers "<events sent so far> <notification objects>
// <input-idle notifications asked for>" (the kind of version 2, which it offers):
//   input       the user does something: idle notifications resume, and their timeouts start afresh
//   idle <ms>   the user does nothing for so long: notifications whose timeout is reached go idle
// As the protocol has it, a new notification object is not idle, and its timeout runs from its creation.
#include "ext-idle-notify-v1-server.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
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

// Version 2's kind, which follows the input alone; counted for the test.
int inputIdle = 0;
void getInputIdleNotification(wl_client* client, wl_resource* notifier, std::uint32_t id,
                              std::uint32_t timeout, wl_resource* seat) {
    ++inputIdle;
    getIdleNotification(client, notifier, id, timeout, seat);
}

const struct ext_idle_notifier_v1_interface notifierRequests = {destroyResource, getIdleNotification,
                                                                getInputIdleNotification};
// The seat has no devices; it is there to name in get_idle_notification.
void noDevice(wl_client*, wl_resource*, std::uint32_t) {}
const struct wl_seat_interface seatRequests = {noDevice, noDevice, noDevice, destroyResource};

struct Global {
    const wl_interface* interface;
    const void* requests;
};
const Global seat{&wl_seat_interface, &seatRequests};
const Global notifier{&ext_idle_notifier_v1_interface, &notifierRequests};

void bind(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
    const auto* global = static_cast<const Global*>(data);
    wl_resource* resource = wl_resource_create(client, global->interface, int(version), id);
    wl_resource_set_implementation(resource, global->requests, nullptr, nullptr);
    if (global == &seat)
        wl_seat_send_capabilities(resource, 0);
}

int readCommand(int, std::uint32_t, void* display) {
    std::string line;
    if (!std::getline(std::cin, line)) { // the test has ended
        wl_display_terminate(static_cast<wl_display*>(display));
        return 0;
    }
    const bool input = line == "input";
    const std::uint64_t milliseconds = input ? 0 : std::strtoull(line.c_str() + 5, nullptr, 10);
    for (Notification& n : notifications) {
        n.idleFor = input ? 0 : n.idleFor + milliseconds;
        if (const bool idle = !input && n.idleFor >= n.timeout; idle != n.idle) {
            n.idle = idle;
            idle ? ext_idle_notification_v1_send_idled(n.resource)
                 : ext_idle_notification_v1_send_resumed(n.resource);
            ++sent;
        }
    }
    wl_display_flush_clients(static_cast<wl_display*>(display));
    std::printf("%d %zu %d\n", sent, notifications.size(), inputIdle);
    std::fflush(stdout);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    wl_display* display = wl_display_create();
    if (argc != 2 || !display || wl_display_add_socket(display, argv[1]) != 0)
        return 1;
    wl_global_create(display, &wl_seat_interface, 1, const_cast<Global*>(&seat), bind);
    wl_global_create(display, &ext_idle_notifier_v1_interface, 2, const_cast<Global*>(&notifier), bind);
    wl_event_loop_add_fd(wl_display_get_event_loop(display), STDIN_FILENO, WL_EVENT_READABLE, readCommand,
                         display);
    std::puts("ready");
    std::fflush(stdout);
    wl_display_run(display);
    wl_display_destroy_clients(display);
    wl_display_destroy(display);
    return 0;
}
