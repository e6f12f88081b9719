#pragma once

#include "app/ports/display_services.h"
#include "app/runtime/screen_diagnostics.h"
#include "platform/x11/x11_connection.h"

#include <QRect>

namespace paneforge {

// Displays from Qt's screens, identities from the RandR outputs' EDID, and visible frames from the
// desktop's dock struts (Qt reports no usable work area per monitor when there are several).
class X11DisplayServices final : public DisplayService,
                                 public DisplayFrameService,
                                 public ScreenListing {
public:
    explicit X11DisplayServices(X11Connection& connection)
        : x_(&connection) {}

    std::vector<DisplayId> getActiveDisplays() override;
    DisplayIdentifier getIdentifier(DisplayId displayId) override;
    std::optional<QString> getDisplayName(DisplayId displayId) override;
    QString getDisplayTitle(DisplayId displayId) override;
    std::vector<QString> getDisplaySummaries() override;

    std::optional<DesktopRect> getFrame(DisplayId displayId) override;
    std::optional<DesktopRect> getVisibleFrame(DisplayId displayId) override;
    std::optional<DisplayId> getDisplayId(DesktopPoint point) override;
    DesktopPoint pointerLocation() override;
    double primaryMaxY() override;

    std::vector<ScreenInfo> screens() const override;

    // A stable number for a screen name (never 0).
    static DisplayId displayIdForName(const QString& name);

    // The part of `monitor` (root coordinates) that no dock strut covers. `struts` holds the
    // twelve values of _NET_WM_STRUT_PARTIAL per dock.
    static QRect visibleArea(const QRect& monitor,
                             const std::vector<std::vector<std::uint32_t>>& struts, int rootWidth,
                             int rootHeight);

private:
    struct Screen {
        DisplayId id;
        QString name;
        QRect rootGeometry;
        double scale;
    };
    std::vector<Screen> currentScreens() const;
    std::optional<Screen> screenFor(DisplayId displayId) const;
    QByteArray edidFor(const QString& screenName) const;
    std::vector<QString> outputNamesFor(const QString& screenName) const;
    DesktopRect visibleFrameOf(const Screen& screen) const;

    X11Connection* x_; // not owned; the lookups of const members go through it too
};

} // namespace paneforge
