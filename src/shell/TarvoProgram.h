#pragma once

#include "options/frmSettings.h"
#include "settings/SettingsPort.h"
#include "shell/TrayActions.h"

#include <QIcon>
#include <QString>

#include <functional>
#include <memory>

namespace tarvo {

struct AppContext;
class BreakEngine;
class ExerciseScreens;
class MainForm;
class ProcessRunner;
class SingleInstance;
class TrayHook;
class TrayIcon;
class TrayMenu;
class WarningSounds;
class frmAboutKelmar;
class frmSettings;
class HistoryLog;

// The seams that only start-up, shut-down and the tray use, and what the program was started with.
struct ShellContext {
    SingleInstance& instance;
    TrayIcon& tray;
    ProcessRunner& processes;
    QString windir; // the "windir" environment variable (normally unset here)
    // Gives the heap's free memory back to the system after each break, once its screen is gone.
    std::function<void()> releaseFreedMemory = [] {};
    // The break history's file; none (empty) records nothing.
    QString historyPath = {};
};

// The program's life: start-up (Form_Load), first-run initialisation and shut-down (Form_Unload), and
// the one place where the subsystems are put together: the engine with its main form, the tray icon
// with its menu, and what the menu's items do.
class TarvoProgram : private SettingsPort, private TrayActions, private frmSettings::Neighbours {
public:
    TarvoProgram(AppContext& context, ShellContext shell, QIcon icon);
    ~TarvoProgram() override;
    TarvoProgram(const TarvoProgram&) = delete;
    TarvoProgram& operator=(const TarvoProgram&) = delete;

    // Start-up, once this start has become the running instance: the single-instance question and the
    // word "shutdown" are settled before, without a display (SecondStart.h), and the instance seam
    // holds the lock.
    void Form_Load();
    // Shut-down, once however often it is asked for: input watching off, icon gone, "tray" back to "0",
    // the exercise video closed, the instance lock given up.
    void Form_Unload();
    // Imports the shipped defaults and renders the built-in media, once per user.
    void FirstTimeInitialise();

    MainForm& mainForm() { return *mainForm_; }
    BreakEngine& engine() { return *engine_; }
    ExerciseScreens& exerciseScreens() { return *exerciseScreens_; }
    TrayMenu& menu() { return *menu_; }

private:
    // Start-up once this is the running instance: the forms, the tray, the options, the timers.
    void startRunning();

    // Start-up's steps among the reads of the options.
    void schemeRead(const QString& scheme) override;
    void warningRead(const QString& warning) override;
    void monitorRead(int channel, std::int32_t on) override;

    // The tray menu's items.
    void LoadMeUp() override;
    void showStatus() override;
    void showAbout() override;
    void micropauseNow() override;
    void exerciseNow() override;
    void useScheme(const QString& name) override;
    void shutdown() override;

    // What the options dialog asks of the forms beside it.
    void warningChanged(const QString& warning) override;
    void chooseSound(int index, QWidget* parent) override;
    void showHistoryOptions(QWidget* parent) override;

    AppContext& ctx_;
    ShellContext shell_;
    QIcon icon_;
    std::unique_ptr<WarningSounds> warnings_;
    std::unique_ptr<MainForm> mainForm_;
    std::unique_ptr<ExerciseScreens> exerciseScreens_;
    std::unique_ptr<BreakEngine> engine_;
    std::unique_ptr<TrayMenu> menu_;
    std::unique_ptr<TrayHook> hook_;
    std::unique_ptr<frmAboutKelmar> about_;
    std::unique_ptr<frmSettings> settingsForm_; // made at its first opening
    std::unique_ptr<HistoryLog> history_;
    bool running_ = false;
};

} // namespace tarvo
