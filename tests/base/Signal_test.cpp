#include "base/Signal.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "base/Observable.h"

namespace tendel {
namespace {

TEST(SignalTest, MayBeConnectedAndDisconnectedWhileItEmits) {
    Signal<char> signal;
    std::string heard;
    Subscription first, second, third, added;
    first = signal.connect([&](char c) {
        heard += c;
        heard += '1';
        first.reset();   // itself
        second.reset();  // one that was to follow
        added = signal.connect([&](char d) {
            heard += d;
            heard += 'n';
        });
    });
    second = signal.connect([&](char) { heard += 'x'; });
    third = signal.connect([&](char) { heard += '3'; });
    signal.emit('a');
    EXPECT_EQ(heard, "a13");
    signal.emit('b');
    EXPECT_EQ(heard, "a133bn");
}

TEST(SignalTest, ListenerMayEmitAgainAndDestroyTheSignal) {
    auto signal = std::make_unique<Signal<int>>();
    std::string heard;
    const auto first = signal->connect([&](int depth) {
        heard += std::to_string(depth);
        if (depth < 2)
            signal->emit(depth + 1);
        else
            signal.reset();
    });
    const auto second = signal->connect([&](int depth) { heard += char('a' + depth); });
    signal->emit(0);
    EXPECT_EQ(heard, "012cba");
}

TEST(SignalTest, SubscriptionOutlivesTheSignalAndReplacesWhatItHeld) {
    int heard = 0;
    Subscription keep;
    {
        Signal<> signal;
        keep = signal.connect([&] { heard += 100; });
        keep = signal.connect([&] { heard += 1; });
        signal.emit();
        Subscription moved = std::move(keep);
        signal.emit();
        keep = std::move(moved);
    }
    keep.reset();
    EXPECT_EQ(heard, 2);
}

TEST(ObservableTest, TellsOfDifferencesOnlyAndObserversReadTheNewValue) {
    Observable<int> value(1);
    std::string heard;
    const auto keep = value.observe([&] {
        heard += std::to_string(*value);
        if (*value == 2) value.set(3);
    });
    value.set(1);
    value.set(2);
    EXPECT_EQ(heard, "23");
}

}  // namespace
}  // namespace tendel
