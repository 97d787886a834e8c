#pragma once
// What can fail on outside input returns a Result; nothing throws across a module.

#include <string>
#include <utility>
#include <variant>

namespace nmr {

enum class ErrorCode {
    not_found,       ///< no such file or folder
    unreadable,      ///< the file is there but can't be opened or read
    unwritable,      ///< could not create or write
    truncated,       ///< the file ends before what it promises
    bad_format,      ///< not what the reader was made for
    bad_value,       ///< a parameter that can't be used
    too_large,       ///< more points or rows than the store holds
    not_nmr,         ///< no NMR data
    two_dimensional, ///< data of two dimensions, which this program only recognises
    unsupported,     ///< a recognised family that has no reader
    in_use,          ///< another run has the file open
    cancelled,       ///< the user said no
    internal,        ///< a fault of our own
};

/// One failure: what kind, where it was met ("ReadDataBruker/1DDRW"), and a sentence for the user.
struct Error {
    ErrorCode code = ErrorCode::internal;
    std::string where;
    std::string text;
    int system_error = 0;    ///< errno value behind it, 0 when there is none
    bool user_knows = false; ///< a message box has told it already
};

/// A value or an Error. `if (!r) return r.error();` passes a failure on.
template <class T>
class [[nodiscard]] Result {
public:
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

    explicit operator bool() const { return state_.index() == 0; }
    T& operator*() { return std::get<0>(state_); }
    const T& operator*() const { return std::get<0>(state_); }
    T* operator->() { return &std::get<0>(state_); }
    const T* operator->() const { return &std::get<0>(state_); }
    const Error& error() const { return std::get<1>(state_); }

private:
    std::variant<T, Error> state_;
};

/// Success, or an Error.
class [[nodiscard]] Status {
public:
    Status() = default;
    Status(Error error) : failed_(true), error_(std::move(error)) {}

    explicit operator bool() const { return !failed_; }
    const Error& error() const { return error_; }

private:
    bool failed_ = false;
    Error error_;
};

} // namespace nmr
