#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "FakeDesktop.h"
#include "FakeFacts.h"
#include "TemporaryFolder.h"
#include "app/TendelApp.h"
#include "base/SimulatedEventLoop.h"

namespace tendel::test {

struct FakeAudio : AudioOutput {
    bool isOpen = false;
    double sampleRate() const override { return 48000; }
    void start(AudioRenderer&) override { isOpen = true; }
    void stop() override { isOpen = false; }
};

// The whole application on facts that a test sets, on a Monday at 9:30 in Berlin. Not started yet;
// alerts stay until they are answered.
struct WholeApplication {
    WholeApplication() { app.settings.alertAutoHide.set(AlertAutoHide::never); }

    static Instant at(std::string_view time) {
        return *parseIso8601("2026-03-02T" + std::string(time) + "+01:00");
    }
    void save(const std::function<void(Store::Writer&)>& changes) {
        if (const auto saved = store->save(changes); !saved)
            throw std::runtime_error(saved.error());
    }
    // Somebody types all the time.
    void workUntil(std::string_view time) {
        while (loop.now() < at(time)) {
            facts.setIdle(0);
            loop.advance(std::min<Duration>(std::chrono::minutes(1), at(time) - loop.now()));
        }
    }
    // What is on the screen, with its notice, and what waits behind it.
    std::string shown() {
        const auto& model = app.alerts.model();
        if (model.isHidden()) return "nothing";
        std::string all = model.content()->title;
        if (const auto& notice = model.content()->notice) all += " (" + *notice + ")";
        for (const auto& entry : app.alerts.queue().waiting) {
            const auto* focus = std::get_if<FocusAlert>(&entry.source);
            all += ", " + (focus ? focus->title() : entry.title);
        }
        return all;
    }

    TemporaryFolder folder;
    SimulatedEventLoop loop{at("09:30:00")};
    Calendar calendar{"Europe/Berlin", "en_GB"};
    FakeScreens screens;
    FakeAudio audio;
    Defaults defaults;
    std::unique_ptr<Store> store = std::move(Store::open(folder.path / "Tendel.store").value());
    FakeFacts facts{loop};
    TendelApp app{{.loop = loop,
                   .calendar = calendar,
                   .screens = screens,
                   .audio = audio,
                   .presence = facts.sources()},
                  defaults,
                  *store};
};

}  // namespace tendel::test
