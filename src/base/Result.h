#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

namespace tendel {

// Why something failed, as one sentence that can be shown or logged.
struct Error {
    std::string message;
};

// A value, or the reason why there is none.
template <class T>
class [[nodiscard]] Result {
public:
    Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}

    explicit operator bool() const { return content_.index() == 0; }
    T& value() { return assert(*this), std::get<0>(content_); }
    const T& value() const { return assert(*this), std::get<0>(content_); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    const std::string& error() const { return std::get<1>(content_).message; }

private:
    std::variant<T, Error> content_;
};

// Success, or the reason of the failure.
template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Error error) : error_(std::move(error)), isOk_(false) {}

    explicit operator bool() const { return isOk_; }
    const std::string& error() const { return error_.message; }

private:
    Error error_;
    bool isOk_ = true;
};

}  // namespace tendel
