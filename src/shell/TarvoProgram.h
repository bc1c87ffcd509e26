#pragma once

#include "settings/SettingsPort.h"

#include <QIcon>
#include <QString>

#include <functional>
#include <memory>

namespace tarvo {

struct AppContext;
class BreakEngine;
class ProcessRunner;
class SingleInstance;
class TrayIcon;
class frmTarvo;
class WarningSounds;

// The seams that only start-up, shut-down and the tray use, and what the program was started with.
struct ShellContext {
    SingleInstance& instance;
    TrayIcon& tray;
    ProcessRunner& processes;
    QString commandLine; // the arguments joined by single blanks
    QString windir;      // the "windir" environment variable (normally unset here)
};

// The program's life: start-up (Form_Load), first-run initialisation and shut-down (Form_Unload).
class TarvoProgram : private SettingsPort {
public:
    // The key code a second start sends to ask the running instance to shut down.
    static constexpr int kShutdownKey = 99;

    TarvoProgram(AppContext& context, ShellContext shell, QIcon icon);
    ~TarvoProgram();
    TarvoProgram(const TarvoProgram&) = delete;
    TarvoProgram& operator=(const TarvoProgram&) = delete;

    // Start-up. Returns true when this is now the running instance, false when the process should end
    // at once (another instance runs and was signalled or reported, or "shutdown" with none running).
    bool Form_Load();
    // Shut-down: input watching off, icon gone, "tray" back to "0", the exercise video closed.
    void Form_Unload();
    // Imports the shipped defaults and renders the built-in media, once per user.
    void FirstTimeInitialise();
    // Makes the named scheme the current one and loads its exercises (start-up, the tray's scheme list).
    void useScheme(const QString& name);
    // Apply in the options dialog: every option of the record written in order, the exercise table
    // saved under the current scheme's name on the way, then the running countdowns moved to the new
    // intervals.
    void commitOptions();

    frmTarvo& form() { return *form_; }
    BreakEngine& engine() { return *engine_; }

    // Where the tray icon's mouse messages and the key codes of later starts go (the tray menu's
    // decoder); set before Form_Load.
    std::function<void(int message)> onTrayMessage;
    std::function<void(int keyCode)> onKeyDown;
    // Closing the exercise video ("close tarvox"), once the exercise player exists.
    std::function<void()> closeVideo;

private:
    // Start-up's steps among the reads of the options, and Apply's scheme save.
    void schemeRead(const QString& scheme) override;
    void warningRead(const QString& warning) override;
    void monitorRead(int channel, std::int32_t on) override;
    void saveScheme() override;

    AppContext& ctx_;
    ShellContext shell_;
    QIcon icon_;
    std::unique_ptr<WarningSounds> warnings_;
    std::unique_ptr<frmTarvo> form_;
    std::unique_ptr<BreakEngine> engine_;
};

} // namespace tarvo
