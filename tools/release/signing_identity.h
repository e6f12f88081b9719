#pragma once

#include <QString>
#include <stdexcept>
#include <vector>

namespace paneforge::release {

// A listing that cannot be read, or one that offers no identity to use.
class SigningIdentityError : public std::runtime_error {
public:
    explicit SigningIdentityError(const QString& message);
    QString message() const { return message_; }

private:
    QString message_;
};

// One line of `security find-identity -p codesigning`:
//   1) 0123456789ABCDEF0123456789ABCDEF01234567 "Developer ID Application: Jane Doe (AB12CD34EF)"
// An identity the system does not trust carries its reason after the name
// ("(CSSMERR_TP_CERT_EXPIRED)").
struct SigningIdentity {
    // The SHA-1 of the certificate in upper case, which codesign --sign accepts.
    QString hash;
    QString name;
    // Empty when the identity is valid.
    QString problem;

    bool isValid() const { return problem.isEmpty(); }
    bool isDeveloperIdApplication() const;
    // The team identifier in the parentheses that end the name; empty when there is none.
    QString teamId() const;

    friend bool operator==(const SigningIdentity&, const SigningIdentity&) = default;
};

// The valid identities of the output of `security find-identity -v -p codesigning` (or of the
// same command without -v, whose "Valid identities only" section is then the one read), in the
// listing's order. A listing whose "N valid identities found" line disagrees with the identities
// shown (a truncated copy), or that is not such a listing at all, is refused.
std::vector<SigningIdentity> parseSigningIdentities(const QString& listing);

struct SigningIdentityRequest {
    // Only identities of this team, when set.
    QString teamId;
    // Refuse anything but a Developer ID Application identity (what notarization needs).
    bool requireDeveloperId = false;
};

struct SigningIdentityChoice {
    SigningIdentity identity;
    // Set when the identity chosen is not a Developer ID Application one: fine for a local
    // build, not for a release.
    QString warning;
};

// The Developer ID Application identity when there is exactly one (per team), otherwise, unless
// required, the first other valid identity with a warning. Several Developer ID Application
// identities are refused with the list, as is a listing without any usable identity.
SigningIdentityChoice chooseSigningIdentity(const std::vector<SigningIdentity>& identities,
                                            const SigningIdentityRequest& request = {});

} // namespace paneforge::release
