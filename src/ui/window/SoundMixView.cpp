#include "ui/window/SoundMixView.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "ui/theme/Button.h"
#include "ui/theme/Card.h"
#include "ui/theme/Label.h"
#include "ui/theme/SegmentedControl.h"
#include "ui/theme/Slider.h"
#include "ui/window/FocusLook.h"
#include "ui/window/SoundRow.h"

namespace tendel {

namespace {
constexpr int edge = 16;
constexpr int volumeWidth = 128;
}  // namespace

SoundMixView::SoundMixView(Services services, QWidget* parent)
    : QWidget(parent), services_(services) {
    setAccessibleName(tr("Sounds"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addWidget(makeHeader());
    column->addWidget(makeCard());

    const AppSettings& settings = services_.settings;
    const auto lookAtMix = [this] { refreshMix(); };
    subscriptions_.push_back(settings.focusMix.observe(lookAtMix));
    subscriptions_.push_back(settings.breakMix.observe(lookAtMix));
    const auto lookAtPreview = [this] { refreshPreview(); };
    subscriptions_.push_back(services_.sounds.preview().observe(lookAtPreview));
    subscriptions_.push_back(services_.session.observe(lookAtPreview));
    const auto lookAtVolume = [this] { refreshVolume(); };
    subscriptions_.push_back(settings.soundVolume.observe(lookAtVolume));
    subscriptions_.push_back(services_.sounds.isMuted().observe(lookAtVolume));
    showRowOfPhase();
    refreshVolume();
}

QWidget* SoundMixView::makeHeader() {
    auto* header = new QWidget;
    auto* line = new QHBoxLayout(header);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(4);
    line->addWidget(new Label({Theme::Type::title, Theme::Color::text, true}, tr("Sounds")));
    line->addStretch();
    mute_ = new IconButton("speaker", tr("Mute"));
    connect(mute_, &QAbstractButton::clicked, this, [this] { services_.sounds.toggleMute(); });
    line->addWidget(mute_);
    volume_ = new Slider(tr("Volume"));
    volume_->setFixedWidth(volumeWidth);
    volume_->setAccent(Theme::Color::secondary);
    connect(volume_, &Slider::moved, this,
            [this](int percent) { services_.settings.soundVolume.set(percent / 100.0); });
    line->addWidget(volume_);
    return header;
}

QWidget* SoundMixView::makeCard() {
    auto* card = new Card;
    auto* column = new QVBoxLayout(card);
    column->setContentsMargins(edge - focusMargin, 12 - focusMargin, edge, 12);
    column->setSpacing(2);
    auto* line = new QHBoxLayout;
    line->setContentsMargins(0, 0, -focusMargin, 0);
    rowChoice_ = new SegmentedControl(tr("Sounds during"), {tr("Focus"), tr("Breaks")});
    connect(rowChoice_, &SegmentedControl::chosen, this, [this] {
        if (services_.sounds.preview().get()) services_.sounds.startPreview(row());
        refreshMix();
    });
    line->addWidget(rowChoice_);
    line->addStretch();
    listen_ = new Button(Button::Role::quiet, tr("Listen"));
    QSizePolicy keepsItsPlace = listen_->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    listen_->setSizePolicy(keepsItsPlace);
    connect(listen_, &QAbstractButton::clicked, this, &SoundMixView::togglePreview);
    line->addWidget(listen_);
    column->addLayout(line);
    column->addSpacing(6);
    for (std::size_t i = 0; i < focusSoundNames.size(); ++i) {
        const auto sound = static_cast<FocusSound>(i);
        auto* each = new SoundRow(sound);
        connect(each, &SoundRow::switched, this, [this, sound](bool isOn) {
            edit([=](SoundMix& mix) {
                if (isOn)
                    mix.on.insert(sound);
                else
                    mix.on.erase(sound);
            });
        });
        connect(each, &SoundRow::levelChosen, this, [this, sound](double level) {
            // Who makes a sound louder wants to hear it.
            edit([=](SoundMix& mix) {
                mix.levels[sound] = level;
                mix.on.insert(sound);
            });
        });
        column->addWidget(each);
        rows_.push_back(each);
    }
    return card;
}

SoundMixView::Row SoundMixView::row() const {
    return rowChoice_->current() == 0 ? Row::focus : Row::breaks;
}

Setting<SoundMix>& SoundMixView::mix() {
    return row() == Row::focus ? services_.settings.focusMix : services_.settings.breakMix;
}

void SoundMixView::showRowOfPhase() {
    const auto& session = *services_.session;
    rowChoice_->setCurrent(session && session->isBreak() ? 1 : 0);
    refreshMix();
}

void SoundMixView::edit(const std::function<void(SoundMix&)>& change) {
    SoundMix edited = mix().get();
    change(edited);
    mix().set(std::move(edited));
    services_.sounds.edited(row());
}

void SoundMixView::togglePreview() {
    if (services_.sounds.preview().get())
        services_.sounds.cancelPreview();
    else
        services_.sounds.startPreview(row());
}

void SoundMixView::refreshMix() {
    const auto accent = row() == Row::focus ? Theme::Color::focusAccent : Theme::Color::good;
    for (SoundRow* each : rows_)
        each->show(mix().get(), accent);
    refreshPreview();
}

void SoundMixView::refreshPreview() {
    const bool isPlaying = services_.sounds.preview().get().has_value();
    listen_->setText(isPlaying ? tr("Stop Listening") : tr("Listen"));
    listen_->setSymbol(isPlaying ? "stop" : "headphones");
    listen_->setEnabled(isPlaying || !mix().get().on.empty());
    listen_->setVisible(!services_.session.get());
}

void SoundMixView::refreshVolume() {
    const bool isMuted = *services_.sounds.isMuted();
    mute_->setMeaning(isMuted ? "speaker.slash" : "speaker", isMuted ? tr("Unmute") : tr("Mute"));
    volume_->setQuiet(isMuted);
    volume_->setLevel(static_cast<int>(std::lround(100 * *services_.settings.soundVolume)));
}

}  // namespace tendel
