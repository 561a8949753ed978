#pragma once
// Errors as values: core routines return Result<T>; the edge (dialogs, the
// command line) turns an Error into a message box or a line on stderr.

#include <QString>
#include <optional>
#include <utility>
#include <variant>

namespace mervola {

struct Error {
    QString message;  // Italian text, ready to show to the user
    int code = 0;     // optional number (engine error numbers of the join, errno ...)
};

template <class T>
class [[nodiscard]] Result {
public:
    Result(T value) : m_v(std::move(value)) {}
    Result(Error e) : m_v(std::move(e)) {}
    static Result fail(QString message, int code = 0) { return Result(Error{std::move(message), code}); }

    bool ok() const { return m_v.index() == 0; }
    explicit operator bool() const { return ok(); }
    T &value() { return std::get<0>(m_v); }
    const T &value() const { return std::get<0>(m_v); }
    T &operator*() { return value(); }
    const T &operator*() const { return value(); }
    T *operator->() { return &value(); }
    const T *operator->() const { return &value(); }
    const Error &error() const { return std::get<1>(m_v); }
    QString errorMessage() const { return ok() ? QString() : error().message; }
    T valueOr(T fallback) const { return ok() ? value() : std::move(fallback); }

private:
    std::variant<T, Error> m_v;
};

template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Error e) : m_e(std::move(e)) {}
    static Result fail(QString message, int code = 0) { return Result(Error{std::move(message), code}); }
    static Result success() { return Result(); }

    bool ok() const { return !m_e.has_value(); }
    explicit operator bool() const { return ok(); }
    const Error &error() const { return *m_e; }
    QString errorMessage() const { return ok() ? QString() : m_e->message; }

private:
    std::optional<Error> m_e;
};

using Status = Result<void>;

}  // namespace mervola
