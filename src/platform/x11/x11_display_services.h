#pragma once

#include "app/ports/display_services.h"
#include "app/runtime/screen_diagnostics.h"
#include "platform/x11/x11_connection.h"

#include <QRect>
#include <memory>

namespace paneforge {

// Displays from Qt's screens, identities from the RandR outputs' EDID, and visible frames from the
// desktop's dock struts (Qt reports no usable work area per monitor when there are several).
//
// The screens are Qt's as they are at each call. The visible frames and the EDID blocks take round
// trips (two per client window for the struts), so they are kept until the X server reports a
// change that can affect them: a client list, work area or strut property change, a RandR screen
// or output change. Those events come on a connection of the service's own, read from Qt's event
// loop and, before every answer, whatever is waiting, so a dock that appeared or a monitor that
// changed is seen at the next call even while the event loop is busy.
class X11DisplayServices final : public DisplayService,
                                 public DisplayFrameService,
                                 public ScreenListing {
public:
    explicit X11DisplayServices(X11Connection& connection);
    ~X11DisplayServices() override;
    X11DisplayServices(const X11DisplayServices&) = delete;
    X11DisplayServices& operator=(const X11DisplayServices&) = delete;

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
        bool operator==(const Screen&) const = default;
    };
    class Watcher;

    std::vector<Screen> currentScreens() const;
    std::optional<Screen> screenFor(DisplayId displayId) const;
    QByteArray edidFor(const QString& screenName) const;
    QByteArray readEdid(const QString& screenName) const;
    std::vector<QString> outputNamesFor(const QString& screenName) const;
    // The visible frame of each screen, in the same order.
    std::vector<DesktopRect> visibleFrames(const std::vector<Screen>& screens) const;
    static std::vector<DesktopRect>
    readVisibleFrames(X11Connection& x, const std::vector<Screen>& screens, bool watchClients);

    X11Connection* x_; // not owned; the lookups of const members go through it too
    std::unique_ptr<Watcher> watcher_;
};

} // namespace paneforge
