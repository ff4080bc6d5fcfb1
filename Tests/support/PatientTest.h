#pragma once

#include <QTest>

// Waiting for real programs on a busy machine needs patience; it costs time
// only where a test fails.
#undef QTRY_VERIFY
#undef QTRY_COMPARE
#define QTRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT((condition), 20000)
#define QTRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT((actual), (expected), 20000)
