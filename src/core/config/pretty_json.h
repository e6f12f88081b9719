#pragma once

#include <QJsonValue>
#include <QString>

namespace paneforge {

// The configuration's own printer: two-space indentation, " : " between key and value, keys in
// code-point order except a layout object's fixed "id", "name", "horizontalSplits",
// "verticalSplits", every array element on its own line, and one empty line inside an empty
// container. Deterministic, so that the file diffs well.
namespace PrettyJSON {

QString writeValue(const QJsonValue& value, int level = 0);

// A string as a JSON literal: quotes, backslashes, control characters and unpaired surrogates
// escaped, and the solidus written as "\/".
QString jsonString(const QString& text);
// The same, appended to `out`.
void appendJsonString(QString& out, const QString& text);

// A number as a JSON literal: whole values without a fraction ("8"), others in their shortest
// round-trip form ("0.5", "0.010000000000000009").
QString writeNumber(double value);

} // namespace PrettyJSON

} // namespace paneforge
