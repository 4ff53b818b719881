#include "platform/linux/x11/X11Sources.h"

#include <gtest/gtest.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QProcess>

#include <ctime>
#include <utility>

#include "platform/IdleScript.h"
#include "platform/linux/LinuxEventLoop.h"
#include "support/RunningLoop.h"

namespace tendel {
namespace {

using test::runFor;

constexpr int aSecond = 1000;

class X11SourcesTest : public ::testing::Test {
protected:
    X11SourcesTest() { connect(); }

    void connect() {
        subscriptions_.clear();
        sources_ = {};
        x11_ = std::make_unique<X11Sources>(loop_);
        x11_->addTo(sources_, X11Sources::Idle::included);
        subscriptions_.push_back(idle().crossed.connect([this] { ++crossings_; }));
        subscriptions_.push_back(system().changed.connect([this] { ++systemChanges_; }));
        subscriptions_.push_back(
            sources_.windows.at(0)->changed.connect([this] { ++windowChanges_; }));
    }

    IdleSource& idle() { return *sources_.idle.at(0); }
    SystemActivitySource& system() { return *sources_.system.at(0); }
    std::optional<DesktopWindows> windows() { return sources_.windows.at(0)->windows(); }

    static void execute(const QString& commandLine) {
        ASSERT_EQ(QProcess::execute("sh", {"-c", commandLine}), 0) << commandLine.toStdString();
    }

    test::Application application_;
    LinuxEventLoop loop_;
    std::unique_ptr<X11Sources> x11_;
    PresenceSources sources_;
    int crossings_ = 0;
    int systemChanges_ = 0;
    int windowChanges_ = 0;
    std::vector<Subscription> subscriptions_;
};

TEST_F(X11SourcesTest, TellsOfTheIdleThresholdAndOfTheFirstInputAfterItAlone) {
    constexpr double threshold = 0.6;
    test::runUntil([&] { return idle().idleSeconds() >= threshold; });
    idle().watch(threshold);
    execute("xdotool mousemove 20 20");
    ASSERT_SOON(crossings_ == 1) << "idle from the start";
    test::expectCrossings(idle(), threshold,
                          [](const QString& words) { execute("xdotool " + words); });
    crossings_ = 0;
    idle().watch(30);
    for (int each = 0; each < 10; ++each) {
        execute("xdotool key Shift_L");
        runFor(20);
    }
    EXPECT_EQ(crossings_, 0) << "work is not a crossing";
}

TEST_F(X11SourcesTest, TellsOfTheScreenSaver) {
    EXPECT_EQ(system().is(SystemState::screensaverRunning), false);
    for (const bool isRunning : {true, false}) {
        execute(isRunning ? "xset s activate" : "xset s reset");
        idle().idleSeconds();  // its answer brings the event along, and nothing else will come
        EXPECT_SOON(systemChanges_ > 0 &&
                    system().is(SystemState::screensaverRunning) == isRunning);
        systemChanges_ = 0;
    }
}

// A window of another program, or of ours by its process id.
class TestWindow {
public:
    struct Looks {
        std::vector<const char*> states{};
        const char* type = "_NET_WM_WINDOW_TYPE_NORMAL";
        std::uint32_t desktop = 0;
        std::uint32_t pid = 1;
    };

    // Windows of one connection get different numbers, so that the window manager cannot take a new
    // one for the last.
    TestWindow(xcb_connection_t* native, const Looks& looks)
        : native_(native), id_(xcb_generate_id(native)) {
        const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(native_)).data;
        xcb_create_window(native_, XCB_COPY_FROM_PARENT, id_, screen->root, 700, 100, 300, 200, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
        std::vector<std::uint32_t> states;
        for (const auto* state : looks.states)
            states.push_back(atom(state));
        set("_NET_WM_STATE", XCB_ATOM_ATOM, states);
        set("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, {atom(looks.type)});
        set("_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, {looks.desktop});
        set("_NET_WM_PID", XCB_ATOM_CARDINAL, {looks.pid});
        // Flags and values: the position is the user's, so that it opens on that monitor.
        set("WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS,
            {3, 700, 100, 300, 200, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
        xcb_map_window(native_, id_);
        xcb_flush(native_);
    }
    ~TestWindow() {
        xcb_destroy_window(native_, id_);
        xcb_flush(native_);
    }

    void setTitle(const std::string& title) {
        xcb_change_property(native_, XCB_PROP_MODE_REPLACE, id_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING,
                            8, static_cast<std::uint32_t>(title.size()), title.data());
        xcb_flush(native_);
    }
    void requestFullScreen() {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = id_;
        message.type = atom("_NET_WM_STATE");
        message.data.data32[0] = 1;  // add
        message.data.data32[1] = atom("_NET_WM_STATE_FULLSCREEN");
        xcb_send_event(native_, 0, xcb_setup_roots_iterator(xcb_get_setup(native_)).data->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(native_);
    }
    QString id() const { return QString::number(id_); }

private:
    std::uint32_t atom(std::string_view name) {
        const auto length = static_cast<std::uint16_t>(name.size());
        const auto asked = xcb_intern_atom(native_, 0, length, name.data());
        auto* answer = xcb_intern_atom_reply(native_, asked, nullptr);
        const std::uint32_t found = answer->atom;
        std::free(answer);
        return found;
    }
    void set(const char* name, xcb_atom_t type, const std::vector<std::uint32_t>& values) {
        xcb_change_property(native_, XCB_PROP_MODE_REPLACE, id_, atom(name), type, 32,
                            static_cast<std::uint32_t>(values.size()), values.data());
    }

    xcb_connection_t* native_;
    xcb_window_t id_;
};

class X11WindowsTest : public X11SourcesTest {
protected:
    X11WindowsTest() {
        execute("xrandr --setmonitor L 640/170x800/200+0+0 screen");
        execute("xrandr --setmonitor R 640/170x800/200+640+0 none");
        EXPECT_SOON(windowChanges_ > 0) << "new monitors";
    }
    ~X11WindowsTest() override {
        execute("xrandr --delmonitor R");
        execute("xrandr --delmonitor L");
        execute("xdotool set_desktop 0");
        xcb_disconnect(native_);
    }

    // The names of the covered screens and a letter a window: maximized, a dock or just a window.
    std::string seen() {
        const auto now = windows();
        if (!now) return "unknown";
        std::string all;
        for (const auto& screen : now->screens)
            if (FullScreenDetection::isFullScreen(now->windows, screen.frame, TopEdge::compared))
                all += screen.name;
        for (const auto& window : now->windows)
            all += window.isMaximized ? 'm' : window.isDock ? 'd' : 'w';
        return all;
    }
    // Until the window manager has done what it was asked for.
    void settle() {
        ASSERT_SOON(windowChanges_ > 0);
        while (std::exchange(windowChanges_, 0) > 0)
            runFor(300);
    }

    xcb_connection_t* native_ = xcb_connect(nullptr, nullptr);
};

TEST_F(X11WindowsTest, SaysWhichMonitorIsCovered) {
    ASSERT_EQ(windows()->screens, (std::vector<DesktopWindows::Screen>{{"L", {0, 0, 640, 800}},
                                                                       {"R", {640, 0, 640, 800}}}));
    const char* fullScreen = "_NET_WM_STATE_FULLSCREEN";
    const struct {
        TestWindow::Looks looks;
        const char* seen;
        const char* command = "";  // of xdotool, or to become full screen
        const char* seenThen = "";
    } cases[] = {
        {{.states = {fullScreen}}, "Rw", "windowminimize", ""},
        {{.states = {fullScreen}, .desktop = 1}, "", "set_desktop 1", "Rw"},
        {{.states = {"_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ"}},
         "m",
         "full screen",
         "Rw"},
        {{.states = {fullScreen}, .pid = std::uint32_t(::getpid())}, ""},
        {{.states = {fullScreen}, .type = "_NET_WM_WINDOW_TYPE_DESKTOP"}, ""},
        {{.type = "_NET_WM_WINDOW_TYPE_DOCK"}, "d"},
    };
    for (const auto& [looks, before, command, after] : cases) {
        SCOPED_TRACE(&looks - &cases[0].looks);
        windowChanges_ = 0;
        TestWindow window(native_, looks);
        settle();
        EXPECT_EQ(seen(), before);
        if (command == std::string("full screen"))
            window.requestFullScreen();
        else if (command == std::string("windowminimize"))
            execute("xdotool windowminimize " + window.id());
        else if (*command)
            execute(QString("xdotool ") + command);
        EXPECT_SOON(seen() == after || !*command) << seen();
        execute("xdotool set_desktop 0");
        runFor(300);
    }
    EXPECT_SOON(seen() == "") << "all closed";
}

TEST_F(X11WindowsTest, ListsWhatMovesInFrontFirstAndIsNotWokenByTitles) {
    const TestWindow below(native_, {});
    ASSERT_SOON(seen() == "w");
    TestWindow above(native_, {});
    ASSERT_SOON(seen() == "ww");
    execute("xdotool windowmove --sync " + above.id() + " 100 150");
    EXPECT_SOON(windows()->windows[0].bounds.x < 640);
    EXPECT_GE(windows()->windows[1].bounds.x, 640);
    windowChanges_ = 0;
    execute("xdotool windowraise " + below.id());
    EXPECT_SOON(windowChanges_ > 0 && windows()->windows[0].bounds.x >= 640);

    settle();
    for (const auto* title : {"0:01", "0:02", "0:03"}) {
        above.setTitle(title);
        runFor(100);
    }
    EXPECT_EQ(windowChanges_, 0);
}

TEST_F(X11SourcesTest, KnowsNothingOnceTheServerIsGoneAndRests) {
    const QByteArray display = qgetenv("DISPLAY");
    test::Child server;
    server.start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp"});
    qputenv("DISPLAY", ":" + server.firstLine().toUtf8());
    connect();
    EXPECT_TRUE(idle().idleSeconds());
    EXPECT_TRUE(system().is(SystemState::screensaverRunning));
    EXPECT_FALSE(windows()) << "there is no window manager";
    idle().watch(600);
    crossings_ = systemChanges_ = windowChanges_ = 0;

    const auto expectNothing = [this] {
        EXPECT_FALSE(idle().idleSeconds());
        EXPECT_FALSE(idle().tellsCrossings());
        EXPECT_FALSE(system().is(SystemState::screensaverRunning));
        EXPECT_FALSE(windows());
        idle().watch(5);
        idle().watch(std::nullopt);
    };
    server.end();
    expectNothing();
    EXPECT_SOON(crossings_ && systemChanges_ && windowChanges_);
    expectNothing();
    const std::clock_t before = std::clock();
    runFor(aSecond);
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 10);
    EXPECT_EQ(crossings_, 1);

    connect();  // to where there is none
    expectNothing();
    qputenv("DISPLAY", display);
}

}  // namespace
}  // namespace tendel
