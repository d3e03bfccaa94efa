#pragma once
// Errors cross module boundaries as values, never as exceptions.

#include <QString>
#include <optional>
#include <tuple> // std::ignore, for results dropped on purpose
#include <utility>

namespace ff {

// Error numbers keep the meanings the record store and start-up test for.
enum class ErrorCode {
    None = 0,
    Overflow = 6,         // a value does not fit its width, a count out of range
    SubscriptOutOfRange = 9,
    FileNotFound = 53,
    BadFileName = 52,
    PermissionDenied = 70, // a record byte held by another user, a read-only file
    PathError = 75,
    Truncated = 62,       // input past end of file
    Invalid = 1000,       // anything else: a damaged block, bad input
};

struct Error {
    ErrorCode code = ErrorCode::None;
    QString text;
};

// A result nobody looks at is a lost error, so the compiler refuses to let one drop: a caller
// handles it or writes `std::ignore = ...;` with the reason beside it.
template <typename T>
class [[nodiscard]] Result {
public:
    Result(T value) : value_(std::move(value)) {}
    Result(Error error) : error_(std::move(error)) {}

    bool ok() const { return value_.has_value(); }
    explicit operator bool() const { return ok(); }
    const T &value() const { return *value_; }
    T &value() { return *value_; }
    const T &operator*() const { return *value_; }
    T &operator*() { return *value_; }
    const T *operator->() const { return &*value_; }
    T *operator->() { return &*value_; }
    const Error &error() const { return error_; }

private:
    std::optional<T> value_;
    Error error_;
};

// Result of an operation with no value.
class [[nodiscard]] Status {
public:
    Status() = default;
    Status(Error error) : error_(std::move(error)) {}
    bool ok() const { return error_.code == ErrorCode::None; }
    explicit operator bool() const { return ok(); }
    const Error &error() const { return error_; }

private:
    Error error_;
};

inline Error makeError(ErrorCode code, QString text) { return Error{code, std::move(text)}; }

} // namespace ff
