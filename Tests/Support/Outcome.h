#pragma once

#include "Foundation/Result.h"

#include <memory>
#include <optional>
#include <qcoro/qcorotask.h>

namespace corvane {

/// The result of a task, set when the task finishes.
template <typename Value> std::shared_ptr<std::optional<Result<Value>>> outcome(QCoro::Task<Result<Value>> task)
{
    const auto result = std::make_shared<std::optional<Result<Value>>>();
    task.then([result](const Result<Value>& value) { *result = value; });
    return result;
}

}
