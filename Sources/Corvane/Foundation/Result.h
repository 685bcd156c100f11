#pragma once

#include <QString>
#include <expected>

namespace corvane {

/// Why something failed, in words for the log or, where a header says so, for the user.
struct Error {
    QString message;
};

template <typename Value> using Result = std::expected<Value, Error>;

inline std::unexpected<Error> failure(QString message)
{
    return std::unexpected(Error { std::move(message) });
}

}
