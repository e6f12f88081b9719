#pragma once

#include "config_fixtures.h"

// The two configurations the interrupted-save test alternates between. Each carries one layout
// with a long name: encoding a long string costs little more than copying it, so writing the file
// takes a large share of each save, and a kill often lands while the bytes go to disk, which is
// when a writer that is not atomic leaves a fragment behind.
namespace interrupted_save {

inline paneforge::PaneforgeConfig config(int which) {
    using namespace paneforge;
    const PaneforgeConfig base = which == 0 ? fixtures::smallConfig() : fixtures::configWith(8, 12);
    const GridDefinition bulky(QStringLiteral("bulky"),
                               QString(which == 0 ? 600'000 : 900'000, QLatin1Char('a' + which)),
                               {0.5}, {});
    DisplayLayoutsMap displays = base.displays();
    displays.insert_or_assign(QStringLiteral("v9-p9-s9"),
                              DisplayLayouts(QStringLiteral("bulky"), {bulky}));
    return base.copying(displays);
}

} // namespace interrupted_save
