#include "release/release_version.h"

#include <algorithm>
#include <variant>

namespace paneforge::release {

namespace {

// Numbers longer than this could overflow Sparkle's long long and ours.
constexpr qsizetype kMaxDigits = 18;

bool isDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool isLowerLetter(QChar c) {
    return c >= QLatin1Char('a') && c <= QLatin1Char('z');
}

bool isUpperLetter(QChar c) {
    return c >= QLatin1Char('A') && c <= QLatin1Char('Z');
}

struct Parsed {
    std::vector<std::uint64_t> numbers;
    QString label;
    std::optional<std::uint64_t> labelNumber;
};

// Reads a run of digits at `pos`; empty when there is none.
QString digitsAt(const QString& text, qsizetype& pos) {
    const qsizetype start = pos;
    while (pos < text.size() && isDigit(text[pos])) {
        ++pos;
    }
    return text.mid(start, pos - start);
}

std::optional<QString> checkNumber(const QString& digits) {
    if (digits.size() > 1 && digits.front() == QLatin1Char('0')) {
        return QStringLiteral("the number “%1” has a leading zero").arg(digits);
    }
    if (digits.size() > kMaxDigits) {
        return QStringLiteral("the number “%1” is too long").arg(digits);
    }
    return std::nullopt;
}

QString hyphenProblem() {
    return QStringLiteral("Sparkle ignores everything from a hyphen on; write a pre-release as "
                          "1.2b1 or 1.2rc1");
}

// What follows the numbers at `pos` when it is not a valid pre-release.
QString trailingProblem(const QString& text, qsizetype pos) {
    const QChar c = text[pos];
    if (c == QLatin1Char('-')) {
        return hyphenProblem();
    }
    if (c == QLatin1Char('+')) {
        return QStringLiteral("build metadata (“%1”) is not part of a version").arg(text.mid(pos));
    }
    return QStringLiteral("unexpected “%1” after “%2”").arg(text.mid(pos), text.left(pos));
}

std::variant<Parsed, QString> parseText(const QString& text) {
    if (text.isEmpty()) {
        return QStringLiteral("it is empty");
    }
    if (std::any_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); })) {
        return QStringLiteral("it contains white space");
    }
    if ((text[0] == QLatin1Char('v') || text[0] == QLatin1Char('V')) && text.size() > 1 &&
        isDigit(text[1])) {
        return QStringLiteral("write it without the leading “%1”").arg(text[0]);
    }
    if (!isDigit(text[0])) {
        return QStringLiteral("it must start with a number");
    }

    Parsed parsed;
    qsizetype pos = 0;
    while (true) {
        const QString digits = digitsAt(text, pos);
        if (digits.isEmpty()) {
            if (pos == text.size()) {
                return QStringLiteral("it ends with a dot");
            }
            if (text[pos] == QLatin1Char('.')) {
                return QStringLiteral("it has two dots in a row");
            }
            return QStringLiteral("a number must follow the dot in “%1”").arg(text.left(pos));
        }
        if (auto problem = checkNumber(digits)) {
            return *problem;
        }
        parsed.numbers.push_back(digits.toULongLong());
        if (pos < text.size() && text[pos] == QLatin1Char('.')) {
            ++pos;
            continue;
        }
        break;
    }
    if (pos == text.size()) {
        return parsed;
    }

    if (isUpperLetter(text[pos]) || isLowerLetter(text[pos])) {
        const qsizetype start = pos;
        while (pos < text.size() && (isLowerLetter(text[pos]) || isUpperLetter(text[pos]))) {
            ++pos;
        }
        const QString label = text.mid(start, pos - start);
        if (label != label.toLower()) {
            return QStringLiteral("the pre-release label “%1” must be in lower case (“%2”)")
                .arg(label, label.toLower());
        }
        parsed.label = label;
        const QString digits = digitsAt(text, pos);
        if (!digits.isEmpty()) {
            if (auto problem = checkNumber(digits)) {
                return *problem;
            }
            parsed.labelNumber = digits.toULongLong();
        }
        if (pos == text.size()) {
            return parsed;
        }
        if (text[pos] == QLatin1Char('-')) {
            return hyphenProblem();
        }
        return QStringLiteral("nothing may follow the pre-release “%1”, found “%2”")
            .arg(text.mid(start, pos - start), text.mid(pos));
    }
    return trailingProblem(text, pos);
}

} // namespace

ReleaseVersionError::ReleaseVersionError(const QString& message)
    : std::runtime_error(message.toStdString())
    , message_(message) {}

ReleaseVersion::ReleaseVersion()
    : text_(QStringLiteral("0"))
    , numbers_{0} {}

std::optional<QString> ReleaseVersion::problemWith(const QString& text) {
    auto result = parseText(text);
    if (auto* problem = std::get_if<QString>(&result)) {
        return QStringLiteral("“%1” is not a version: %2").arg(text, *problem);
    }
    return std::nullopt;
}

ReleaseVersion ReleaseVersion::parse(const QString& text) {
    auto result = parseText(text);
    if (auto* problem = std::get_if<QString>(&result)) {
        throw ReleaseVersionError(QStringLiteral("“%1” is not a version: %2").arg(text, *problem));
    }
    auto& parsed = std::get<Parsed>(result);
    ReleaseVersion version;
    version.text_ = text;
    version.numbers_ = std::move(parsed.numbers);
    version.label_ = std::move(parsed.label);
    version.labelNumber_ = parsed.labelNumber;
    return version;
}

std::weak_ordering operator<=>(const ReleaseVersion& a, const ReleaseVersion& b) {
    const std::size_t count = std::max(a.numbers_.size(), b.numbers_.size());
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t left = i < a.numbers_.size() ? a.numbers_[i] : 0;
        const std::uint64_t right = i < b.numbers_.size() ? b.numbers_[i] : 0;
        if (left != right) {
            return left <=> right;
        }
    }
    // The release itself comes after all of its pre-releases.
    if (a.isPreRelease() != b.isPreRelease()) {
        return a.isPreRelease() ? std::weak_ordering::less : std::weak_ordering::greater;
    }
    if (const int labels = QString::compare(a.label_, b.label_); labels != 0) {
        return labels < 0 ? std::weak_ordering::less : std::weak_ordering::greater;
    }
    // No number comes before any number (1.2b < 1.2b0), as in Sparkle.
    if (a.labelNumber_.has_value() != b.labelNumber_.has_value()) {
        return a.labelNumber_ ? std::weak_ordering::greater : std::weak_ordering::less;
    }
    if (a.labelNumber_ && *a.labelNumber_ != *b.labelNumber_) {
        return *a.labelNumber_ <=> *b.labelNumber_;
    }
    return std::weak_ordering::equivalent;
}

} // namespace paneforge::release
