#pragma once

#include <QString>

namespace corvane {

/// The script that runs in an isolated world of each page. It calls the binding with one JSON object per report, by
/// `kind`:
/// - "click", "type", "choose", "press": a step, see `BrowserStep`;
/// - "secret": the text of a secret field, which never becomes part of a step;
/// - "list", "field": a drop-down list, or a field for a date, time or colour, asks for a value.
///   `corvaneChoose(value)` in the same context answers, with the index of the option or the field's text;
/// - "cursor": the CSS cursor under the pointer, where it changed.
QString pageScript();
inline constexpr const char* pageScriptBinding = "corvaneStep";
inline constexpr const char* pageScriptWorld = "corvane";

}
