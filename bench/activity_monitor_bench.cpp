// Measures what watching keyboard and mouse activity costs the program: CPU time and wakeups of a process
// that runs the X11 activity monitor, first with no input at all, then under a heavy input load (by
// default 1000 relative mouse motions and 10 key presses a second, generated through XTEST), each for
// the same time. The monitored process is a child that does nothing else: an event loop, the monitor
// with both channels on, and a scheduler-like timer that reads both stamps every few seconds. It runs on
// a private Xvfb that this program starts and ends.
//
// CPU time is the sum of the child's threads' run time (/proc/<pid>/task/*/schedstat, nanoseconds);
// wakeups are their voluntary context switches (/proc/<pid>/task/*/status).
//
// --every-event runs, for comparison, a monitor that keeps its events selected and stamps every one of
// them: it shows what the load costs a design whose cost follows the input rate (and that the load
// really reaches a client). --gui makes the child a Qt GUI application on the Xvfb (the xcb platform), as
// the program is, so that anything Qt's own connection receives under the load is counted too. --desk
// replaces the load with a user at the desk (generateDeskLoad): another client's window with the focus,
// the pointer moving inside it and letters typed into it, counted from the first event.
#include "platform/linux/SystemClock.h"
#include "platform/linux/X11ActivityMonitor.h"
#include "platform/linux/XkbStateFollower.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

using namespace tarvo;

namespace {

struct Options {
    int seconds = 30;
    int pollMs = 15000;
    int motionHz = 1000;
    int keyHz = 10;
    bool everyEvent = false;
    bool gui = false;
    bool desk = false;
};

[[noreturn]] void die(const std::string& what) {
    std::fprintf(stderr, "activity_monitor_bench: %s\n", what.c_str());
    std::exit(2);
}

// ---- the monitored child --------------------------------------------------------------------------

// The comparison design: every event selected, every event stamped.
class EveryEventMonitor {
public:
    explicit EveryEventMonitor(const char* display)
        : connection_(xcb_connect(display, nullptr)) {
        const xcb_query_extension_reply_t* ext = xcb_get_extension_data(connection_, &xcb_input_id);
        if (xcb_connection_has_error(connection_) || !ext || !ext->present)
            die("no X display with XInput for the comparison monitor");
        std::free(xcb_input_xi_query_version_reply(connection_, xcb_input_xi_query_version(connection_, 2, 2),
                                                   nullptr));
        struct {
            xcb_input_event_mask_t head;
            std::uint32_t bits;
        } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
               XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_MOTION |
                   XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS};
        xcb_input_xi_select_events(
            connection_, xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root, 1, &mask.head);
        xcb_flush(connection_);
        notifier_ =
            std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_), QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
            while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
                ++events_;
                stamp_ = SystemClock::currentTickCount();
                std::free(event);
            }
        });
    }
    ~EveryEventMonitor() {
        notifier_.reset();
        xcb_disconnect(connection_);
    }
    std::uint64_t events() const { return events_; }

private:
    xcb_connection_t* connection_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::uint64_t events_ = 0;
    std::int32_t stamp_ = 0;
};

int runMonitor(int argc, char** argv, const char* display, int pollMs, bool everyEvent, bool gui) {
    // --gui: a whole Qt GUI application on the same display, as the program is, so that whatever Qt's own
    // connection receives under the load counts too; like the program, it lets Qt follow the keyboard
    // only while it has the focus (which it never has here).
    std::unique_ptr<QCoreApplication> application;
    std::unique_ptr<XkbStateFollower> keyboard;
    if (gui) {
        qputenv("DISPLAY", display);
        qputenv("QT_QPA_PLATFORM", "xcb");
        application = std::make_unique<QGuiApplication>(argc, argv);
        keyboard = XkbStateFollower::attach();
    } else {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    QCoreApplication& app = *application;
    std::unique_ptr<X11ActivityMonitor> monitor;
    std::unique_ptr<EveryEventMonitor> comparison;
    if (everyEvent) {
        comparison = std::make_unique<EveryEventMonitor>(display);
    } else {
        QString whyNot;
        monitor = X11ActivityMonitor::open(display, &whyNot);
        if (!monitor)
            die(whyNot.toStdString());
        monitor->InstallFilter(0, true);
        monitor->InstallFilter(1, true);
    }

    // The scheduler's natural-pause check: it reads both stamps every InterruptFor seconds.
    QTimer poll;
    poll.setTimerType(Qt::PreciseTimer);
    int looks = 0;
    int grew = 0;
    std::array<std::int32_t, 2> last{0, 0};
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
        ++looks;
        if (!monitor)
            return;
        for (int c = 0; c < 2; ++c) {
            const std::int32_t now = monitor->VexGetTime(c);
            if (now > last[static_cast<size_t>(c)])
                ++grew;
            last[static_cast<size_t>(c)] = now;
        }
    });
    poll.start(pollMs);

    // The parent closes our standard input to end the run.
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, [&] {
        char buffer[64];
        if (read(STDIN_FILENO, buffer, sizeof buffer) <= 0)
            app.quit();
    });

    std::printf("ready\n");
    std::fflush(stdout);
    app.exec();
    const std::uint64_t events = monitor ? monitor->eventsReceived() : comparison->events();
    std::printf("events %llu looks %d grew %d\n", static_cast<unsigned long long>(events), looks, grew);
    return 0;
}

// ---- the measuring parent -------------------------------------------------------------------------

struct Usage {
    std::uint64_t cpuNs = 0;
    std::uint64_t voluntarySwitches = 0;
};

Usage usageOf(pid_t pid) {
    Usage usage;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task")) {
        std::ifstream schedstat(task.path() / "schedstat");
        std::uint64_t ns = 0;
        schedstat >> ns;
        usage.cpuNs += ns;
        std::ifstream status(task.path() / "status");
        for (std::string line; std::getline(status, line);) {
            if (line.rfind("voluntary_ctxt_switches:", 0) == 0)
                usage.voluntarySwitches += std::stoull(line.substr(line.find(':') + 1));
        }
    }
    return usage;
}

struct Child {
    pid_t pid = -1;
    int in = -1;  // its standard input
    int out = -1; // its standard output
};

Child spawn(const std::vector<std::string>& command, bool quietStderr) {
    int toChild[2];
    int fromChild[2];
    if (pipe(toChild) != 0 || pipe(fromChild) != 0)
        die("pipe failed");
    const pid_t pid = fork();
    if (pid < 0)
        die("fork failed");
    if (pid == 0) {
        dup2(toChild[0], STDIN_FILENO);
        dup2(fromChild[1], STDOUT_FILENO);
        if (quietStderr) {
            const int null = ::open("/dev/null", O_WRONLY);
            dup2(null, STDERR_FILENO);
        }
        for (int fd : {toChild[0], toChild[1], fromChild[0], fromChild[1]})
            close(fd);
        std::vector<char*> args;
        for (const auto& a : command)
            args.push_back(const_cast<char*>(a.c_str()));
        args.push_back(nullptr);
        execvp(args[0], args.data());
        _exit(127);
    }
    close(toChild[0]);
    close(fromChild[1]);
    return {pid, toChild[1], fromChild[0]};
}

std::string readLine(int fd) {
    std::string line;
    char c;
    while (read(fd, &c, 1) == 1 && c != '\n')
        line += c;
    return line;
}

void sleepUntil(const timespec& when) {
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &when, nullptr);
}

timespec plusNs(timespec t, long long ns) {
    t.tv_nsec += ns;
    while (t.tv_nsec >= 1000000000) {
        t.tv_nsec -= 1000000000;
        ++t.tv_sec;
    }
    return t;
}

struct Load {
    long long motions = 0;
    long long keys = 0;
};

void warmUp(const std::string& display) {
    Display* x = XOpenDisplay(display.c_str());
    if (!x)
        die("cannot open " + display + " for XTEST");
    const KeyCode key = XKeysymToKeycode(x, XK_a);
    XTestFakeKeyEvent(x, key, True, CurrentTime);
    XTestFakeKeyEvent(x, key, False, CurrentTime);
    XTestFakeRelativeMotionEvent(x, 1, 0, CurrentTime);
    XSync(x, False);
    XCloseDisplay(x);
}

// Relative motions (the kind that produce raw motion events) back and forth by one pixel, and presses
// and releases of "a", at the given rates, flushed one by one as a real device would deliver them. Every
// other key is typed as a capital, with Shift held around it: a change of modifiers is what every
// client that follows the keyboard's state hears about, whatever window has the focus.
Load generateLoad(const std::string& display, const Options& options) {
    Display* x = XOpenDisplay(display.c_str());
    if (!x)
        die("cannot open " + display + " for XTEST");
    const KeyCode key = XKeysymToKeycode(x, XK_a);
    const KeyCode shift = XKeysymToKeycode(x, XK_Shift_L);
    Load load;
    const long long tickNs = 1000000000LL / options.motionHz;
    const long long ticks = static_cast<long long>(options.seconds) * options.motionHz;
    const long long ticksPerKey = options.keyHz > 0 ? options.motionHz / options.keyHz : 0;
    timespec next;
    clock_gettime(CLOCK_MONOTONIC, &next);
    for (long long i = 0; i < ticks; ++i) {
        XTestFakeRelativeMotionEvent(x, (i % 2) ? -1 : 1, 0, CurrentTime);
        ++load.motions;
        if (ticksPerKey > 0 && i % ticksPerKey == 0) {
            const bool capital = load.keys % 2 == 1;
            if (capital)
                XTestFakeKeyEvent(x, shift, True, CurrentTime);
            XTestFakeKeyEvent(x, key, True, CurrentTime);
            XTestFakeKeyEvent(x, key, False, CurrentTime);
            if (capital)
                XTestFakeKeyEvent(x, shift, False, CurrentTime);
            ++load.keys;
        }
        XFlush(x);
        next = plusNs(next, tickNs);
        sleepUntil(next);
    }
    XSync(x, False);
    XCloseDisplay(x);
    return load;
}

// A user at the desk, as another X client sees it: its own 800x600 window at 560,240 takes the input focus
// (set by the client itself, as it is with no window manager), the pointer moves inside it and the
// letters a to z are typed into it, one after the other, at the given rates. The client reads what the
// server sends it, as any client must. Nothing comes before: the first input of the session is part of
// the load, as it is on a desk.
Load generateDeskLoad(const std::string& display, const Options& options) {
    Display* x = XOpenDisplay(display.c_str());
    if (!x)
        die("cannot open " + display + " for XTEST");
    constexpr int left = 560, top = 240, width = 800, height = 600;
    const Window window =
        XCreateSimpleWindow(x, DefaultRootWindow(x), left, top, width, height, 0,
                            BlackPixel(x, DefaultScreen(x)), WhitePixel(x, DefaultScreen(x)));
    XSelectInput(x, window,
                 KeyPressMask | KeyReleaseMask | PointerMotionMask | FocusChangeMask | ExposureMask |
                     StructureNotifyMask);
    XMapWindow(x, window);
    for (XEvent event; XWindowEvent(x, window, StructureNotifyMask, &event), event.type != MapNotify;) {
    }
    XSetInputFocus(x, window, RevertToParent, CurrentTime);
    std::array<KeyCode, 26> letters{};
    for (size_t i = 0; i < letters.size(); ++i)
        letters[i] = XKeysymToKeycode(x, static_cast<KeySym>(XK_a + i));
    // The pointer sweeps to and fro over a 200-pixel stretch well inside the window (and the screen).
    const auto sweep = [](long long i) { return static_cast<int>(i % 400 < 200 ? i % 400 : 400 - i % 400); };
    Load load;
    const long long tickNs = 1000000000LL / options.motionHz;
    const long long ticks = static_cast<long long>(options.seconds) * options.motionHz;
    const long long ticksPerKey = options.keyHz > 0 ? options.motionHz / options.keyHz : 0;
    timespec next;
    clock_gettime(CLOCK_MONOTONIC, &next);
    for (long long i = 0; i < ticks; ++i) {
        XTestFakeMotionEvent(x, DefaultScreen(x), left + 100 + sweep(i), top + 200 + sweep(i / 7) / 2,
                             CurrentTime);
        ++load.motions;
        if (ticksPerKey > 0 && i % ticksPerKey == 0) {
            const KeyCode key = letters[static_cast<size_t>(load.keys % 26)];
            XTestFakeKeyEvent(x, key, True, CurrentTime);
            XTestFakeKeyEvent(x, key, False, CurrentTime);
            ++load.keys;
        }
        XFlush(x);
        for (XEvent event; XPending(x) > 0;)
            XNextEvent(x, &event);
        next = plusNs(next, tickNs);
        sleepUntil(next);
    }
    XSync(x, False);
    XDestroyWindow(x, window);
    XCloseDisplay(x);
    return load;
}

struct Figures {
    double cpuMsPerMinute;
    double wakeupsPerSecond;
};

Figures measure(pid_t pid, const std::function<void()>& during) {
    const Usage before = usageOf(pid);
    const auto start = std::chrono::steady_clock::now();
    during();
    const Usage after = usageOf(pid);
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return {static_cast<double>(after.cpuNs - before.cpuNs) / 1e6 * 60.0 / elapsed,
            static_cast<double>(after.voluntarySwitches - before.voluntarySwitches) / elapsed};
}

Options parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const auto value = [&] {
            if (i + 1 >= argc)
                die("missing value after " + a);
            return std::atoi(argv[++i]);
        };
        if (a == "--seconds")
            options.seconds = value();
        else if (a == "--poll-ms")
            options.pollMs = value();
        else if (a == "--motion-hz")
            options.motionHz = value();
        else if (a == "--key-hz")
            options.keyHz = value();
        else if (a == "--every-event")
            options.everyEvent = true;
        else if (a == "--gui")
            options.gui = true;
        else if (a == "--desk")
            options.desk = true;
        else
            die("usage: activity_monitor_bench [--seconds N] [--poll-ms N] [--motion-hz N] [--key-hz N] "
                "[--every-event] [--gui] [--desk]");
    }
    if (options.seconds < 1 || options.pollMs < 1 || options.motionHz < 1 || options.keyHz < 0)
        die("the numbers must be positive");
    return options;
}

} // namespace

int main(int argc, char** argv) {
    // --load-only DISPLAY [options]: only the input load, on a display that is already there, for a
    // script that measures another process under it (bench/tray_startup_bench.sh: the whole program).
    if (argc >= 3 && std::strcmp(argv[1], "--load-only") == 0) {
        const std::string display = argv[2];
        argv[2] = argv[0];
        const Options options = parse(argc - 2, argv + 2);
        const Load load = options.desk ? generateDeskLoad(display, options) : generateLoad(display, options);
        std::printf("%lld %lld\n", load.motions, load.keys);
        return 0;
    }
    if (argc >= 4 && std::strcmp(argv[1], "--monitor") == 0) {
        const auto flag = [&](const char* name) {
            return std::any_of(argv + 4, argv + argc,
                               [name](const char* a) { return std::strcmp(a, name) == 0; });
        };
        return runMonitor(argc, argv, argv[2], std::atoi(argv[3]), flag("--every-event"), flag("--gui"));
    }

    const Options options = parse(argc, argv);
    std::signal(SIGPIPE, SIG_IGN);

    // Xvfb picks a free display number and writes it to its standard output.
    Child xvfb = spawn(
        {"Xvfb", "-displayfd", "1", "-screen", "0", "1280x1024x24", "-noreset", "-nolisten", "tcp"}, true);
    const std::string number = readLine(xvfb.out);
    if (number.empty())
        die("Xvfb did not start (is it installed?)");
    const std::string display = ":" + number;

    std::vector<std::string> command{"/proc/self/exe", "--monitor", display, std::to_string(options.pollMs)};
    command[0] = std::filesystem::read_symlink("/proc/self/exe").string();
    if (options.everyEvent)
        command.push_back("--every-event");
    if (options.gui)
        command.push_back("--gui");
    Child monitor = spawn(command, false);
    if (readLine(monitor.out) != "ready")
        die("the monitor did not start");
    // One key press and one motion before measuring, then a pause: the first input from a device that
    // has not been used yet makes every client with a keyboard map (Qt's own connection, with --gui)
    // reload that map once. That is a one-off of the session, not a cost of the input rate. The desk
    // load counts it, as a user's desk has it.
    if (!options.desk) {
        warmUp(display);
        std::this_thread::sleep_for(std::chrono::seconds(2));
    }

    const Figures idle =
        measure(monitor.pid, [&] { std::this_thread::sleep_for(std::chrono::seconds(options.seconds)); });
    Load load;
    const Figures loaded = measure(monitor.pid, [&] {
        load = options.desk ? generateDeskLoad(display, options) : generateLoad(display, options);
    });

    close(monitor.in);
    const std::string summary = readLine(monitor.out);
    waitpid(monitor.pid, nullptr, 0);
    kill(xvfb.pid, SIGTERM);
    waitpid(xvfb.pid, nullptr, 0);

    std::printf("activity monitor%s%s on Xvfb %s, stamps read every %d ms, %d s per run\n",
                options.everyEvent ? " (comparison: every event handled)" : "",
                options.gui ? " in a Qt GUI application" : "", display.c_str(), options.pollMs,
                options.seconds);
    std::printf("load: %lld %s motions (%.0f/s) and %lld key presses (%.1f/s) through XTEST%s\n",
                load.motions, options.desk ? "pointer" : "relative",
                load.motions / static_cast<double>(options.seconds), load.keys,
                load.keys / static_cast<double>(options.seconds),
                options.desk ? ", into another client's window with the focus" : "");
    std::printf("%-8s %14s %12s\n", "", "CPU ms/min", "wakeups/s");
    std::printf("%-8s %14.2f %12.2f\n", "idle", idle.cpuMsPerMinute, idle.wakeupsPerSecond);
    std::printf("%-8s %14.2f %12.2f\n", "loaded", loaded.cpuMsPerMinute, loaded.wakeupsPerSecond);
    std::printf("%-8s %14.2f %12.2f\n", "added", loaded.cpuMsPerMinute - idle.cpuMsPerMinute,
                loaded.wakeupsPerSecond - idle.wakeupsPerSecond);
    std::printf("monitor process: %s\n", summary.c_str());
    return 0;
}
