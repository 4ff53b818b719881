#pragma once

#include <array>
#include <string>

#include "base/EventLoop.h"
#include "presence/UserPresence.h"

namespace tendel::test {

// What a test lets the system tell of the user; what it is asked for is written down in `asked`:
// idle time, microphone, camera, requests to stay awake, windows.
struct FakeFacts {
    struct Idle : IdleSource {
        explicit Idle(FakeFacts& owner) : facts(owner) {}
        std::optional<double> idleSeconds() override {
            facts.asked += 'i';
            if (!isKnown) return std::nullopt;
            return toSeconds(facts.loop.monotonicNow() - facts.lastInput);
        }
        void watch(std::optional<double> seconds) override { threshold = seconds; }
        bool tellsCrossings() const override { return tells; }

        FakeFacts& facts;
        bool isKnown = true;
        bool tells = false;
        std::optional<double> threshold;
    };
    struct System : SystemActivitySource {
        std::optional<bool> is(SystemState state) const override {
            return states[static_cast<std::size_t>(state)];
        }
        void set(SystemState state, std::optional<bool> holds) {
            states[static_cast<std::size_t>(state)] = holds;
            changed.emit();
        }
        std::array<std::optional<bool>, systemStateCount> states;
    };
    struct Microphone : MicrophoneSource {
        explicit Microphone(FakeFacts& owner) : facts(owner) {}
        std::optional<std::vector<MicrophoneUser>> users() const override {
            facts.asked += 'm';
            return found;
        }
        FakeFacts& facts;
        std::optional<std::vector<MicrophoneUser>> found{std::in_place};
    };
    struct Camera : CameraSource {
        explicit Camera(FakeFacts& owner) : facts(owner) {}
        std::optional<std::vector<std::optional<bool>>> running() const override {
            facts.asked += 'c';
            return found;
        }
        FakeFacts& facts;
        std::optional<std::vector<std::optional<bool>>> found{std::in_place};
    };
    struct WakeRequests : WakeRequestSource {
        explicit WakeRequests(FakeFacts& owner) : facts(owner) {}
        std::optional<std::vector<WakeRequest>> requests() override {
            facts.asked += 'r';
            return found;
        }
        FakeFacts& facts;
        std::optional<std::vector<WakeRequest>> found{std::in_place};
    };
    struct Windows : WindowSource {
        explicit Windows(FakeFacts& owner) : facts(owner) {}
        std::optional<DesktopWindows> windows() override {
            facts.asked += 'w';
            return found;
        }
        FakeFacts& facts;
        std::optional<DesktopWindows> found = DesktopWindows{
            .screens = {{"left", {0, 0, 1000, 800}}, {"right", {1000, 0, 1000, 800}}},
            .windows = {}};
    };

    explicit FakeFacts(EventLoop& eventLoop) : loop(eventLoop) {}

    PresenceSources sources() {
        return {.idle = {&idle},
                .system = {&system},
                .microphones = {&microphone},
                .cameras = {&camera},
                .wakeRequests = {&wakeRequests},
                .windows = {&windows},
                .microphonePolicy = MicrophonePolicy::forLinux(),
                .wakePolicy = WakePolicy::forLinux(),
                .topEdge = TopEdge::compared,
                .ownPid = ownPid};
    }

    void setIdle(double count) { lastInput = loop.monotonicNow() - seconds(count); }
    // Each tells of the change, as an adapter does.
    void setLocked(bool locked) { system.set(SystemState::locked, locked); }
    void setMicrophone(bool isUsed) {
        microphone.found = std::vector<MicrophoneUser>(isUsed ? 1 : 0, {.pid = 7});
        microphone.changed.emit();
    }
    void setCamera(bool isUsed) {
        camera.found = {isUsed};
        camera.changed.emit();
    }
    void setFilm(bool plays) {
        wakeRequests.found = std::vector<WakeRequest>(
            plays ? 1 : 0, {.pid = 8, .processName = "player", .type = idleInhibitor});
        wakeRequests.changed.emit();
    }
    // On the second screen.
    void setFullScreen(bool isCovered) {
        windows.found->windows = std::vector<DesktopWindows::Window>(
            isCovered ? 1 : 0, {.layer = 0, .bounds = {1000, 0, 1000, 800}});
        windows.changed.emit();
    }

    static constexpr std::int32_t ownPid = 4711;
    EventLoop& loop;
    MonotonicInstant lastInput = loop.monotonicNow();
    std::string asked;
    Idle idle{*this};
    System system;
    Microphone microphone{*this};
    Camera camera{*this};
    WakeRequests wakeRequests{*this};
    Windows windows{*this};
};

}  // namespace tendel::test
