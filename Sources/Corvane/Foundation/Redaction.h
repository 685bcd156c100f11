#pragma once

#include <QStringList>

namespace corvane {

/// The text trimmed and with probable secrets masked: values after words such as "password" or "api_key", Authorization
/// and Cookie headers, user names and passwords in URLs, secret URL parameters, JSON web tokens, and API keys.
/// Everything that passes on text from a shell or a web page (to a file, a row, a packet) uses it. Masking twice
/// changes nothing.
QString redactSensitive(QString text);

/// Also masks each of `known` wherever it occurs: verbatim, URL-encoded and JSON-escaped. Values of fewer than four
/// characters are left alone, as they would mask half of the text.
QString redactSensitive(QString text, const QStringList& known);

}
