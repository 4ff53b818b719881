#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/Timer.h"
#include "focus/SystemSounds.h"
#include "sound/AudioOutput.h"
#include "sound/SoundMixer.h"
#include "sound/SoundPlaying.h"
#include "sound/SoundSource.h"

namespace tendel {

// Mixes the sounds that play, and the chimes over them, on one output. While nothing plays the
// output is closed. Main thread only; the output's thread renders. What it is given must outlive
// it.
class SoundEngine : public SoundPlaying, public SystemSounds {
public:
    // Where its sounds come from.
    struct Makers {
        std::function<std::unique_ptr<SoundSource>(FocusSound, double, std::uint64_t)> source =
            makeSource;
        std::function<std::unique_ptr<SoundSource>(std::string_view, double)> chime = makeChime;
    };

    SoundEngine(EventLoop& loop, AudioOutput& output, Makers makers);
    SoundEngine(EventLoop& loop, AudioOutput& output) : SoundEngine(loop, output, Makers()) {}
    ~SoundEngine() override;

    void play(const SoundLevels& levels, double fade) override;
    void play(std::string_view name) override;  // a chime, also while no sound plays
    // Of everything but the chimes, 0–1; moves without a click.
    void setVolume(float volume);

private:
    struct Voice {
        std::optional<FocusSound> sound{};  // none for a chime
        std::unique_ptr<SoundVoiceRenderer> renderer{};
        std::optional<MonotonicInstant> silentAt{};  // when it is to be over
    };

    void apply(double fade);
    void fadeIn(FocusSound sound, float level, double fade);
    Voice* playing(FocusSound sound);
    std::unique_ptr<SoundSource> make(const std::function<std::unique_ptr<SoundSource>()>& maker,
                                      std::string_view name) const;
    void add(Voice voice, SoundMixer::Bus bus);
    void open();
    void stopAfterFading();
    void settle();
    void close();
    void removeFinished();
    double sampleRate() const;
    VoiceGain::Aim aim(float target, double fade) const;

    EventLoop& loop_;
    AudioOutput& output_;
    Makers makers_;
    SoundLevels levels_;
    float volume_ = 1;
    bool isOpen_ = false;
    SoundMixer mixer_;
    std::vector<Voice> voices_;
    Timer stopTask_{loop_};
    Subscription failed_, restarted_;
};

}  // namespace tendel
