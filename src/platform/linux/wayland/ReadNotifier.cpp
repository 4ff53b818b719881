#include "platform/linux/wayland/ReadNotifier.h"

#include <QSocketNotifier>

#include <utility>

namespace tendel {

ReadNotifier::ReadNotifier(int descriptor, std::function<void()> onReadable)
    : notifier_(new QSocketNotifier(descriptor, QSocketNotifier::Read)) {
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, std::move(onReadable));
}

void ReadNotifier::Retire::operator()(QSocketNotifier* notifier) const {
    notifier->setEnabled(false);  // at once; the object itself may be the one that calls us
    notifier->disconnect();
    notifier->deleteLater();
}

}  // namespace tendel
