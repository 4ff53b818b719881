#include "platform/linux/wayland/WaylandConnection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>

#include "FakeCompositor.h"
#include "NestedCompositor.h"
#include "platform/linux/wayland/SwaySources.h"
#include "platform/linux/wayland/WaylandIdle.h"
#include "platform/linux/wayland/WaylandOutputPower.h"

namespace tendel {
namespace {

using WaylandConnectionTest = EventLoopTest;

TEST_F(WaylandConnectionTest, FollowsASeatThatComesAndGoes) {
    FakeCompositor compositor;
    compositor.offerIdleNotifier();
    WaylandConnection connection(loop_, compositor.display());
    WaylandIdle idle(connection, loop_);
    idle.watch(90);
    ASSERT_SOON(!connection.globals().empty());
    EXPECT_FALSE(idle.tellsCrossings());

    wl_global* seat = compositor.offerSeat();
    const auto isWatched = [&](std::uint32_t milliseconds) {
        const auto& all = compositor.idleTimeouts;
        return all.size() == 1 && all.begin()->second == milliseconds;
    };
    ASSERT_SOON(isWatched(90'000));
    idle.watch(120.5);
    ASSERT_SOON(isWatched(120'500));
    compositor.tellIdle(true);
    ASSERT_SOON(idle.idleSeconds() >= 120.5);
    idle.watch(600);
    EXPECT_EQ(idle.idleSeconds(), 0) << "another watch begins anew";
    ASSERT_SOON(isWatched(600'000));
    compositor.tellIdle(true);
    ASSERT_SOON(idle.idleSeconds() >= 600);

    // Whoever hears of it may begin another watch from within.
    const auto listening = idle.crossed.connect([&] { idle.watch(60); });
    compositor.tellIdle(false);
    ASSERT_SOON(isWatched(60'000));
    EXPECT_EQ(idle.idleSeconds(), 0);

    compositor.tellIdle(true);
    compositor.withdraw(seat);
    ASSERT_SOON(!idle.idleSeconds());
    EXPECT_SOON(compositor.idleTimeouts.empty());
}

TEST_F(WaylandConnectionTest, TellsThatTheScreensSleepWhenEveryOutputIsOff) {
    using enum FakeCompositor::PowerProtocol;
    for (const auto protocol : {wlroots, kde}) {
        FakeCompositor compositor;
        compositor.offerOutputPower(protocol);
        wl_global* left = compositor.offerOutput();
        wl_global* right = compositor.offerOutput();
        WaylandConnection connection(loop_, compositor.display());
        WaylandOutputPower power(connection);
        std::string told;
        const auto listening = power.changed.connect([&] {
            const auto asleep = power.is(SystemState::screensAsleep);
            told += !asleep ? '?' : *asleep ? 'z' : '-';
        });
        ASSERT_SOON(compositor.outputPowers.size() == 2);
        compositor.tellPower(left, false);
        compositor.tellPower(right, true);
        ASSERT_SOON(told == "-") << told;
        compositor.tellPower(right, false);
        ASSERT_SOON(told == "-z") << told;
        compositor.withdraw(left);
        compositor.tellPower(right, true);
        ASSERT_SOON(told == "-z-") << told;
        compositor.withdraw(right);
        ASSERT_SOON(told == "-z-?") << told;
    }
}

// A socket on which somebody else listens than the one who is looked for.
class WrongServer {
public:
    WrongServer() : path_(folder_.filePath("socket").toStdString()) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path_.copy(address.sun_path, path_.size());
        EXPECT_EQ(bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(socket_, 8), 0);
    }
    ~WrongServer() { close(socket_); }

    const std::string& path() const { return path_; }
    // In pieces of that many bytes, between which the client reads; then hangs up.
    void say(std::string_view words, std::size_t piece = 1000) {
        const int client = accept(socket_, nullptr, nullptr);
        for (; !words.empty(); words.remove_prefix(std::min(piece, words.size()))) {
            const auto part = words.substr(0, piece);
            EXPECT_EQ(write(client, part.data(), part.size()), std::ssize(part));
            test::runFor(10);
        }
        close(client);
    }
    bool isCalled() const {
        pollfd waiting{.fd = socket_, .events = POLLIN, .revents = 0};
        return poll(&waiting, 1, 0) > 0;
    }

private:
    QTemporaryDir folder_;
    std::string path_;
    int socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

TEST_F(WaylandConnectionTest, DoesNotHangWithAServerThatIsSilent) {
    const WrongServer server;
    WaylandConnection connection(loop_, server.path());
    WaylandIdle idle(connection, loop_);
    SwayIpc ipc(loop_, server.path());
    SwayTree tree(loop_, ipc);
    SwayInhibitors inhibitors(tree);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(inhibitors.requests(), std::nullopt);
    EXPECT_EQ(idle.idleSeconds(), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(500));
}

TEST_F(WaylandConnectionTest, AsksLessAndLessOftenWhereNonsenseIsSpoken) {
    const std::string hugeMessage("i3-ipc\xff\xff\xff\xff\x04\0\0\0", 14);
    for (const std::string& nonsense : {std::string(100, 'x'), hugeMessage, std::string()}) {
        WrongServer server;
        SwayIpc ipc(loop_, server.path());
        SwayTree tree(loop_, ipc);
        for (int call = 0; call < 2; ++call) {  // at once and after half a second
            ASSERT_SOON(server.isCalled());
            server.say(nonsense);
        }
        EXPECT_FALSE(test::runUntil([&] { return server.isCalled(); }, 600)) << "so soon again";
        EXPECT_EQ(tree.desktop(), std::nullopt);
    }
}

TEST_F(WaylandConnectionTest, PutsTogetherWhatArrivesInPieces) {
    using namespace std::string_literals;
    WrongServer server;
    SwayIpc ipc(loop_, server.path());
    std::string told;
    const auto listening = ipc.received.connect([&](auto type, const QJsonDocument& payload) {
        told += std::to_string(static_cast<int>(type)) +
                payload.toJson(QJsonDocument::Compact).toStdString() + ' ';
    });
    server.say("i3-ipc\x10\0\0\0\2\0\0\0{\"success\":true}i3-ipc\xc\0\0\0\4\0\0\0{\"nodes\":[]}"s,
               11);
    EXPECT_EQ(told, R"(2{"success":true} 4{"nodes":[]} )");
}

}  // namespace
}  // namespace tendel
