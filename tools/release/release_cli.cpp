#include "release/release_cli.h"

#include "release/appcast.h"
#include "release/info_plist.h"
#include "release/release_folder.h"
#include "release/release_version.h"
#include "release/signing_identity.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <cstdio>
#include <optional>

#ifndef PANEFORGE_MACOS_MINIMUM_SYSTEM_VERSION
#error "PANEFORGE_MACOS_MINIMUM_SYSTEM_VERSION comes from cmake/PaneforgePackaging.cmake"
#endif

namespace paneforge::release {

namespace {

const QString kUsage = QStringLiteral(
    "usage: paneforge-release compare A B\n"
    "       paneforge-release item FILE --version V [--short-version S] --url URL\n"
    "                         --signature SIG [--date DATE] [--minimum-system-version V]\n"
    "                         [--title TEXT] [--release-notes URL]\n"
    "       paneforge-release feed --title TEXT --link URL [--description TEXT] FILE...\n"
    "       paneforge-release check FOLDER (--bundle-version V | --info-plist FILE)\n"
    "       paneforge-release identity [LISTING] [--team TEAMID] [--require-developer-id]\n"
    "\n"
    "compare   print <, = or > as version A is older than, the same as or newer than B\n"
    "item      print the update feed's <item> for one release file; SIG is the output of\n"
    "          Sparkle's sign_update for FILE; DATE defaults to now\n"
    "feed      print the whole update feed, newest version first, from item files and\n"
    "          earlier feeds; refuses two items of one version\n"
    "check     print the files of a release folder that may be published; exit 1 naming\n"
    "          every other file\n"
    "identity  print the hash of the code-signing identity to use, read from the output of\n"
    "          “security find-identity -v -p codesigning” in LISTING or on standard input\n");

class UsageError {
public:
    explicit UsageError(QString message)
        : message(std::move(message)) {}
    QString message;
};

// "--name value", "--name=value" and "--" before positional arguments that start with "-".
struct Options {
    QStringList positional;
    QHash<QString, QString> values;
    QStringList flags;

    std::optional<QString> value(const QString& name) const {
        const auto it = values.constFind(name);
        return it == values.cend() ? std::nullopt : std::optional<QString>(*it);
    }
    QString required(const QString& name) const {
        if (auto given = value(name)) {
            return *given;
        }
        throw UsageError(QStringLiteral("--%1 is required").arg(name));
    }
    bool flag(const QString& name) const { return flags.contains(name); }
};

Options parseOptions(const QStringList& args, const QStringList& valueNames,
                     const QStringList& flagNames = {}) {
    Options options;
    bool onlyPositional = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        if (onlyPositional || !arg.startsWith(QLatin1String("--"))) {
            options.positional << arg;
            continue;
        }
        if (arg == QLatin1String("--")) {
            onlyPositional = true;
            continue;
        }
        QString name = arg.mid(2);
        std::optional<QString> inlineValue;
        if (const qsizetype equals = name.indexOf(QLatin1Char('=')); equals >= 0) {
            inlineValue = name.mid(equals + 1);
            name.truncate(equals);
        }
        if (flagNames.contains(name)) {
            if (inlineValue) {
                throw UsageError(QStringLiteral("--%1 takes no value").arg(name));
            }
            options.flags << name;
            continue;
        }
        if (!valueNames.contains(name)) {
            throw UsageError(QStringLiteral("unknown option “--%1”").arg(name));
        }
        if (options.values.contains(name)) {
            throw UsageError(QStringLiteral("--%1 is given twice").arg(name));
        }
        if (!inlineValue) {
            if (i + 1 >= args.size()) {
                throw UsageError(QStringLiteral("--%1 needs a value").arg(name));
            }
            inlineValue = args[++i];
        }
        options.values.insert(name, *inlineValue);
    }
    return options;
}

// A failure of the command itself (exit 1), already worded for the person.
class CommandError {
public:
    explicit CommandError(QString message)
        : message(std::move(message)) {}
    QString message;
};

QByteArray readFile(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists()) {
        throw CommandError(QStringLiteral("%1: no such file").arg(path));
    }
    QFile file(path);
    if (info.isDir() || !file.open(QIODevice::ReadOnly)) {
        throw CommandError(QStringLiteral("%1: %2").arg(
            path, info.isDir() ? QStringLiteral("is a folder, not a file") : file.errorString()));
    }
    return file.readAll();
}

int runCompare(const QStringList& args, QTextStream& out) {
    const Options options = parseOptions(args, {});
    if (options.positional.size() != 2) {
        throw UsageError(QStringLiteral("compare takes two versions"));
    }
    try {
        const ReleaseVersion a = ReleaseVersion::parse(options.positional[0]);
        const ReleaseVersion b = ReleaseVersion::parse(options.positional[1]);
        const auto order = a <=> b;
        out << (order < 0 ? "<" : order > 0 ? ">" : "=") << "\n";
        return 0;
    } catch (const ReleaseVersionError& error) {
        throw CommandError(error.message());
    }
}

int runItem(const QStringList& args, QTextStream& out, const ReleaseCliEnvironment& environment) {
    const Options options =
        parseOptions(args, {QStringLiteral("version"), QStringLiteral("short-version"),
                            QStringLiteral("url"), QStringLiteral("signature"),
                            QStringLiteral("date"), QStringLiteral("minimum-system-version"),
                            QStringLiteral("title"), QStringLiteral("release-notes")});
    if (options.positional.size() != 1) {
        throw UsageError(QStringLiteral("item takes one FILE"));
    }
    const QString versionText = options.required(QStringLiteral("version"));
    const QString urlText = options.required(QStringLiteral("url"));
    const QString signatureText = options.required(QStringLiteral("signature"));

    const QString path = options.positional.front();
    const QFileInfo file(path);
    if (!file.exists()) {
        throw CommandError(QStringLiteral("%1: no such file").arg(path));
    }
    if (!file.isFile()) {
        throw CommandError(QStringLiteral("%1: not a file").arg(path));
    }
    try {
        AppcastItem item;
        item.version = ReleaseVersion::parse(versionText);
        item.shortVersion = ReleaseVersion::parse(
            options.value(QStringLiteral("short-version")).value_or(versionText));
        item.length = file.size();
        item.url = httpsUrl(urlText, QStringLiteral("download URL"));
        if (item.url.fileName() != file.fileName()) {
            throw CommandError(QStringLiteral("the URL downloads “%1”, but the file is “%2”")
                                   .arg(item.url.fileName(), file.fileName()));
        }
        item.edSignature = edSignatureFrom(signatureText, item.length);
        const auto date = options.value(QStringLiteral("date"));
        item.publicationDate = date ? parsePublicationDate(*date) : environment.now().toUTC();
        item.minimumSystemVersion =
            normalizedMinimumSystemVersion(options.value(QStringLiteral("minimum-system-version"))
                                               .value_or(environment.minimumSystemVersion));
        item.title = options.value(QStringLiteral("title"))
                         .value_or(QStringLiteral("Version ") + item.shortVersion.text());
        if (const auto notes = options.value(QStringLiteral("release-notes"))) {
            item.releaseNotesLink = httpsUrl(*notes, QStringLiteral("release notes link"));
        }
        out << QString::fromUtf8(itemXml(item));
        return 0;
    } catch (const ReleaseVersionError& error) {
        throw CommandError(error.message());
    } catch (const AppcastError& error) {
        throw CommandError(error.message());
    }
}

int runFeed(const QStringList& args, QTextStream& out) {
    const Options options = parseOptions(
        args, {QStringLiteral("title"), QStringLiteral("link"), QStringLiteral("description")});
    if (options.positional.isEmpty()) {
        throw UsageError(QStringLiteral("feed needs at least one item or feed FILE"));
    }
    FeedChannel channel;
    channel.title = options.required(QStringLiteral("title"));
    channel.link = QUrl(options.required(QStringLiteral("link")), QUrl::StrictMode);
    channel.description = options.value(QStringLiteral("description"))
                              .value_or(QStringLiteral("The newest versions of %1, with links "
                                                       "to their downloads.")
                                            .arg(channel.title));
    std::vector<FeedEntry> entries;
    for (const QString& path : options.positional) {
        try {
            const std::vector<AppcastItem> items = readItems(readFile(path));
            for (std::size_t i = 0; i < items.size(); ++i) {
                entries.push_back(
                    {items[i], items.size() == 1
                                   ? path
                                   : QStringLiteral("%1 (item %2)").arg(path).arg(i + 1)});
            }
        } catch (const AppcastError& error) {
            throw CommandError(QStringLiteral("%1: %2").arg(path, error.message()));
        }
    }
    try {
        out << QString::fromUtf8(feedXml(channel, std::move(entries)));
        return 0;
    } catch (const AppcastError& error) {
        throw CommandError(error.message());
    }
}

int runCheck(const QStringList& args, QTextStream& out, QTextStream& err) {
    const Options options =
        parseOptions(args, {QStringLiteral("bundle-version"), QStringLiteral("info-plist")});
    if (options.positional.size() != 1) {
        throw UsageError(QStringLiteral("check takes one FOLDER"));
    }
    const auto given = options.value(QStringLiteral("bundle-version"));
    const auto plist = options.value(QStringLiteral("info-plist"));
    if (given.has_value() == plist.has_value()) {
        throw UsageError(QStringLiteral("check needs either --bundle-version or --info-plist"));
    }
    QString bundleVersion;
    if (given) {
        bundleVersion = *given;
    } else {
        try {
            bundleVersion =
                infoPlistString(readFile(*plist), QStringLiteral("CFBundleShortVersionString"));
        } catch (const InfoPlistError& error) {
            throw CommandError(QStringLiteral("%1: %2").arg(*plist, error.message()));
        }
    }
    if (auto problem = ReleaseVersion::problemWith(bundleVersion)) {
        throw CommandError(QStringLiteral("the bundle's version: %1").arg(*problem));
    }

    const QString folder = options.positional.front();
    const QFileInfo folderInfo(folder);
    if (!folderInfo.isDir()) {
        throw CommandError(QStringLiteral("%1: %2").arg(
            folder, folderInfo.exists() ? QStringLiteral("not a folder")
                                        : QStringLiteral("no such folder")));
    }
    std::vector<ReleaseFolderEntry> entries;
    const QFileInfoList infos = QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden |
                                                           QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo& info : infos) {
        entries.push_back({info.fileName(), info.isDir(), info.size()});
    }
    const ReleaseFolderVerdict verdict = checkReleaseFolder(entries, bundleVersion);
    for (const QString& name : verdict.publishable) {
        out << name << "\n";
    }
    for (const ReleaseOffender& offender : verdict.offenders) {
        err << "paneforge-release: " << offender.name << ": " << offender.reason << "\n";
    }
    if (verdict.missing) {
        err << "paneforge-release: " << folder << ": " << *verdict.missing << "\n";
    }
    return verdict.ok() ? 0 : 1;
}

int runIdentity(const QStringList& args, QTextStream& out, QTextStream& err,
                const ReleaseCliEnvironment& environment) {
    const Options options =
        parseOptions(args, {QStringLiteral("team")}, {QStringLiteral("require-developer-id")});
    if (options.positional.size() > 1) {
        throw UsageError(QStringLiteral("identity takes at most one LISTING file"));
    }
    const bool fromStandardInput =
        options.positional.isEmpty() || options.positional.front() == QLatin1String("-");
    const QByteArray listing =
        fromStandardInput ? environment.standardInput() : readFile(options.positional.front());
    try {
        SigningIdentityRequest request;
        request.teamId = options.value(QStringLiteral("team")).value_or(QString());
        request.requireDeveloperId = options.flag(QStringLiteral("require-developer-id"));
        const SigningIdentityChoice choice =
            chooseSigningIdentity(parseSigningIdentities(QString::fromUtf8(listing)), request);
        if (!choice.warning.isEmpty()) {
            err << "paneforge-release: warning: " << choice.warning << "\n";
        }
        err << "paneforge-release: using “" << choice.identity.name << "”\n";
        out << choice.identity.hash << "\n";
        return 0;
    } catch (const SigningIdentityError& error) {
        throw CommandError(error.message());
    }
}

} // namespace

QByteArray ReleaseCliEnvironment::readStandardInput() {
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) {
        return {};
    }
    return input.readAll();
}

QString ReleaseCliEnvironment::defaultMinimumSystemVersion() {
    return QStringLiteral(PANEFORGE_MACOS_MINIMUM_SYSTEM_VERSION);
}

int runReleaseCli(const QStringList& args, QTextStream& out, QTextStream& err,
                  const ReleaseCliEnvironment& environment) {
    try {
        if (args.isEmpty()) {
            throw UsageError(QStringLiteral("no command given"));
        }
        const QString command = args.front();
        const QStringList rest = args.mid(1);
        if (command == QLatin1String("--help") || command == QLatin1String("-h") ||
            command == QLatin1String("help")) {
            out << kUsage;
            return 0;
        }
        if (command == QLatin1String("--version")) {
            out << "paneforge-release " << PANEFORGE_VERSION << "\n";
            return 0;
        }
        if (command == QLatin1String("compare")) {
            return runCompare(rest, out);
        }
        if (command == QLatin1String("item")) {
            return runItem(rest, out, environment);
        }
        if (command == QLatin1String("feed")) {
            return runFeed(rest, out);
        }
        if (command == QLatin1String("check")) {
            return runCheck(rest, out, err);
        }
        if (command == QLatin1String("identity")) {
            return runIdentity(rest, out, err, environment);
        }
        throw UsageError(QStringLiteral("unknown command “%1”").arg(command));
    } catch (const UsageError& error) {
        err << "paneforge-release: " << error.message << "\n" << kUsage;
        return 2;
    } catch (const CommandError& error) {
        err << "paneforge-release: " << error.message << "\n";
        return 1;
    }
}

} // namespace paneforge::release
