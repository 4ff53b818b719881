#include "sound/SoundEngine.h"

#include <algorithm>
#include <exception>
#include <random>
#include <string>

#include "base/Log.h"

namespace tendel {

namespace {

constexpr double fallbackSampleRate = 48000;

constexpr double shortestFade = 0.03;  // seconds; what moves faster clicks
constexpr double longestFade = 600;
constexpr double volumeFade = 0.1;

// What is rendered is heard a little later.
constexpr Duration outputLatency = std::chrono::milliseconds(500);

// No more than this many chimes at once, however often one is asked for.
constexpr std::ptrdiff_t maximumChimes = 8;

double clampedFade(double seconds) {
    return seconds > shortestFade ? std::min(seconds, longestFade) : shortestFade;
}

float clampedLevel(float level) {
    return level > 0 ? std::min(level, 1.0F) : 0;
}

std::uint64_t freshSeed() {
    std::random_device device;
    return std::uint64_t{device()} << 32 | device();
}

}  // namespace

SoundEngine::SoundEngine(EventLoop& loop, AudioOutput& output, Makers makers)
    : loop_(loop), output_(output), makers_(std::move(makers)) {
    failed_ = output.failed.connect([](const std::string& reason) {
        log(LogLevel::error, "sound", "Couldn't start the sound engine: " + reason);
    });
    restarted_ = output.restarted.connect([] { log(LogLevel::info, "sound", "Sound is back"); });
}

SoundEngine::~SoundEngine() {
    close();
}

void SoundEngine::play(const SoundLevels& levels, double fade) {
    levels_ = levels;
    apply(fade);
}

void SoundEngine::setVolume(float volume) {
    volume = clampedLevel(volume);
    const bool wasMuted = volume_ == 0;
    volume_ = volume;
    // At volume 0 the voices fade out as well, so that silence costs nothing.
    if (volume > 0) mixer_.setVolume(aim(volume, volumeFade));
    if (volume == 0 || wasMuted) apply(volumeFade);
}

void SoundEngine::apply(double fade) {
    removeFinished();
    const auto wanted = [&](FocusSound sound) {
        const auto at = levels_.find(sound);
        return volume_ > 0 && at != levels_.end() ? clampedLevel(at->second) : 0;
    };
    const auto silentAt = loop_.monotonicNow() + seconds(clampedFade(fade));
    for (auto& voice : voices_) {
        if (!voice.sound || wanted(*voice.sound) > 0) continue;
        if (voice.silentAt && *voice.silentAt <= silentAt) continue;  // on its way
        voice.renderer->gain.moveTo(aim(0, fade));
        voice.silentAt = silentAt;
    }
    for (const auto& [sound, level] : levels_)
        if (wanted(sound) > 0) fadeIn(sound, wanted(sound), fade);
    stopAfterFading();
}

void SoundEngine::fadeIn(FocusSound sound, float level, double fade) {
    Voice* voice = playing(sound);
    if (voice && voice->renderer->gain.moveTo(aim(level, fade))) {
        voice->silentAt.reset();
        return;
    }
    auto source =
        make([&] { return makers_.source(sound, sampleRate(), freshSeed()); }, rawValue(sound));
    if (!source) return;
    open();
    add({sound, std::make_unique<SoundVoiceRenderer>(std::move(source), 0.0F, aim(level, fade))},
        SoundMixer::Bus::sounds);
}

void SoundEngine::play(std::string_view name) {
    removeFinished();
    const auto isChime = [](const Voice& voice) { return !voice.sound; };
    if (std::ranges::count_if(voices_, isChime) >= maximumChimes) return;
    auto source = make([&] { return makers_.chime(name, sampleRate()); }, name);
    if (!source) return;
    open();
    const auto frames = static_cast<std::uint64_t>(sampleRate() * chimeSeconds);
    add({std::nullopt,
         std::make_unique<SoundVoiceRenderer>(std::move(source), 1.0F, VoiceGain::Aim{1, 0},
                                              frames),
         loop_.monotonicNow() + seconds(chimeSeconds)},
        SoundMixer::Bus::chimes);
    stopAfterFading();
}

SoundEngine::Voice* SoundEngine::playing(FocusSound sound) {
    const auto at = std::ranges::find_if(voices_, [&](const Voice& voice) {
        return voice.sound == sound && !voice.renderer->gain.isFinished();
    });
    return at == voices_.end() ? nullptr : &*at;
}

std::unique_ptr<SoundSource> SoundEngine::make(
    const std::function<std::unique_ptr<SoundSource>()>& maker, std::string_view name) const {
    std::unique_ptr<SoundSource> source;
    try {
        source = maker();
    } catch (const std::exception&) {  // no memory, or no randomness
    }
    if (!source) log(LogLevel::error, "sound", "Couldn't create a voice for " + std::string(name));
    return source;
}

void SoundEngine::add(Voice voice, SoundMixer::Bus bus) {
    // Of each sound one voice at the most is not finished: the mixer has room for them and the
    // chimes.
    if (mixer_.add(*voice.renderer, bus)) voices_.push_back(std::move(voice));
}

void SoundEngine::open() {
    if (isOpen_) return;
    isOpen_ = true;
    mixer_.reset(sampleRate());
    output_.start(mixer_);
}

// Waits for the last of what fades or rings out and then clears up; closes the output unless
// something goes on.
void SoundEngine::stopAfterFading() {
    std::optional<MonotonicInstant> last;
    if (voices_.empty() && isOpen_) last = loop_.monotonicNow();
    for (const auto& voice : voices_)
        if (voice.silentAt) last = std::max(last, voice.silentAt);
    if (last)
        stopTask_.startAt(*last + outputLatency, [this] { settle(); });
    else
        stopTask_.stop();
}

void SoundEngine::settle() {
    if (std::ranges::all_of(voices_,
                            [](const Voice& voice) { return voice.silentAt.has_value(); })) {
        close();
        return;
    }
    // What never came to be heard, for want of an output, is not to be heard later.
    for (auto& voice : voices_)
        if (voice.silentAt) voice.renderer->gain.moveTo(aim(0, shortestFade));
    removeFinished();
}

void SoundEngine::close() {
    stopTask_.stop();
    if (isOpen_) output_.stop();
    isOpen_ = false;
    mixer_.reset(sampleRate());
    voices_.clear();
}

void SoundEngine::removeFinished() {
    std::erase_if(voices_, [](const Voice& voice) { return voice.renderer->gain.isFinished(); });
}

double SoundEngine::sampleRate() const {
    const double rate = output_.sampleRate();
    return rate > 0 ? rate : fallbackSampleRate;
}

VoiceGain::Aim SoundEngine::aim(float target, double fade) const {
    return {target, static_cast<std::uint32_t>(clampedFade(fade) * sampleRate())};
}

}  // namespace tendel
