#pragma once

#include <utility>

namespace tendel {

// Owns an open file descriptor and closes it; negative when there is none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int value) : value_(value) {}
    FileDescriptor(FileDescriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~FileDescriptor();

    int value() const { return value_; }
    explicit operator bool() const { return value_ >= 0; }

private:
    int value_ = -1;
};

}  // namespace tendel
