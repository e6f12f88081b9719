#pragma once

#include <QString>
#include <compare>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <vector>

namespace paneforge::release {

// A text that is not a version Paneforge publishes. The message quotes the text and says what is
// wrong with it, for a person to read.
class ReleaseVersionError : public std::runtime_error {
public:
    explicit ReleaseVersionError(const QString& message);
    QString message() const { return message_; }

private:
    QString message_;
};

// A release version: numbers separated by dots ("1.2", "1.2.1", "1.10"), optionally followed
// directly by a pre-release label of lower-case letters and an optional number ("1.2b1",
// "1.2rc2", "2.0beta").
//
// The grammar is the part of Sparkle's version strings on which Sparkle's own comparator and this
// one agree, so the feed's order is the order in which Sparkle offers updates:
// - numbers compare as numbers, missing trailing numbers count as zero (1.2 == 1.2.0 < 1.2.1 <
//   1.10);
// - a pre-release comes before its release (1.2b1 < 1.2), labels compare letter by letter (a < b
//   < beta < rc), and a label without a number comes before the same label with one (1.2b <
//   1.2b1 < 1.2b2 < 1.2b10).
// Refused with a clear error: anything else, notably a hyphen ("1.2-beta.1": Sparkle ignores
// everything from a hyphen on and would take it for 1.2), upper-case labels (Sparkle compares
// letters by character code), leading zeros ("1.02") and a leading "v".
class ReleaseVersion {
public:
    // Version 0.
    ReleaseVersion();
    // Throws ReleaseVersionError.
    static ReleaseVersion parse(const QString& text);
    // The reason `text` is not a version, or nothing when it is one.
    static std::optional<QString> problemWith(const QString& text);

    // The text as it was written.
    const QString& text() const { return text_; }
    const std::vector<std::uint64_t>& numbers() const { return numbers_; }
    bool isPreRelease() const { return !label_.isEmpty(); }
    const QString& preReleaseLabel() const { return label_; }
    std::optional<std::uint64_t> preReleaseNumber() const { return labelNumber_; }

    // Equal versions may be written differently (1.2 and 1.2.0).
    friend std::weak_ordering operator<=>(const ReleaseVersion& a, const ReleaseVersion& b);
    friend bool operator==(const ReleaseVersion& a, const ReleaseVersion& b) {
        return (a <=> b) == std::weak_ordering::equivalent;
    }

private:
    QString text_;
    std::vector<std::uint64_t> numbers_;
    QString label_;
    std::optional<std::uint64_t> labelNumber_;
};

} // namespace paneforge::release
