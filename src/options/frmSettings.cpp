#include "options/frmSettings.h"

#include "controls/UpDown.h"
#include "core/Timer.h"
#include "engine/AppContext.h"
#include "engine/BreakEngine.h"
#include "engine/MicropauseBreak.h"
#include "engine/SchemeStore.h"
#include "options/DigitField.h"
#include "options/SchemePage.h"
#include "options/frmPresence.h"
#include "settings/Options.h"
#include "ui_frmSettings.h"

#include <QApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>

namespace tarvo {

namespace {

struct TabRow {
    const char* caption;
    const char* key;
    const char* toolTip;
};

// The tab strip's tabs. Nothing looks a tab up by its key, which keeps its historic spelling.
constexpr TabRow kTabs[] = {
    {"Micropauses", "Micropause", "Micropause Options"},
    {"Exercise Breaks", "Execercise", "Exercise Break Options"},
    {"Exercise Schemes", "Scheme", nullptr},
};

constexpr const char* kVideoSizes[] = {"240x180", "320x240", "480x360", "640x480", "960x720"};

constexpr int kHideAfterOkMs = 500;

} // namespace

class frmSettings::HideAfterOk : public Timer::Listener {
public:
    explicit HideAfterOk(frmSettings& form)
        : form_(form) {}
    void timerTick(Timer& timer) override {
        timer.setEnabled(false);
        form_.hide();
    }

private:
    frmSettings& form_;
};

frmSettings::frmSettings(AppContext& ctx, BreakEngine& engine, Neighbours& neighbours, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmSettings>())
    , ctx_(ctx)
    , engine_(engine)
    , neighbours_(neighbours)
    , hideListener_(std::make_unique<HideAfterOk>(*this))
    , hideAfterOk_(ctx.timers.createTimer(*hideListener_)) {
    ui->setupUi(this);
    for (const TabRow& tab : kTabs) {
        const int index = ui->ts->addTab(QString::fromLatin1(tab.caption));
        ui->ts->setTabData(index, QString::fromLatin1(tab.key));
        if (tab.toolTip)
            ui->ts->setTabToolTip(index, QString::fromLatin1(tab.toolTip));
    }
    for (const char* size : kVideoSizes)
        ui->comboView->addItem(QString::fromLatin1(size));

    schemePage_ = new SchemePage(ctx_, ui->picTs_3);
    ui->picTs_3->layout()->addWidget(schemePage_);
    schemePage_->attachSchemeList2(ui->cmbSchemes2);
    schemePage_->setDialogDefaultButton(ui->cmdOK);

    const std::pair<QLineEdit*, UpDown*> spun[] = {{ui->txtIntFor, ui->UpDown1},
                                                   {ui->txtIntEvery, ui->UpDown2},
                                                   {ui->txtEveryM, ui->UpDown5},
                                                   {ui->txtNumAtaTime, ui->UpDown3}};
    const Option* ranges[] = {&option("InterruptFor"), &option("InterruptEvery"), &option("EveryM"),
                              &option("NumAtaTime")};
    for (std::size_t i = 0; i < std::size(spun); ++i) {
        spun[i].second->setBuddy(spun[i].first);
        spun[i].second->setRange(ranges[i]->spinner->min, ranges[i]->spinner->max);
        spun[i].second->setFixedHeight(spun[i].first->sizeHint().height()); // one line, like its field
        new DigitField(*spun[i].first, spun[i].second);                     // owned by its field
    }

    connect(ui->ts, &QTabBar::currentChanged, this, &frmSettings::ts_Click);
    connect(ui->cmdApply, &QPushButton::clicked, this, &frmSettings::cmdApply_Click);
    connect(ui->cmdOK, &QPushButton::clicked, this, &frmSettings::cmdOK_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmSettings::cmdCancel_Click);
    const std::pair<QPushButton*, int> sounds[] = {
        {ui->cmdWarning_0, 0}, {ui->cmdWarning_1, 1}, {ui->cmdWarning_2, 2}};
    for (const auto& [button, index] : sounds)
        connect(button, &QPushButton::clicked, this,
                [this, index = index] { neighbours_.chooseSound(index, this); });
    // The presence options have a small dialog of their own, opened from the first page: a fourth tab
    // would change the dialog's three pages (and Ctrl+Tab's round). "P" is no other access key there.
    connect(ui->cmdPresence, &QPushButton::clicked, this, [this] {
        auto* presence = new frmPresence(ctx_, engine_.presence(), this);
        presence->setAttribute(Qt::WA_DeleteOnClose);
        presence->open();
    });
    ts_Click(0);
}

frmSettings::~frmSettings() = default;

void frmSettings::LoadMeUp() {
    cutMicropauseShort();
    if (QScreen* screen = QGuiApplication::primaryScreen()) {
        adjustSize();
        const QRect area = screen->geometry();
        move(area.x() + (area.width() - width()) / 2, area.y() + (area.height() - height()) / 2);
    }
    showFields(fieldsFromRecord(ctx_.record));
    // A lock set from outside the program keeps Esc disabled whatever the box says.
    ui->chkDisableEsc->setEnabled(ctx_.settings.readNumber(option("DisableEsc2")) != 1);
    schemePage_->LoadSchemes();
    if (schemePage_->listIsEmpty()) {
        schemePage_->LoadL();
        schemePage_->DetailIt();
    }
    show();
    schemePage_->layOut();
    ts_Click(ui->ts->currentIndex());
    raise();
    activateWindow();
}

void frmSettings::chooseScheme(const QString& name) {
    schemePage_->chooseScheme(name);
}

void frmSettings::cutMicropauseShort() {
    if (!ctx_.schedule.InMicropause)
        return;
    engine_.micropause().cutShort();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    while (ctx_.schedule.InMicropause)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QApplication::restoreOverrideCursor();
}

void frmSettings::showFields(const OptionFields& f) {
    ui->txtIntFor->setText(f.txtIntFor);
    ui->txtIntEvery->setText(f.txtIntEvery);
    ui->chkReset->setChecked(f.chkReset);
    ui->chkMonitor_0->setChecked(f.chkMonitor[0]);
    ui->chkMonitor_1->setChecked(f.chkMonitor[1]);
    ui->chkAudible->setChecked(f.chkAudible);
    ui->chkAudiblePre->setChecked(f.chkAudiblePre);
    ui->chkBlank->setChecked(f.chkBlank);
    ui->txtWarning->setText(f.txtWarning);
    ui->chkDisableEsc->setChecked(f.chkDisableEsc);
    ui->txtEveryM->setText(f.txtEveryM);
    ui->chkAudibleX->setChecked(f.chkAudibleX);
    ui->chkBlankX->setChecked(f.chkBlankX);
    ui->comboView->setCurrentIndex(f.comboView);
    ui->txtNumAtaTime->setText(f.txtNumAtaTime);
    (f.optXstartRandom ? ui->optXstart_1 : ui->optXstart_0)->setChecked(true);
}

OptionFields frmSettings::readFields() const {
    OptionFields f;
    f.txtIntFor = ui->txtIntFor->text();
    f.txtIntEvery = ui->txtIntEvery->text();
    f.chkReset = ui->chkReset->isChecked();
    f.chkMonitor = {ui->chkMonitor_0->isChecked(), ui->chkMonitor_1->isChecked()};
    f.chkAudible = ui->chkAudible->isChecked();
    f.chkAudiblePre = ui->chkAudiblePre->isChecked();
    f.chkBlank = ui->chkBlank->isChecked();
    f.txtWarning = ui->txtWarning->text();
    f.chkDisableEsc = ui->chkDisableEsc->isChecked();
    f.txtEveryM = ui->txtEveryM->text();
    f.chkAudibleX = ui->chkAudibleX->isChecked();
    f.chkBlankX = ui->chkBlankX->isChecked();
    // A stored size that the list has no entry for shows as no choice, and stays until the user picks one.
    const int size = ui->comboView->currentIndex();
    f.comboView = size >= 0 ? size : ctx_.record.ViewAm;
    f.txtNumAtaTime = ui->txtNumAtaTime->text();
    f.optXstartRandom = ui->optXstart_1->isChecked();
    return f;
}

void frmSettings::ts_Click(int index) {
    QWidget* pages[] = {ui->picTs_1, ui->picTs_2, ui->picTs_3};
    if (index >= 0 && index < static_cast<int>(std::size(pages)))
        ui->stackTs->setCurrentWidget(pages[index]);
}

void frmSettings::keyPressEvent(QKeyEvent* event) {
    // Ctrl+Tab steps through the three tabs, from the last back to the first.
    if (event->key() == Qt::Key_Tab && event->modifiers() == Qt::ControlModifier) {
        ui->ts->setCurrentIndex((ui->ts->currentIndex() + 1) % static_cast<int>(std::size(kTabs)));
        return;
    }
    QDialog::keyPressEvent(event);
}

void frmSettings::cmdApply_Click() {
    OptionFields fields = readFields();
    try {
        applyOptions(fields, ctx_, engine_.scheduler(), *this);
    } catch (...) {
        showFields(fields); // the repaired fields, as far as Apply got
        throw;
    }
    showFields(fields);
}

void frmSettings::cmdOK_Click() {
    cmdApply_Click();
    hideAfterOk_->setInterval(kHideAfterOkMs);
    hideAfterOk_->setEnabled(true);
}

void frmSettings::cmdCancel_Click() {
    hide();
}

void frmSettings::reject() {
    cmdCancel_Click();
}

void frmSettings::warningChanged(const QString& warning) {
    neighbours_.warningChanged(warning);
}

void frmSettings::saveScheme() {
    schemePage_->LtoExercises();
    const ExerciseTable& table = ctx_.exercises;
    SaveScheme(ctx_.settings, table.CurrentScheme, table.Exercises, table.ExerciseCount);
}

} // namespace tarvo
