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

    void values_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        const auto row = [](const char* key, const QVariant& value) {
            QTest::newRow(key) << QString(key) << value;
        };
        row("CFBundleIdentifier", PrivacyPermissionPolicy::bundleId);
        row("CFBundleShortVersionString", PANEFORGE_VERSION);
        row("CFBundleVersion", PANEFORGE_VERSION);
        row("CFBundleExecutable", "Paneforge");
        row("CFBundlePackageType", "APPL");
        row("CFBundleIconFile", "Paneforge");
        row("LSMinimumSystemVersion", PANEFORGE_MACOS_MINIMUM_SYSTEM_VERSION);
        row("LSUIElement", true); // an agent, without a Dock icon
        row("NSHighResolutionCapable", true);
    }
    void values() {
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        QCOMPARE(release::readInfoPlist(configuredPlist()).value(key), value);
    }

    void updateFrameworkAndPurposeStrings() {
        const QVariantMap info = release::readInfoPlist(configuredPlist());
        QCOMPARE(QUrl(info.value("SUFeedURL").toString()).scheme(), QString("https"));
        QCOMPARE(info.value("SUPublicEDKey").typeId(), QMetaType::QString);
        for (const char* key :
             {"NSAccessibilityUsageDescription", "NSInputMonitoringUsageDescription"}) {
            QVERIFY2(info.value(key).toString().startsWith("Paneforge "), key);
        }
    }
};

QTEST_GUILESS_MAIN(BundleInfoTest)
#include "tst_bundle_info.moc"
