#pragma once

#include <QIcon>
#include <QImage>
#include <QString>

#include <string>

namespace tendel {

// What the icon in the tray looks like: a symbol, and the time that counts down where it can be
// read. Panels are light or dark and do not tell, so its colours stand out from both.
struct TrayImage {
    std::string symbol{};  // empty: the app's own sign
    QString time{};        // "24m", "1h 5m"; drawn only at sizes at which it fits

    // A square of `size` pixels of the screen.
    QImage drawn(int size) const;
    // Draws itself at every size and scale that is asked for.
    QIcon icon() const;

    friend bool operator==(const TrayImage&, const TrayImage&) = default;
};

}  // namespace tendel
