#include "Support/Await.h"

#include <QTest>

namespace corvane {

bool await(const std::function<bool()>& condition)
{
    return QTest::qWaitFor(condition, 10'000);
}

}
