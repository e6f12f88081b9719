#include "app/runtime/screen_diagnostics.h"
#include "snap_fakes.h"

#include <QTest>

using namespace paneforge;

class ScreenDiagnosticsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void topologyAndLookup() {
        fakes::Desk screens;
        QStringList lines;
        const ScreenDiagnostics diagnostics(screens, [&](const QString& l) { lines << l; });
        diagnostics.logTopology("appStart");
        QCOMPARE(lines, QStringList{"ScreenDiagnostics.appStart count=0 primaryMaxY=0.0"});
        lines.clear();
        screens.screenList = {
            {"Built-in", 1u, 2.0, {0, 0, 1440, 900}, {0, 0, 1440, 875}, {0, 0, 1440, 900}},
            {"Side",
             std::nullopt,
             1.0,
             {1440, 0, 1920, 1080},
             {1440, 0, 1920, 1080},
             {1440, -180, 1920, 1080}}};
        diagnostics.logTopology("snapStart");
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[0], QStringLiteral("ScreenDiagnostics.snapStart count=2 primaryMaxY=900.0"));
        QCOMPARE(lines[1],
                 QString("[0] Built-in id=1 primary scale=2.0 cocoa=(0.0,0.0 1440.0x900.0) "
                         "visible=(0.0,0.0 1440.0x875.0) quartz=(0.0,0.0 1440.0x900.0)"));
        QVERIFY(lines[2].startsWith("[1] Side id=0 secondary scale=1.0"));

        QCOMPARE(diagnostics.screen({1440, 10})->name, QStringLiteral("Side"));
        QCOMPARE(diagnostics.screen({1439.5, 899.5})->name, QStringLiteral("Built-in"));
        QVERIFY(!diagnostics.screen({1000, 950})); // the gap above the smaller screen
        QVERIFY(!ScreenDiagnostics::displayId(*diagnostics.screen({2000, 500})));
    }
};

QTEST_APPLESS_MAIN(ScreenDiagnosticsTest)
#include "tst_screen_diagnostics.moc"
