#pragma once

// A whole platform and view factory of fakes, for the application controller: the desk, windows
// and event tap of snap_fakes.h, the hot keys of input_fakes.h, plus keyboard layout, native
// windows, the shell's services and windows. The shell's fakes write what they are asked into one
// journal, so that a test reads the order of everything from one list.

#include "app/ports/platform.h"
#include "app/ports/view_factory.h"
#include "input_fakes.h"
#include "layout_switch_fakes.h"
#include "snap_fakes.h"

#include <optional>

namespace fakes {

using namespace paneforge;

class NoKeyboardLayout final : public KeyboardLayoutProvider, public KeyboardKeyTranslator {
public:
    std::shared_ptr<const KeyboardLayout> currentLayout() const override { return nullptr; }
    std::optional<QString> translate(std::uint32_t, const KeyboardLayout&) const override {
        return std::nullopt;
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
        journal(QStringLiteral("updater.check"));
        return available;
    }
    QString unavailableMessage() const override { return QStringLiteral("no updater here"); }
};

class Revealer final : public FileRevealer {
public:
    Journal journal;
    void reveal(const QString& path) override { journal(QStringLiteral("reveal ") + path); }
};

// The privacy side of a platform: without privacy grants (as on X11) unless told otherwise, so
// that no controller test runs the real reset tool. Resets given to it as the command runner are
// journalled and succeed.
class Permissions final : public PermissionSource, public CommandRunner {
public:
    Journal journal;
    bool grants = false;
    std::function<void()> activated;

    bool hasPrivacyGrants() const override { return grants; }
    bool requestListenEventAccess() override {
        journal(QStringLiteral("requestListenEventAccess"));
        return false;
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
        journal(executable + QLatin1Char(' ') + arguments.join(QLatin1Char(' ')));
        return 0;
    }
};

class Platform final : public paneforge::Platform {
public:
    Desk desk;
    Windows windowList;
    EventTaps taps;
    Hotkeys hotkeyApi;
    NoKeyboardLayout layout;
    NativeWindowsRecord native;
    LoginItems logins;
    Updates updates;
    Revealer revealer;
    Permissions privacy;
    LoginItemService* loginService = &logins; // a test may put the real one of a platform here

    void setJournal(const Journal& journal) {
        logins.journal = journal;
        updates.journal = journal;
        revealer.journal = journal;
        privacy.journal = journal;
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
    FileRevealer& fileRevealer() override { return revealer; }
    PermissionSource& permissions() override { return privacy; }
    void becomeMenuBarAgent() override {}
    void quitOnTerminationSignals(std::function<void()>) override {}
};

class StatusItem final : public StatusItemView {
public:
    explicit StatusItem(Journal journal)
        : journal_(std::move(journal)) {
        journal_(QStringLiteral("statusItem.made"));
    }
    ~StatusItem() override { journal_(QStringLiteral("statusItem.removed")); }
    bool show() override { return true; }

private:
    Journal journal_;
};

class OwnWindow final : public ShellWindow {
public:
    OwnWindow(QString name, Journal journal)
        : name_(std::move(name))
        , journal_(std::move(journal)) {}
    bool visible = false;
    void show() override {
        journal_(name_ + QStringLiteral(".show"));
        visible = true;
    }
    bool isVisible() const override { return visible; }

private:
    QString name_;
    Journal journal_;
};

class Alerts final : public AlertPresenter {
public:
    Journal journal;
    // The answer to the last question asked, for the test to give.
    std::function<void(bool)> answer;
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
        auto record = std::make_shared<EditorWindowRecord>();
        record->model = &model;
        made.push_back(record);
        return std::make_unique<Window>(record);
    }
    // The editors on screen.
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
        journal(QStringLiteral("backup.choose"));
        suggestedName = suggested;
        return destination;
    }
    std::optional<QString> chooseBackupToRestore() override {
        journal(QStringLiteral("restore.choose"));
        return source;
    }
    bool confirmRestore(const SettingsBackupPreview&) override {
        journal(QStringLiteral("restore.preview"));
        return confirm;
    }
    void showWarning(const QString& title, const QString& reason) override {
        journal(QStringLiteral("warning %1: %2").arg(title, reason));
    }
};

// The quick start window: its page and visibility; closing it tells the controller, once.
class QuickStartWindow final : public QuickStartView {
public:
    QuickStartWindow(QuickStartActions windowActions, Journal windowJournal)
        : actions(std::move(windowActions))
        , journal(std::move(windowJournal)) {}
    QuickStartActions actions;
    Journal journal;
    std::optional<QuickStartChrome> page;
    bool visible = false;
    void showPage(const QuickStartChrome& chrome) override { page = chrome; }
    void present() override {
        journal(QStringLiteral("quickStart.present"));
        visible = true;
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
    Coach(std::function<void()> onButton, Journal coachJournal)
        : button(std::move(onButton))
        , journal(std::move(coachJournal)) {}
    std::function<void()> button;
    Journal journal;
    bool visible = false;
    void present(const PermissionCoachContent& shown) override {
        journal(QStringLiteral("coach.present ") + shown.buttonTitle);
        visible = true;
    }
    void dismiss() override {
        journal(QStringLiteral("coach.dismiss"));
        visible = false;
    }
    bool isVisible() const override { return visible; }
};

// The preferences window: keeps the last form shown and reports what a test does in it.
class PreferencesWindow final : public PreferencesView {
public:
    PreferencesWindow(PreferencesFormEvents& events, Journal journal)
        : events(events)
        , journal_(std::move(journal)) {}
    PreferencesFormEvents& events;
    std::optional<PreferencesForm> form;
    bool visible = false;

    void display(const PreferencesForm& shown) override { form = shown; }
    void present() override {
        journal_(QStringLiteral("preferences.show"));
        visible = true;
    }
    void close() override {
        visible = false;
        events.windowDeactivated();
    }
    bool isVisible() const override { return visible; }

private:
    Journal journal_;
};

class Views final : public ViewFactory {
public:
    Overlays overlays;
    EditorWindows editors;
    KeyDownMonitor keyMonitor;
    Alerts alertBoxes;
    LayoutSwitchScreen layoutSwitch;
    Backups backups;
    Journal journal;
    int statusItemsMade = 0;
    // The actions of the last status item made; they outlive it, as a menu's callbacks may.
    std::optional<StatusMenuActions> statusMenu;
    PreferencesWindow* preferences = nullptr; // owned by the caller, made on first show

    SnapOverlayFactory& snapOverlays() override { return overlays; }
    GridEditorWindowFactory& gridEditors() override { return editors; }
    std::unique_ptr<StatusItemView> makeStatusItem(StatusMenuActions actions) override {
        ++statusItemsMade;
        statusMenu = std::move(actions);
        return std::make_unique<StatusItem>(journal);
    }
    std::unique_ptr<ShellWindow> makeAboutWindow() override {
        return std::make_unique<OwnWindow>(QStringLiteral("about"), journal);
    }
    std::unique_ptr<PreferencesView> makePreferencesView(PreferencesFormEvents& events) override {
        auto window = std::make_unique<PreferencesWindow>(events, journal);
        preferences = window.get();
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
        auto window = std::make_unique<QuickStartWindow>(std::move(actions), journal);
        quickStart = window.get();
        return window;
    }
    std::unique_ptr<PermissionCoachView>
    makePermissionCoach(std::function<void()> onButton) override {
        auto window = std::make_unique<Coach>(std::move(onButton), journal);
        coach = window.get();
        return window;
    }
};

} // namespace fakes
