#pragma once

// A platform and view factory of fakes over snap_fakes.h; the shell's fakes write what they are
// asked into one journal.

#include "app/input/hotkey_manager.h"
#include "app/ports/key_down_monitor_api.h"
#include "app/ports/layout_switch_views.h"
#include "app/ports/platform.h"
#include "app/ports/view_factory.h"
#include "snap_fakes.h"

#include <map>
#include <optional>

namespace fakes {

using namespace paneforge;

// Registrations by handle; a refusal is proved against a real server (tst_x11_input).
class Hotkeys final : public HotkeyApi {
public:
    std::function<void(std::uint32_t)> pressed;
    std::map<std::uint64_t, std::uint32_t> registered; // handle -> id
    std::uint64_t nextHandle = 100;
    bool handlerRemoved = false;

    void installHandler(std::function<void(std::uint32_t)> onPressed) override {
        pressed = std::move(onPressed);
    }
    void removeHandler() override { handlerRemoved = true; }
    Registration registerHotKey(std::uint32_t, std::uint32_t, std::uint32_t,
                                std::uint32_t id) override {
        registered[nextHandle] = id;
        return {Result::Registered, nextHandle++, {}};
    }
    void unregisterHotKey(std::uint64_t handle) override { registered.erase(handle); }
};

// One monitor at a time; press() plays a key press in one of Paneforge's windows.
class KeyDownMonitor final : public KeyDownMonitorApi {
public:
    std::shared_ptr<Handler> handler;

    std::unique_ptr<Monitor> addLocalMonitor(Handler h) override {
        auto monitor = std::make_unique<Installed>(*this);
        handler = std::make_shared<Handler>(std::move(h));
        return monitor;
    }
    // Whether the press was swallowed; with no monitor it goes on to the window.
    bool press(std::uint32_t keyCode, std::uint32_t modifiers) {
        const auto keep = handler; // a monitor may be removed while it handles the press
        return keep && (*keep)(KeyPress{keyCode, modifiers});
    }

private:
    struct Installed final : Monitor {
        explicit Installed(KeyDownMonitor& api)
            : api(api) {}
        ~Installed() override { api.handler.reset(); }
        KeyDownMonitor& api;
    };
};

// The windows of layout switching as plain records of what is on screen now, with the callbacks
// a click or a key would call. Dropping a window takes it off the record.
class LayoutSwitchScreen final : public LayoutSwitchViews {
public:
    struct HUD {
        QString name;
        DesktopRect frame;
        std::function<void()> dismiss;
    };
    struct Selector {
        DesktopRect frame;
        LayoutSelectorContent content;
        std::function<void(const QString&)> select;
        std::function<void()> dismiss;
    };
    std::optional<HUD> hud;
    std::optional<Selector> selector;

    std::unique_ptr<LayoutSwitchWindow> showHUD(const QString& name, const DesktopRect& frame,
                                                std::function<void()> dismiss) override {
        hud = HUD{name, frame, std::move(dismiss)};
        return std::make_unique<Window>([this] { hud.reset(); });
    }
    std::unique_ptr<LayoutSwitchWindow> showSelector(const DesktopRect& frame,
                                                     LayoutSelectorContent content,
                                                     std::function<void(const QString&)> select,
                                                     std::function<void()> dismiss) override {
        selector = Selector{frame, std::move(content), std::move(select), std::move(dismiss)};
        return std::make_unique<Window>([this] { selector.reset(); });
    }
    // What a click on a card does (the callback outlives the window it closes).
    void pick(const QString& id) {
        const auto select = selector->select;
        select(id);
    }

private:
    class Window final : public LayoutSwitchWindow {
    public:
        explicit Window(std::function<void()> closed)
            : closed_(std::move(closed)) {}
        ~Window() override { closed_(); }

    private:
        std::function<void()> closed_;
    };
};

class NoKeyboardLayout final : public KeyboardLayoutProvider, public KeyboardKeyTranslator {
public:
    std::shared_ptr<const KeyboardLayout> currentLayout() const override { return nullptr; }
    std::optional<QString> translate(std::uint32_t, const KeyboardLayout&) const override {
        return {};
    }
};

class NativeWindowsRecord final : public NativeWindows {
public:
    std::vector<NativeWindowId> activated;
    void configureOverlayWindow(NativeWindowId) override {}
    void activate(NativeWindowId window) override { activated.push_back(window); }
    bool compositingAvailable() override { return true; }
};

using Journal = std::function<void(const QString&)>;

template <typename T> T noted(const Journal& journal, const QString& line, T answer) {
    journal(line);
    return answer;
}

// A login item in the state the test sets; register and unregister change it unless told to fail.
class LoginItems final : public LoginItemService {
public:
    Journal journal;
    bool applies = true;
    LoginItemStatus state = LoginItemStatus::NotRegistered;
    bool failChanges = false;

    bool appliesToThisCopy() override { return applies; }
    LoginItemStatus status() override { return state; }
    bool registerItem() override { return change("register", LoginItemStatus::Enabled); }
    bool unregisterItem() override { return change("unregister", LoginItemStatus::NotRegistered); }

private:
    bool change(const char* call, LoginItemStatus to) {
        journal(QStringLiteral("loginItems.") + QLatin1String(call));
        state = failChanges ? state : to;
        return !failChanges;
    }
};

class Updates final : public UpdateService {
public:
    Journal journal;
    bool available = false;
    void start() override { journal(QStringLiteral("updater.start")); }
    bool checkForUpdates() override {
        return noted(journal, QStringLiteral("updater.check"), available);
    }
    QString unavailableMessage() const override { return QStringLiteral("no updater here"); }
};

// Without privacy grants (as on X11) unless told otherwise; resets run by it are journalled.
class Permissions final : public PermissionSource, public CommandRunner {
public:
    Journal journal;
    bool grants = false;
    std::function<void()> activated;

    bool hasPrivacyGrants() const override { return grants; }
    bool requestListenEventAccess() override {
        return noted(journal, QStringLiteral("requestListenEventAccess"), false);
    }
    void openSettings(const QString& url) override { journal(QStringLiteral("open ") + url); }
    NotificationCenter::ObservationToken
    observeActivation(std::function<void()> callback) override {
        activated = std::move(callback);
        return nullptr;
    }
    PermissionCoachContent coachContent(PrivacyCoachStep step) override {
        return {PrivacyPermissionPolicy::coachTitle(step),
                PrivacyPermissionPolicy::coachMessage(step),
                PrivacyPermissionPolicy::coachButtonTitle(step)};
    }
    int run(const QString& executable, const QStringList& arguments) override {
        return noted(journal, executable + QLatin1Char(' ') + arguments.join(QLatin1Char(' ')), 0);
    }
};

class Platform final : public paneforge::Platform, public FileRevealer {
public:
    Desk desk;
    Windows windowList;
    EventTaps taps;
    Hotkeys hotkeyApi;
    NoKeyboardLayout layout;
    NativeWindowsRecord native;
    LoginItems logins;
    Updates updates;
    Permissions privacy;
    LoginItemService* loginService = &logins; // a test may put the real one of a platform here

    void setJournal(const Journal& journal) {
        logins.journal = updates.journal = privacy.journal = journal;
    }

    WindowService& windows() override { return windowList; }
    DisplayService& displays() override { return desk; }
    DisplayFrameService& displayFrames() override { return desk; }
    ScreenListing& screens() override { return desk; }
    EventTapApi& eventTaps() override { return taps; }
    HotkeyApi& hotkeys() override { return hotkeyApi; }
    KeyboardLayoutProvider& keyboardLayout() override { return layout; }
    KeyboardKeyTranslator& keyTranslator() override { return layout; }
    NativeWindows& nativeWindows() override { return native; }
    LoginItemService& loginItems() override { return *loginService; }
    UpdateService& updater() override { return updates; }
    FileRevealer& fileRevealer() override { return *this; }
    void reveal(const QString&) override {}
    PermissionSource& permissions() override { return privacy; }
    void becomeMenuBarAgent() override {}
    void quitOnTerminationSignals(std::function<void()>) override {}
};

class StatusItem final : public StatusItemView {
public:
    bool show() override { return true; }
};

class OwnWindow final : public ShellWindow {
public:
    bool visible = false;
    void show() override { visible = true; }
    bool isVisible() const override { return visible; }
};

class Alerts final : public AlertPresenter {
public:
    Journal journal;
    std::function<void(bool)> answer; // to the last question asked, for the test to give
    void showInformational(const QString& title, const QString& message) override {
        journal(QStringLiteral("alert %1: %2").arg(title, message));
    }
    void confirm(const AlertConfirmation& question, std::function<void(bool)> answered) override {
        journal(QStringLiteral("confirm %1 %2 [%3|%4]")
                    .arg(question.message, question.informativeText, question.confirmButton,
                         question.cancelButton));
        answer = std::move(answered);
    }
};

// Editor windows that only remember what happened to them; the test drives their models.
struct EditorWindowRecord {
    GridEditorModel* model = nullptr;
    bool shown = false;
    bool closed = false;
    bool destroyed = false;
};

class EditorWindows final : public GridEditorWindowFactory {
public:
    std::vector<std::shared_ptr<EditorWindowRecord>> made;

    std::unique_ptr<GridEditorWindow> makeGridEditorWindow(GridEditorModel& model) override {
        made.push_back(std::make_shared<EditorWindowRecord>());
        made.back()->model = &model;
        return std::make_unique<Window>(made.back());
    }
    std::vector<EditorWindowRecord*> open() const {
        std::vector<EditorWindowRecord*> result;
        for (const auto& record : made) {
            if (record->shown && !record->closed) {
                result.push_back(record.get());
            }
        }
        return result;
    }

private:
    class Window final : public GridEditorWindow {
    public:
        explicit Window(std::shared_ptr<EditorWindowRecord> record)
            : record_(std::move(record)) {}
        ~Window() override { record_->destroyed = true; }
        void show() override { record_->shown = true; }
        void close() override { record_->closed = true; }

    private:
        std::shared_ptr<EditorWindowRecord> record_;
    };
};

// The backup windows, answering as scripted: the chosen files and whether Restore is pressed.
class Backups final : public BackupViews {
public:
    Journal journal;
    std::optional<QString> destination;
    std::optional<QString> source;
    bool confirm = false;
    QString suggestedName;

    std::optional<QString> chooseBackupDestination(const QString& suggested) override {
        suggestedName = suggested;
        return noted(journal, QStringLiteral("backup.choose"), destination);
    }
    std::optional<QString> chooseBackupToRestore() override {
        return noted(journal, QStringLiteral("restore.choose"), source);
    }
    bool confirmRestore(const SettingsBackupPreview&) override {
        return noted(journal, QStringLiteral("restore.preview"), confirm);
    }
    void showWarning(const QString& title, const QString& reason) override {
        journal(QStringLiteral("warning %1: %2").arg(title, reason));
    }
};

class QuickStartWindow final : public QuickStartView {
public:
    QuickStartActions actions;
    Journal journal;
    std::optional<QuickStartChrome> page;
    bool visible = false;
    void showPage(const QuickStartChrome& chrome) override { page = chrome; }
    void present() override {
        visible = noted(journal, QStringLiteral("quickStart.present"), true);
    }
    void dismiss() override {
        if (std::exchange(visible, false)) {
            actions.closed();
        }
    }
    bool isVisible() const override { return visible; }
};

class Coach final : public PermissionCoachView {
public:
    std::function<void()> button;
    Journal journal;
    bool visible = false;
    void present(const PermissionCoachContent& shown) override {
        visible = noted(journal, QStringLiteral("coach.present ") + shown.buttonTitle, true);
    }
    void dismiss() override { visible = noted(journal, QStringLiteral("coach.dismiss"), false); }
    bool isVisible() const override { return visible; }
};

class PreferencesWindow final : public PreferencesView {
public:
    explicit PreferencesWindow(PreferencesFormEvents& events)
        : events(events) {}
    PreferencesFormEvents& events;
    Journal journal;
    std::optional<PreferencesForm> form;
    bool visible = false;
    void display(const PreferencesForm& shown) override { form = shown; }
    void present() override { visible = noted(journal, QStringLiteral("preferences.show"), true); }
    void close() override {
        visible = false;
        events.windowDeactivated();
    }
    bool isVisible() const override { return visible; }
};

class Views final : public ViewFactory {
public:
    Overlays overlays;
    EditorWindows editors;
    KeyDownMonitor keyMonitor;
    Alerts alertBoxes;
    LayoutSwitchScreen layoutSwitch;
    Backups backups;
    Journal journal = [](const QString&) {};
    int statusItemsMade = 0;
    // The actions of the last status item made; they outlive it, as a menu's callbacks may.
    std::optional<StatusMenuActions> statusMenu;
    PreferencesWindow* preferences = nullptr; // owned by the caller, made on first show

    SnapOverlayFactory& snapOverlays() override { return overlays; }
    GridEditorWindowFactory& gridEditors() override { return editors; }
    std::unique_ptr<StatusItemView> makeStatusItem(StatusMenuActions actions) override {
        ++statusItemsMade;
        statusMenu = std::move(actions);
        journal(QStringLiteral("statusItem.made"));
        return std::make_unique<StatusItem>();
    }
    std::unique_ptr<ShellWindow> makeAboutWindow() override {
        return std::make_unique<OwnWindow>();
    }
    std::unique_ptr<PreferencesView> makePreferencesView(PreferencesFormEvents& events) override {
        auto window = std::make_unique<PreferencesWindow>(events);
        (preferences = window.get())->journal = journal;
        return window;
    }
    AlertPresenter& alerts() override {
        alertBoxes.journal = journal;
        return alertBoxes;
    }
    BackupViews& backupViews() override {
        backups.journal = journal;
        return backups;
    }
    KeyDownMonitorApi& keyDownMonitor() override { return keyMonitor; }
    std::optional<QString> keyWindowTitle() override { return std::nullopt; }
    LayoutSwitchViews& layoutSwitchViews() override { return layoutSwitch; }
    QuickStartWindow* quickStart = nullptr; // owned by the caller
    Coach* coach = nullptr;                 // owned by the caller
    std::unique_ptr<QuickStartView> makeQuickStartWindow(QuickStartActions actions) override {
        auto window = std::make_unique<QuickStartWindow>();
        quickStart = window.get();
        quickStart->actions = std::move(actions);
        quickStart->journal = journal;
        return window;
    }
    std::unique_ptr<PermissionCoachView>
    makePermissionCoach(std::function<void()> onButton) override {
        auto window = std::make_unique<Coach>();
        coach = window.get();
        coach->button = std::move(onButton);
        coach->journal = journal;
        return window;
    }
};

} // namespace fakes
