#pragma once

// The base of the end-to-end tests of the real agent (PANEFORGE_AGENT): its configuration, its
// windows found by title, keys pressed with xdotool, its tray menu, and client windows' frames.

#include "core/config/config_store.h"
#include "manual_scheduler.h"
#include "platform/x11/x11_display_services.h"
#include "platform/x11/x11_window_service.h"
#include "x11_test_session.h"

#include <QFile>
#include <QTemporaryDir>

class X11AgentTest : public QObject {
public:
    explicit X11AgentTest(X11TestSession& session)
        : session_(session) {}

protected:
    paneforge::ConfigStore store() const {
        return paneforge::ConfigStore(paneforge::LoggerFactory::makeLogger("Test"),
                                      [this] { return configHome(); });
    }
    // The defaults while the file is being replaced.
    paneforge::PaneforgeConfig config() const {
        try {
            return store().loadConfig();
        } catch (const std::exception&) {
            return paneforge::PaneforgeConfig::makeDefault();
        }
    }
    QString configHome() const { return home_.filePath(QStringLiteral("config")); }
    // The agent with configuration and log folders of its own; `printed_` gets what it printed.
    bool startAgent(const std::optional<paneforge::PaneforgeConfig>& initial) {
        if (initial) {
            store().saveConfig(*initial);
        }
        QProcessEnvironment env;
        env.insert("XDG_CONFIG_HOME", configHome());
        env.insert("XDG_STATE_HOME", home_.filePath(QStringLiteral("state")));
        agent_ = session_.startProcess(QStringLiteral(PANEFORGE_AGENT), {}, env);
        printed_.clear();
        const auto ready = [&] {
            agent_->waitForReadyRead(50);
            printed_ += QString::fromUtf8(agent_->readAllStandardError());
            return printed_.contains("ready in");
        };
        return X11TestSession::waitUntil(ready, std::chrono::seconds(20)) ||
               (qWarning("%s", qPrintable(printed_)), false);
    }
    QString logText() const {
        QFile file(home_.filePath(QStringLiteral("state/Paneforge/Paneforge.log")));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    // The log's last lines, for a failure's message (Qt Test cuts long messages short).
    QString logTail() const {
        const QStringList lines = logText().split(QLatin1Char('\n'));
        return lines.mid(std::max<qsizetype>(0, lines.size() - 16)).join(QLatin1Char('\n'));
    }
    int logCount(const QString& line) const { return logText().count(line); }
    bool waitForLog(const QString& line, int before) const {
        return X11TestSession::waitUntil([&] { return logCount(line) > before; });
    }
    // SIGTERM; whether the agent ended cleanly, its log flushed.
    bool quit() {
        return agent_ && (agent_->terminate(), agent_->waitForFinished(10000)) &&
               agent_->exitStatus() == QProcess::NormalExit && agent_->exitCode() == 0 &&
               logText().contains(QStringLiteral("Paneforge quitting"));
    }
    bool waitForDisplays(std::size_t count) {
        return X11TestSession::waitUntil(
            [&] { return displays_.getActiveDisplays().size() == count; });
    }
    QString displayIdAt(paneforge::DesktopPoint point) {
        const auto display = displays_.getDisplayId(point);
        return display ? displays_.getIdentifier(*display).stableId() : QString();
    }

    bool xdotool(const QStringList& arguments, QString* output = nullptr) {
        return session_.run(QStringLiteral("xdotool"), arguments, output);
    }
    bool keys(const QString& keys, int times = 1) {
        QStringList arguments{"key", "--delay", "20"};
        for (int i = 0; i < times; ++i) {
            arguments += keys.split(QLatin1Char(' '));
        }
        return xdotool(arguments);
    }

    // Titled `name` (a regular expression), or all: the tray icon, and menus or windows open.
    QStringList agentWindows(const QString& name = {}) {
        return session_.visibleWindows(QStringLiteral("paneforge"), name);
    }
    // One window titled `name`, and it has the keyboard.
    bool waitForKeyboard(const QString& name, QString* id = nullptr) {
        QString scratch;
        QString& found = id ? *id : scratch;
        return X11TestSession::waitUntil([&] {
            const QStringList windows = agentWindows(name);
            found = windows.value(0);
            return windows.size() == 1 && found.toUInt() == session_.activeWindow();
        });
    }
    bool waitUntilClosed(const QString& name) {
        return X11TestSession::waitUntil([&] { return agentWindows(name).isEmpty(); });
    }

    bool findTrayIcon() {
        return X11TestSession::waitUntil([&] {
            const QStringList windows = agentWindows();
            trayIcon_ = windows.value(0);
            return windows.size() == 1;
        });
    }
    // Qt keeps the menu's window and maps it again: the last opening must have closed.
    bool chooseFromTrayMenu(const QString& keys) {
        if (!menu_.isEmpty() &&
            !X11TestSession::waitUntil([&] { return !agentWindows().contains(menu_); })) {
            return false;
        }
        const QStringList before = agentWindows();
        return xdotool({"mousemove", "--window", trayIcon_, "11", "12", "click", "1"}) &&
               X11TestSession::waitUntil([&] {
                   const QStringList now = agentWindows();
                   const auto opened = std::ranges::find_if(
                       now, [&](const QString& window) { return !before.contains(window); });
                   return opened != now.end() && (menu_ = *opened, true);
               }) &&
               this->keys(keys);
    }

    std::optional<paneforge::DesktopRect> frame(std::uint32_t window) {
        return windows_.frame(paneforge::X11WindowService::wrap(window));
    }
    // Its window once its frame can be read, or 0.
    std::uint32_t startClient(const QString& program, const QStringList& arguments) {
        QString error;
        const auto window = session_.startClient(program, arguments, &error);
        return window && X11TestSession::waitUntil([&] { return frame(*window).has_value(); })
                   ? *window
                   : (qWarning("%s", qPrintable(error)), 0u);
    }
    // On another display than at `start`.
    bool xtermLeaves(const paneforge::DesktopRect& start) {
        const auto from = displays_.getDisplayId({start.midX(), start.midY()});
        return X11TestSession::waitUntil([&] {
            const auto now = frame(xterm_);
            const auto to = now ? displays_.getDisplayId({now->midX(), now->midY()}) : from;
            return to && to != from;
        });
    }

    X11TestSession& session_;
    QTemporaryDir home_;
    QProcess* agent_ = nullptr;
    QString printed_;
    paneforge::X11Connection connection_;
    paneforge::X11DisplayServices displays_{connection_};
    paneforge::ManualScheduler scheduler_;
    paneforge::X11WindowService windows_{connection_, scheduler_, [](const QString&) {}};
    std::uint32_t xterm_ = 0;
    QString trayIcon_;
    QString menu_;
};
