#pragma once

#include "Care/Doctor/Checks.h"

namespace corvane {

/// The state, the sentence and the advice.
inline QString told(const CheckResult& result)
{
    const Finding finding { {}, {}, result.health, result.words, result.advice, false };
    return finding.state() + u'|' + finding.words + u'|' + finding.advice;
}

}
