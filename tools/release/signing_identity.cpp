#include "release/signing_identity.h"

#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <optional>

namespace paneforge::release {

namespace {

// The identities between two "N … found" lines.
struct Block {
    std::vector<SigningIdentity> identities;
    bool validOnly = false;
    int reportedCount = 0;
};

QString describe(const std::vector<SigningIdentity>& identities) {
    QStringList names;
    for (const SigningIdentity& identity : identities) {
        names << QStringLiteral("“%1” (%2)").arg(identity.name, identity.hash);
    }
    return names.join(QStringLiteral(", "));
}

} // namespace

SigningIdentityError::SigningIdentityError(const QString& message)
    : std::runtime_error(message.toStdString())
    , message_(message) {}

bool SigningIdentity::isDeveloperIdApplication() const {
    return name.startsWith(QLatin1String("Developer ID Application:"));
}

QString SigningIdentity::teamId() const {
    static const QRegularExpression team(QStringLiteral("\\(([^()]+)\\)\\s*$"));
    const auto match = team.match(name);
    return match.hasMatch() ? match.captured(1) : QString();
}

std::vector<SigningIdentity> parseSigningIdentities(const QString& listing) {
    static const QRegularExpression identityLine(QStringLiteral(
        "^\\s*[0-9]+\\)\\s+([0-9A-Fa-f]{40})\\s+\"(.*)\"(?:\\s+\\(([^()]*)\\))?\\s*$"));
    static const QRegularExpression countLine(
        QStringLiteral("^\\s*([0-9]+)\\s+(valid\\s+)?identit(?:y|ies)\\s+found\\s*$"));

    std::vector<Block> blocks;
    Block current;
    bool sawAnything = false;
    for (QString line : listing.split(QLatin1Char('\n'))) {
        line.remove(QLatin1Char('\r'));
        if (const auto match = identityLine.match(line); match.hasMatch()) {
            current.identities.push_back(
                {match.captured(1).toUpper(), match.captured(2), match.captured(3)});
            sawAnything = true;
        } else if (const auto count = countLine.match(line); count.hasMatch()) {
            current.reportedCount = count.captured(1).toInt();
            current.validOnly = count.hasCaptured(2);
            blocks.push_back(std::move(current));
            current = {};
            sawAnything = true;
        }
    }
    if (!sawAnything) {
        throw SigningIdentityError(
            QStringLiteral("this is not the output of “security find-identity -v -p codesigning”"));
    }
    if (!current.identities.empty()) {
        throw SigningIdentityError(
            QStringLiteral("the listing ends without its “N valid identities found” line: is it "
                           "complete?"));
    }
    const Block* valid = nullptr;
    for (const Block& block : blocks) {
        if (block.validOnly) {
            valid = &block;
        }
    }
    if (!valid) {
        throw SigningIdentityError(QStringLiteral(
            "the listing has no valid identities; list them with “security find-identity -v -p "
            "codesigning”"));
    }
    if (static_cast<int>(valid->identities.size()) != valid->reportedCount) {
        throw SigningIdentityError(
            QStringLiteral("the listing says %1 valid identities but shows %2: is it complete?")
                .arg(valid->reportedCount)
                .arg(valid->identities.size()));
    }
    std::vector<SigningIdentity> identities;
    for (const SigningIdentity& identity : valid->identities) {
        if (identity.isValid()) {
            identities.push_back(identity);
        }
    }
    return identities;
}

SigningIdentityChoice chooseSigningIdentity(const std::vector<SigningIdentity>& identities,
                                            const SigningIdentityRequest& request) {
    std::vector<SigningIdentity> candidates;
    for (const SigningIdentity& identity : identities) {
        const bool seen =
            std::any_of(candidates.begin(), candidates.end(),
                        [&](const SigningIdentity& c) { return c.hash == identity.hash; });
        const bool ofTeam = request.teamId.isEmpty() || identity.teamId() == request.teamId;
        if (identity.isValid() && !seen && ofTeam) {
            candidates.push_back(identity);
        }
    }
    if (candidates.empty()) {
        if (!request.teamId.isEmpty() && !identities.empty()) {
            throw SigningIdentityError(QStringLiteral("no valid identity of team %1; there are: %2")
                                           .arg(request.teamId, describe(identities)));
        }
        throw SigningIdentityError(QStringLiteral(
            "no valid code-signing identity; install a Developer ID Application certificate in "
            "your keychain (Xcode › Settings › Accounts › Manage Certificates)"));
    }

    std::vector<SigningIdentity> developerIds;
    for (const SigningIdentity& identity : candidates) {
        if (identity.isDeveloperIdApplication()) {
            developerIds.push_back(identity);
        }
    }
    if (developerIds.size() == 1) {
        return {developerIds.front(), {}};
    }
    if (developerIds.size() > 1) {
        throw SigningIdentityError(
            QStringLiteral("several Developer ID Application identities: %1; %2")
                .arg(describe(developerIds),
                     request.teamId.isEmpty()
                         ? QStringLiteral("choose the team with --team TEAMID")
                         : QStringLiteral("give codesign the hash of the one to use")));
    }
    if (request.requireDeveloperId) {
        throw SigningIdentityError(
            QStringLiteral("no Developer ID Application identity, which notarization needs; "
                           "there are: %1")
                .arg(describe(candidates)));
    }
    const SigningIdentity& chosen = candidates.front();
    return {chosen, QStringLiteral("“%1” is not a Developer ID Application identity: fine for a "
                                   "build on this Mac, but a release needs one to be notarized")
                        .arg(chosen.name)};
}

} // namespace paneforge::release
