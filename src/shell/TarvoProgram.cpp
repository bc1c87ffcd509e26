#include "shell/TarvoProgram.h"

#include "about/frmAboutKelmar.h"
#include "core/ActivityMonitor.h"
#include "core/Clock.h"
#include "core/ProcessRunner.h"
#include "core/ProgramInfo.h"
#include "core/SingleInstance.h"
#include "engine/AppContext.h"
#include "engine/BreakEngine.h"
#include "engine/SchemeStore.h"
#include "exercise/ExerciseScreens.h"
#include "history/HistoryLog.h"
#include "history/HistoryPanel.h"
#include "history/frmHistoryOptions.h"
#include "micropause/MainForm.h"
#include "micropause/WarningSounds.h"
#include "micropause/frmSound.h"
#include "options/frmSettings.h"
#include "settings/LoadAndCommit.h"
#include "settings/Options.h"
#include "shell/TrayHook.h"
#include "shell/TrayMenu.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace tarvo {

TarvoProgram::TarvoProgram(AppContext& context, ShellContext shell, QIcon icon)
    : ctx_(context)
    , shell_(std::move(shell))
    , icon_(std::move(icon)) {}

TarvoProgram::~TarvoProgram() = default;

void TarvoProgram::Form_Load() {
    try {
        startRunning();
    } catch (...) {
        // The error ends the program, but its message box runs an event loop first: a second start
        // meanwhile must find nobody listening rather than a listener that is being torn down.
        shell_.instance.release();
        throw;
    }
}

void TarvoProgram::startRunning() {
    warnings_ = std::make_unique<WarningSounds>(ctx_.record, ctx_.sound, ctx_.programFolder);
    mainForm_ = std::make_unique<MainForm>();
    exerciseScreens_ = std::make_unique<ExerciseScreens>(ctx_);
    engine_ = std::make_unique<BreakEngine>(ctx_, *mainForm_, *exerciseScreens_, *warnings_);
    mainForm_->attach(*engine_);
    mainForm_->setAfterUnload(shell_.releaseFreedMemory);
    exerciseScreens_->attach(engine_->exercise());
    exerciseScreens_->setAfterBreak(shell_.releaseFreedMemory);
    if (!shell_.historyPath.isEmpty()) {
        history_ = std::make_unique<HistoryLog>(shell_.historyPath, ctx_.programFolder, ctx_.settings,
                                                ctx_.clock, ctx_.timers, shell_.releaseFreedMemory);
        engine_->history().connect(history_.get());
        mainForm_->setStatusPanelMaker(
            [this] { return std::make_unique<HistoryPanel>(*history_, ctx_.clock); });
    }
    TrayActions& actions = *this;
    menu_ = std::make_unique<TrayMenu>(ctx_.settings, actions);
    hook_ = std::make_unique<TrayHook>(shell_.tray, *menu_, actions, TrayHook::screenTwipsPerPixelX());
    running_ = true;

    ctx_.settings.writeNumber(option("tray"), shell_.instance.handle());
    shell_.instance.listen(*hook_);

    FirstTimeInitialise();

    ctx_.schedule.ExercisePromptPending = false;
    loadAllSettings(ctx_.settings, ctx_.record, this);
    engine_->exercise().ExercisesPerBreak = ctx_.record.NumAtaTime;

    engine_->programStarts();
    engine_->scheduler().SetTimers();
    const std::int32_t now = ctx_.clock.tickCount();
    ctx_.schedule.LastActivityTimes = {now, now};

    hook_->addIcon(icon_, QLatin1String(kProgramTitle));

    ctx_.settings.write(option("AppPath"), ctx_.programFolder);
}

void TarvoProgram::FirstTimeInitialise() {
    if (ctx_.settings.readText(option("Initialised")) == QLatin1String("1"))
        return;

    // A registry editor of the system's own takes precedence over the program's copy, which then goes.
    const QString systemEditor = shell_.windir + QStringLiteral("/regedit");
    const QString ownEditor = ctx_.programFolder + QStringLiteral("/regedit");
    QString editor = ownEditor;
    if (QFileInfo(systemEditor).isFile()) {
        editor = systemEditor;
        if (QFileInfo(ownEditor).isFile())
            QFile::remove(ownEditor);
    }
    shell_.processes.runAndWait(editor + QStringLiteral(" /s \"") + ctx_.programFolder +
                                QStringLiteral("/tarvo32.reg\""));
    shell_.processes.runAndWait(ctx_.programFolder + QStringLiteral("/tarvomultimedia"));
    // Set even when a program was missing: the import is not retried on every start.
    ctx_.settings.write(option("Initialised"), QStringLiteral("1"));
}

void TarvoProgram::Form_Unload() {
    if (!std::exchange(running_, false))
        return;
    engine_->programEnds();
    ctx_.monitor.InstallFilter(0, false);
    ctx_.monitor.InstallFilter(1, false);
    hook_->removeIcon();
    ctx_.settings.writeNumber(option("tray"), 0);
    exerciseScreens_->CloseVideo();
    if (settingsForm_)
        settingsForm_->hide();
    shell_.instance.release();
}

void TarvoProgram::schemeRead(const QString& scheme) {
    useScheme(scheme);
}

void TarvoProgram::warningRead(const QString& warning) {
    mainForm_->setWarning(warning);
}

void TarvoProgram::monitorRead(int channel, std::int32_t on) {
    if (on != 0)
        ctx_.monitor.InstallFilter(channel, true);
}

void TarvoProgram::LoadMeUp() {
    if (!settingsForm_) {
        frmSettings::Neighbours& neighbours = *this;
        settingsForm_ = std::make_unique<frmSettings>(ctx_, *engine_, neighbours);
    }
    settingsForm_->LoadMeUp();
}

void TarvoProgram::warningChanged(const QString& warning) {
    mainForm_->setWarning(warning);
}

void TarvoProgram::chooseSound(int index, QWidget* parent) {
    frmSound sound(ctx_.record, index, ctx_.files, parent);
    sound.exec();
}

void TarvoProgram::showHistoryOptions(QWidget* parent) {
    if (!history_)
        return;
    frmHistoryOptions options(*history_, ctx_.messages, parent);
    options.exec();
}

void TarvoProgram::showStatus() {
    mainForm_->showStatus();
}

void TarvoProgram::showAbout() {
    if (!about_)
        about_ = std::make_unique<frmAboutKelmar>();
    about_->show();
    about_->raise();
}

void TarvoProgram::micropauseNow() {
    engine_->micropause().TarvoMicropause(origin::Menu);
}

void TarvoProgram::exerciseNow() {
    engine_->exercise().exerciseNowFromTray();
}

void TarvoProgram::useScheme(const QString& name) {
    // Once the options dialog has shown its scheme editor, the editor's list is the working copy of the
    // loaded scheme: the choice goes through it, so that list and table stay one scheme.
    if (settingsForm_) {
        settingsForm_->chooseScheme(name);
        return;
    }
    ctx_.exercises.CurrentScheme = name;
    LoadScheme(ctx_.settings, ctx_.exercises, name);
}

void TarvoProgram::shutdown() {
    Form_Unload();
    QCoreApplication::quit();
}

} // namespace tarvo
