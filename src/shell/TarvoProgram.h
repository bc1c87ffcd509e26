#pragma once

#include "settings/SettingsPort.h"

#include <QIcon>

#include <functional>
#include <memory>

namespace tarvo {

struct AppContext;
class frmTarvo;
class WarningSounds;

// The program's life: start-up (Form_Load), first-run initialisation and shut-down (Form_Unload).
class TarvoProgram : private SettingsPort {
public:
    // The key code a second start sends to ask the running instance to shut down.
    static constexpr int kShutdownKey = 99;

    TarvoProgram(AppContext& context, QIcon icon);
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
    QIcon icon_;
    std::unique_ptr<WarningSounds> warnings_;
    std::unique_ptr<frmTarvo> form_;
};

} // namespace tarvo
