#pragma once

// What every test begins with.

#include "support/Files.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <functional>

namespace velbrix::test {

// Waiting for real programs on a busy machine needs patience; it costs time
// only where a test fails.
constexpr int patience = 20000; // ms

[[nodiscard]] inline bool waitFor(const std::function<bool()> &isSo)
{
    return QTest::qWaitFor(isSo, patience);
}

// What a Result says went wrong; empty where nothing did.
[[nodiscard]] QString errorText(const auto &result)
{
    return result ? QString() : result.error().message;
}

// The rows of what every adapter promises.
inline void fakeAndReal()
{
    QTest::addColumn<bool>("isReal");
    QTest::newRow("fake") << false;
    QTest::newRow("real") << true;
}

} // namespace velbrix::test

#undef QTRY_VERIFY
#undef QTRY_COMPARE
#define QTRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT((condition), velbrix::test::patience)
#define QTRY_COMPARE(actual, expected)                                                                       \
    QTRY_COMPARE_WITH_TIMEOUT((actual), (expected), velbrix::test::patience)

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace velbrix;
using namespace velbrix::test;
