#include "core/policies/privacy_permission_policy.h"
#include "release/info_plist.h"

#include <QFile>
#include <QTest>
#include <QUrl>

using namespace paneforge;

namespace {

QByteArray configuredPlist() {
    QFile file(QStringLiteral(PANEFORGE_INFO_PLIST));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s", PANEFORGE_INFO_PLIST);
    }
    return file.readAll();
}

} // namespace

// The macOS bundle's Info.plist as cmake/PaneforgePackaging.cmake configures it (on every
// platform, so that it is checked where no Mac builds the bundle).
class BundleInfoTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingLeftToFillIn() {
        const QByteArray plist = configuredPlist();
        QVERIFY2(!plist.contains("@"), "an @VARIABLE@ of the template was not replaced");
        QVERIFY2(!plist.contains("${"), "CMake would replace ${…} a second time");
    }

    void identityAndVersion() {
        const QVariantMap info = release::readInfoPlist(configuredPlist());
        QCOMPARE(info.value("CFBundleIdentifier").toString(), PrivacyPermissionPolicy::bundleId);
        QCOMPARE(info.value("CFBundleShortVersionString").toString(), QString(PANEFORGE_VERSION));
        QCOMPARE(info.value("CFBundleVersion").toString(), QString(PANEFORGE_VERSION));
        QCOMPARE(info.value("CFBundleExecutable").toString(), QString("Paneforge"));
        QCOMPARE(info.value("CFBundlePackageType").toString(), QString("APPL"));
        QCOMPARE(info.value("CFBundleIconFile").toString(), QString("Paneforge"));
        QCOMPARE(info.value("LSMinimumSystemVersion").toString(),
                 QString(PANEFORGE_MACOS_MINIMUM_SYSTEM_VERSION));
    }

    void agentWithoutDockIcon() {
        const QVariantMap info = release::readInfoPlist(configuredPlist());
        QCOMPARE(info.value("LSUIElement"), QVariant(true));
        QCOMPARE(info.value("NSHighResolutionCapable"), QVariant(true));
    }

    void updateFramework() {
        const QVariantMap info = release::readInfoPlist(configuredPlist());
        const QUrl feed(info.value("SUFeedURL").toString());
        QVERIFY(feed.isValid());
        QCOMPARE(feed.scheme(), QString("https"));
        QVERIFY(info.contains("SUPublicEDKey"));
        QCOMPARE(info.value("SUPublicEDKey").typeId(), QMetaType::QString);
    }

    void purposeStrings() {
        const QVariantMap info = release::readInfoPlist(configuredPlist());
        for (const char* key :
             {"NSAccessibilityUsageDescription", "NSInputMonitoringUsageDescription"}) {
            QVERIFY2(info.value(key).toString().startsWith("Paneforge "), key);
        }
    }
};

QTEST_GUILESS_MAIN(BundleInfoTest)
#include "tst_bundle_info.moc"
