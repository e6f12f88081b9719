#pragma once

#include <QString>

// Whether a command's output reads as expected: a "*" at either end of the expected text stands
// for anything there.
inline bool matchesExpected(const QString& actual, const QString& expected) {
    const bool head = expected.startsWith(QLatin1Char('*'));
    const bool tail = expected.size() > 1 && expected.endsWith(QLatin1Char('*'));
    const QString core = expected.mid(head ? 1 : 0, expected.size() - head - tail);
    return head && tail ? actual.contains(core)
           : head       ? actual.endsWith(core)
           : tail       ? actual.startsWith(core)
                        : actual == core;
}
