#include "platform/linux/FileDescriptor.h"

#include <unistd.h>

namespace tendel {

FileDescriptor::~FileDescriptor() {
    if (value_ >= 0) ::close(value_);
}

}  // namespace tendel
