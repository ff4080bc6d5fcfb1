#pragma once

#include <QTest>

#include <functional>

// Waiting for real programs on a busy machine needs patience; it costs time
// only where a test fails.
#undef QTRY_VERIFY
#undef QTRY_COMPARE
#define QTRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT((condition), velbrix::test::patience)
#define QTRY_COMPARE(actual, expected)                                                                       \
    QTRY_COMPARE_WITH_TIMEOUT((actual), (expected), velbrix::test::patience)

namespace velbrix::test {

constexpr int patience = 20000; // ms

[[nodiscard]] inline bool waitFor(const std::function<bool()> &isSo)
{
    return QTest::qWaitFor(isSo, patience);
}

} // namespace velbrix::test
