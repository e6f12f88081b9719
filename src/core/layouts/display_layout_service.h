#pragma once

#include "core/config/paneforge_config.h"

#include <QString>
#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace paneforge {

// Expected user errors of the per-display layout operations. They carry no text; the interface
// chooses the words.
enum class DisplayLayoutError { DuplicateName, LayoutNotOwned, EmptyName, LastLayout };

class DisplayLayoutException : public std::runtime_error {
public:
    explicit DisplayLayoutException(DisplayLayoutError error);
    DisplayLayoutError error() const { return error_; }

private:
    DisplayLayoutError error_;
};

// Reads and changes one display's layouts inside a configuration. Every change returns a new
// configuration; nothing is written here, and on an error the input stays as it was.
class DisplayLayoutService {
public:
    using LayoutIdMaker = std::function<QString()>;

    explicit DisplayLayoutService(LayoutIdMaker makeLayoutId = defaultLayoutIdMaker());

    // A fresh random UUID in upper-case canonical text.
    static LayoutIdMaker defaultLayoutIdMaker();

    std::vector<GridDefinition> listLayouts(const PaneforgeConfig& config,
                                            const QString& displayStableId) const;
    std::optional<GridDefinition> getActiveLayout(const PaneforgeConfig& config,
                                                  const QString& displayStableId) const;
    // The layout whose zones a display shows and snaps to: its active layout, else the
    // configuration's default layout.
    GridDefinition getActiveLayoutOrDefault(const PaneforgeConfig& config,
                                            const QString& displayStableId) const;
    // The active layout, else the first one, else a new unsaved layout based on the default.
    GridDefinition getOrCreateLayout(const PaneforgeConfig& config,
                                     const QString& displayStableId) const;

    PaneforgeConfig setActiveLayout(const PaneforgeConfig& config, const QString& displayStableId,
                                    const QString& gridId) const;
    PaneforgeConfig save(const PaneforgeConfig& config, const QString& displayStableId,
                         const GridDefinition& grid) const;
    PaneforgeConfig saveAsNew(const PaneforgeConfig& config, const QString& displayStableId,
                              const GridDefinition& grid) const;
    PaneforgeConfig deleteLayout(const PaneforgeConfig& config, const QString& displayStableId,
                                 const QString& gridId) const;
    std::pair<PaneforgeConfig, GridDefinition> selectLayout(const PaneforgeConfig& config,
                                                            const QString& displayStableId,
                                                            const QString& gridId) const;
    // No value when the display has fewer than two layouts.
    std::optional<PaneforgeConfig> cycleNext(const PaneforgeConfig& config,
                                             const QString& displayStableId) const;
    std::optional<PaneforgeConfig> cyclePrevious(const PaneforgeConfig& config,
                                                 const QString& displayStableId) const;

    // At least one character once white space and line breaks are trimmed from both ends.
    static bool isUsableName(const QString& name);

private:
    LayoutIdMaker makeLayoutId_;

    std::optional<PaneforgeConfig> cycle(const PaneforgeConfig& config,
                                         const QString& displayStableId, int delta) const;
    static PaneforgeConfig replaceDisplay(const PaneforgeConfig& config,
                                          const QString& displayStableId,
                                          const DisplayLayouts& entry);
};

} // namespace paneforge
