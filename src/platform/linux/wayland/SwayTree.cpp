#include "platform/linux/wayland/SwayTree.h"

#include <QJsonArray>

#include <algorithm>
#include <array>
#include <utility>

namespace tendel {

namespace {

using Place = SwayDesktop::Place;

Rect rectOf(const QJsonObject& node) {
    const QJsonObject rect = node["rect"].toObject();
    return {.x = rect["x"].toDouble(),
            .y = rect["y"].toDouble(),
            .width = rect["width"].toDouble(),
            .height = rect["height"].toDouble()};
}

std::string nameOf(const QJsonObject& view) {
    const QString id = view["app_id"].toString();
    const QJsonObject properties = view["window_properties"].toObject();
    return (id.isEmpty() ? properties["class"].toString() : id).toStdString();
}

struct Frames {
    Rect output;
    Rect all;  // outputs together
};

void collectViews(const QJsonObject& node, const Frames& frames, bool isFloating,
                  std::vector<SwayDesktop::View>& views) {
    if (node.contains("pid")) {
        enum { none, ofItsOutput, ofAllOutputs };
        const int fullScreen = node["fullscreen_mode"].toInt();
        // Of a floating window that was on a hidden workspace in full screen sway 1.7 tells a
        // rectangle by chance.
        const Rect frame = fullScreen == none          ? rectOf(node)
                           : fullScreen == ofItsOutput ? frames.output
                                                       : frames.all;
        views.push_back({.pid = node["pid"].toInt(),
                         .name = nameOf(node),
                         .frame = frame,
                         .place = fullScreen != none ? Place::fullScreen
                                  : isFloating       ? Place::floating
                                                     : Place::tiled,
                         .isVisible = node["visible"].toBool(),
                         .inhibitsIdle = node["inhibit_idle"].toBool()});
        return;
    }
    const QJsonArray floating = node["floating_nodes"].toArray();
    for (auto child = floating.end(); child != floating.begin();)  // the last one is on top
        collectViews((--child)->toObject(), frames, true, views);
    const QJsonArray tiled = node["nodes"].toArray();
    for (const auto& child : tiled)
        collectViews(child.toObject(), frames, isFloating, views);
}

// Neither what a window is called nor which one has the keyboard covers a screen.
bool mattersToTree(const QJsonObject& windowEvent) {
    static const std::array<QString, 4> ignored{"title", "focus", "mark", "urgent"};
    return std::ranges::find(ignored, windowEvent["change"].toString()) == ignored.end();
}

}  // namespace

SwayDesktop SwayDesktop::of(const QJsonObject& root) {
    SwayDesktop desktop;
    const QJsonArray outputs = root["nodes"].toArray();
    for (const auto& output : outputs) {
        const QJsonObject node = output.toObject();
        collectViews(node, {.output = rectOf(node), .all = rectOf(root)}, false, desktop.views);
        if (node["active"].toBool())  // the place of hidden windows looks like an output, too
            desktop.screens.push_back(
                {.name = node["name"].toString().toStdString(), .frame = rectOf(node)});
    }
    std::ranges::stable_sort(desktop.views, {}, &View::place);
    return desktop;
}

SwayTree::SwayTree(EventLoop& loop, SwayIpc& ipc)
    : ipc_(ipc),
      announcement_(loop),
      connection_(ipc.connectedChanged.connect([this] { connectedChanged(); })),
      messages_(
          ipc.received.connect([this](SwayIpc::Message message, const QJsonDocument& payload) {
              received(message, payload.object());
          })) {
    connectedChanged();
}

void SwayTree::refresh() {
    if (!ipc_.isConnected()) return;
    ask();
    ipc_.waitUntil([this] { return awaited_ == 0; }, std::chrono::milliseconds(100));
}

void SwayTree::connectedChanged() {
    awaited_ = 0;
    isOutdated_ = false;
    if (ipc_.isConnected())
        ask();
    else
        set(std::nullopt);
}

void SwayTree::received(SwayIpc::Message message, const QJsonObject& payload) {
    using Message = SwayIpc::Message;
    if (message == Message::getTree) {
        --awaited_;
        set(SwayDesktop::of(payload));
        if (awaited_ == 0 && isOutdated_) ask();
    } else if (message == Message::workspaceEvent ||
               (message == Message::windowEvent && mattersToTree(payload))) {
        // One burst of events, such as a closed group of windows, is one more question.
        if (awaited_ == 0)
            ask();
        else
            isOutdated_ = true;
    }
}

void SwayTree::ask() {
    ++awaited_;
    isOutdated_ = false;
    ipc_.ask(SwayIpc::Message::getTree);
}

void SwayTree::set(std::optional<SwayDesktop> desktop) {
    if (desktop == desktop_) return;
    desktop_ = std::move(desktop);
    announcement_.start(Duration::zero(), [this] { changed.emit(); });
}

}  // namespace tendel
