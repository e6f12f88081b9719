// What the packages are made of, checked on every platform: the application icon against the tray
// icon's design, and the macOS bundle's Info.plist as cmake/PaneforgePackaging.cmake configures it
// (checked where no Mac builds the bundle).

#include "core/policies/privacy_permission_policy.h"
#include "release/info_plist.h"
#include "ui/menu_bar_icon_renderer.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <QTest>
#include <QUrl>

using namespace paneforge;

namespace {

constexpr int kSize = 220;

// Both pictures of the icon: the application icon's SVG, and the tray icon as the agent draws it,
// where the SVG puts its 22-point grid (scaled by 0.75 about the tile's centre).
std::pair<QImage, QImage> renderIcons() {
    QImage svg(kSize, kSize, QImage::Format_ARGB32);
    svg.fill(Qt::transparent);
    QImage tray = svg;
    QPainter svgPainter(&svg);
    QSvgRenderer(QStringLiteral(PANEFORGE_ICON_SVG))
        .render(&svgPainter, QRectF(0, 0, kSize, kSize));
    QPainter trayPainter(&tray);
    trayPainter.translate(2.75 * kSize / 22.0, 2.75 * kSize / 22.0);
    MenuBarIconRenderer::drawIcon(trayPainter, QSizeF(kSize, kSize) * 0.75, Qt::white);
    svgPainter.end();
    trayPainter.end();
    return {svg, tray};
}

bool isGlyph(QRgb svgPixel) {
    return qAlpha(svgPixel) > 200 && qRed(svgPixel) > 160 && qGreen(svgPixel) > 160 &&
           qBlue(svgPixel) > 200;
}

QByteArray configuredPlist() {
    QFile file(QStringLiteral(PANEFORGE_INFO_PLIST));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s", PANEFORGE_INFO_PLIST);
    }
    return file.readAll();
}

} // namespace

class PackagingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The white glyph of the application icon covers the same pixels as the tray icon's shape.
    void glyphIsTheTrayIcon() {
        const auto [svg, tray] = renderIcons();
        int glyphPixels = 0;
        int mismatches = 0;
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) {
                const bool inTray = qAlpha(tray.pixel(x, y)) > 160;
                const bool trayEdge = qAlpha(tray.pixel(x, y)) > 40 && !inTray;
                glyphPixels += inTray ? 1 : 0;
                // Anti-aliased edges may fall either way.
                if (!trayEdge && inTray != isGlyph(svg.pixel(x, y))) {
                    ++mismatches;
                }
            }
        }
        QVERIFY(glyphPixels > 2000);
        QVERIFY2(
            mismatches < glyphPixels / 50,
            qPrintable(QStringLiteral("%1 of %2 pixels differ").arg(mismatches).arg(glyphPixels)));
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
        row("LSMinimumSystemVersion", PANEFORGE_MACOS_MINIMUM_SYSTEM_VERSION);
        row("LSUIElement", true); // an agent, without a Dock icon
    }
    void values() {
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        const QByteArray plist = configuredPlist();
        QVERIFY2(!plist.contains("@") && !plist.contains("${"), "a template variable was left");
        QCOMPARE(release::readInfoPlist(plist).value(key), value);
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

QTEST_GUILESS_MAIN(PackagingTest)
#include "tst_packaging.moc"
