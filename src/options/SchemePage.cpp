#include "options/SchemePage.h"

#include "controls/MediaSurface.h"
#include "core/FileDialog.h"
#include "core/MediaCommands.h"
#include "core/MessageBox.h"
#include "core/ProgramInfo.h"
#include "engine/AppContext.h"
#include "engine/SchemeStore.h"
#include "options/DigitField.h"
#include "options/ExerciseListLook.h"
#include "options/SchemeEditing.h"
#include "options/frmAdd.h"
#include "options/frmSaveAs.h"
#include "ui_SchemePage.h"

#include <QEvent>

#include <algorithm>

namespace tarvo {

namespace {

constexpr int kIconRole = Qt::UserRole; // the item's small icon: 1 not done, 2 done
const QString kSettingsSuffix = QStringLiteral(" settings");
const QString kExercisesSection = QStringLiteral("Exercises");

// A group box title shows "&" as an access key; the exercise's title is plain text.
QString asCaption(const QString& text) {
    return QString(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}
QString ofCaption(const QString& caption) {
    return QString(caption).replace(QLatin1String("&&"), QLatin1String("&"));
}

} // namespace

SchemePage::SchemePage(AppContext& ctx, QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::SchemePage>())
    , ctx_(ctx)
    , media_(ctx.media, ctx.programFolder)
    , icons_{doneIcon(false), doneIcon(true)} {
    ui->setupUi(this);
    cmdReorder = {ui->cmdReorder_0, nullptr, ui->cmdReorder_2};

    titleDelegate_ = new TitleEditDelegate([this](bool started) { titleEditing(started); }, this);
    ui->l->setItemDelegate(titleDelegate_);
    ui->l->header()->setStretchLastSection(false);
    ui->l->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    ui->l->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    ui->l->setIconSize(QSize(16, 16));
    ui->UpDown4->setBuddy(ui->txtXsecs);
    ui->UpDown4->setRange(DigitField::kMin, DigitField::kMax);
    ui->UpDown4->setFixedHeight(ui->txtXsecs->sizeHint().height());
    new DigitField(*ui->txtXsecs, ui->UpDown4);

    connect(ui->cmbSchemes, &QComboBox::currentIndexChanged, this, &SchemePage::cmbSchemes_Click);
    connect(ui->cmdAdd, &QPushButton::clicked, this, &SchemePage::cmdAdd_Click);
    connect(ui->cmdRemove, &QPushButton::clicked, this, &SchemePage::cmdRemove_Click);
    for (const int index : {0, 2})
        connect(cmdReorder[static_cast<size_t>(index)], &QAbstractButton::clicked, this,
                [this, index] { cmdReorder_Click(index); });
    connect(ui->cmdSaveAs, &QPushButton::clicked, this, &SchemePage::cmdSaveAs_Click);
    connect(ui->cmdDelete, &QPushButton::clicked, this, &SchemePage::cmdDelete_Click);
    connect(ui->cmdPreview, &QPushButton::clicked, this, &SchemePage::cmdPreview_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &SchemePage::cmdDone_Click);
    connect(ui->cmdClose, &QPushButton::clicked, this, &SchemePage::cmdClose_Click);
    connect(ui->chkDoit, &QCheckBox::toggled, this, &SchemePage::chkDoit_Click);
    connect(ui->txtXsecs, &QLineEdit::textChanged, this, &SchemePage::txtXsecs_Change);
    connect(ui->l, &QTreeWidget::itemClicked, this, &SchemePage::l_ItemClick);
    // The keyboard moves the selection too; what the frame shows follows it.
    connect(ui->l, &QTreeWidget::currentItemChanged, this, &SchemePage::l_ItemClick);
    connect(ui->l, &QTreeWidget::itemDoubleClicked, this, &SchemePage::l_DblClick);

    ui->l->installEventFilter(this);
    ui->cmdPreview->installEventFilter(this);
}

SchemePage::~SchemePage() {
    // The children go after this part of the page: nothing they do on the way (an open title editor
    // closing, the current item changing) may reach it.
    titleDelegate_->forget();
    for (QObject* child : findChildren<QObject*>()) {
        child->disconnect(this);
        child->removeEventFilter(this);
    }
    if (cmbSchemes2_)
        cmbSchemes2_->disconnect(this);
}

void SchemePage::attachSchemeList2(QComboBox* cmbSchemes2) {
    cmbSchemes2_ = cmbSchemes2;
    connect(cmbSchemes2, &QComboBox::currentIndexChanged, this, &SchemePage::cmbSchemes2_Click);
}

void SchemePage::setDialogDefaultButton(QPushButton* cmdOK) {
    cmdOK_ = cmdOK;
}

// --- the lists ---

void SchemePage::LoadSchemes() {
    const QStringList names = readSchemeList(ctx_.settings);
    fillingSchemes_ = true;
    LoadSchemesInto(*ui->cmbSchemes, names, ctx_.exercises.CurrentScheme);
    if (cmbSchemes2_)
        LoadSchemesInto(*cmbSchemes2_, names, ctx_.exercises.CurrentScheme);
    fillingSchemes_ = false;
}

void SchemePage::LoadSchemesInto(QComboBox& list, const QStringList& names, const QString& current) {
    list.clear();
    list.addItems(names);
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (names[i].compare(current, Qt::CaseInsensitive) == 0) {
            list.setCurrentIndex(static_cast<int>(i));
            return;
        }
    }
    list.setCurrentIndex(-1);
}

void SchemePage::showSchemeAt(int index) {
    fillingSchemes_ = true;
    ui->cmbSchemes->setCurrentIndex(index);
    if (cmbSchemes2_)
        cmbSchemes2_->setCurrentIndex(index);
    fillingSchemes_ = false;
}

void SchemePage::LoadL() {
    const ExerciseTable& table = ctx_.exercises;
    rebuildingList_ = true;
    ui->l->clear();
    for (std::int32_t k = 1; k <= table.ExerciseCount; ++k) {
        const ExerciseRecord& e = table.Exercises[static_cast<size_t>(k)];
        ui->l->addTopLevelItem(
            newItem(e.Caption, e.Include != 0 ? 2 : 1, lengthText(QString::number(e.Seconds))));
    }
    ui->l->setCurrentItem(listItem(1));
    rebuildingList_ = false;
}

void SchemePage::DetailIt() {
    QTreeWidgetItem* item = ui->l->currentItem();
    if (!item)
        return;
    ui->chkDoit->setChecked(smallIcon(*item) == 2);
    ui->framex->setTitle(asCaption(item->text(0) + kSettingsSuffix));
    ui->txtXsecs->setText(item->text(1).section(QLatin1Char(' '), 0, 0));
}

void SchemePage::LtoExercises() {
    ExerciseTable& table = ctx_.exercises;
    const int n = ui->l->topLevelItemCount();
    if (static_cast<size_t>(n) >= table.Exercises.size())
        table.Exercises.resize(static_cast<size_t>(n) + 1);
    for (int k = 1; k <= n; ++k) {
        const QTreeWidgetItem& item = *listItem(k);
        ExerciseRecord& e = table.Exercises[static_cast<size_t>(k)];
        e.Include = smallIcon(item) - 1;
        e.Seconds = secondsOfLengthText(item.text(1));
        e.Caption = item.text(0);
    }
}

bool SchemePage::listIsEmpty() const {
    return ui->l->topLevelItemCount() == 0;
}

QTreeWidgetItem* SchemePage::listItem(int k) const {
    return ui->l->topLevelItem(k - 1);
}

int SchemePage::selectedPosition() const {
    QTreeWidgetItem* item = ui->l->currentItem();
    return item ? ui->l->indexOfTopLevelItem(item) + 1 : 0;
}

QTreeWidgetItem* SchemePage::newItem(const QString& title, int icon, const QString& length) const {
    auto* item = new QTreeWidgetItem({title, length});
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    setSmallIcon(*item, icon);
    return item;
}

int SchemePage::smallIcon(const QTreeWidgetItem& item) {
    return item.data(0, kIconRole).toInt();
}

void SchemePage::setSmallIcon(QTreeWidgetItem& item, int icon) const {
    item.setData(0, kIconRole, icon);
    item.setIcon(0, icons_[icon == 2 ? 1 : 0]);
}

void SchemePage::selectItem(QTreeWidgetItem* item) {
    if (!item)
        return;
    ui->l->setCurrentItem(item);
    ui->l->scrollToItem(item);
}

// --- live edits of the selected exercise ---

void SchemePage::chkDoit_Click() {
    if (QTreeWidgetItem* item = ui->l->currentItem())
        setSmallIcon(*item, ui->chkDoit->isChecked() ? 2 : 1);
}

void SchemePage::txtXsecs_Change() {
    if (QTreeWidgetItem* item = ui->l->currentItem())
        item->setText(1, lengthText(ui->txtXsecs->text()));
}

void SchemePage::l_ItemClick() {
    if (!rebuildingList_)
        DetailIt();
}

void SchemePage::l_DblClick(QTreeWidgetItem* item) {
    const int icon = smallIcon(*item) == 1 ? 2 : 1;
    setSmallIcon(*item, icon);
    ui->chkDoit->setChecked(icon == 2);
}

void SchemePage::titleEditing(bool started) {
    if (cmdOK_)
        cmdOK_->setDefault(!started);
    // The frame names the exercise by the title it now has.
    if (!started)
        DetailIt();
}

// --- schemes ---

void SchemePage::chooseScheme(const QString& name) {
    LoadSchemes();
    showSchemeAt(ui->cmbSchemes->findText(name, Qt::MatchFixedString));
    switchScheme(name);
}

void SchemePage::switchScheme(const QString& name) {
    ExerciseTable& table = ctx_.exercises;
    LtoExercises();
    SaveScheme(ctx_.settings, table.CurrentScheme, table.Exercises, table.ExerciseCount);
    table.CurrentScheme = name;
    LoadScheme(ctx_.settings, table, table.CurrentScheme);
    LoadL();
    DetailIt();
}

void SchemePage::cmbSchemes_Click() {
    if (fillingSchemes_)
        return;
    switchScheme(ui->cmbSchemes->currentText());
    if (cmbSchemes2_ && cmbSchemes2_->currentIndex() != ui->cmbSchemes->currentIndex())
        cmbSchemes2_->setCurrentIndex(ui->cmbSchemes->currentIndex());
}

void SchemePage::cmbSchemes2_Click() {
    if (!fillingSchemes_ && cmbSchemes2_->currentIndex() != ui->cmbSchemes->currentIndex())
        ui->cmbSchemes->setCurrentIndex(cmbSchemes2_->currentIndex());
}

void SchemePage::cmdSaveAs_Click() {
    // What is saved is the table as it stands: the list's unapplied flags and lengths are not in it.
    {
        frmSaveAs form(ctx_, this);
        form.exec();
    }
    LoadSchemes();
}

void SchemePage::cmdDelete_Click() {
    const QString name = ui->cmbSchemes->currentText();
    const QString title = QLatin1String(kProgramTitle);
    if (isBuiltInScheme(name)) {
        ctx_.messages.show(QStringLiteral("You cannot delete the built-in schemes.  The built-in schemes are "
                                          "indicated with a leading asterisk."),
                           title);
        return;
    }
    if (ctx_.messages.show(QStringLiteral("Are you sure you want to delete this scheme?"), title,
                           MessageBox::Buttons::YesNo) != MessageBox::Answer::Yes)
        return;
    removeSchemeName(ctx_.settings, name);
    LoadSchemes();
    ExerciseTable& table = ctx_.exercises;
    table.CurrentScheme = ui->cmbSchemes->itemText(0);
    LoadScheme(ctx_.settings, table, table.CurrentScheme);
    // Under "Exercises", which nothing reads back: the scheme used at start-up changes with Apply.
    ctx_.settings.write(kExercisesSection, QStringLiteral("Scheme"), table.CurrentScheme);
    // The lists show the scheme that is now loaded.
    showSchemeAt(ui->cmbSchemes->count() > 0 ? 0 : -1);
    LoadL();
    DetailIt();
}

// --- exercises ---

void SchemePage::cmdAdd_Click() {
    LtoExercises();
    const std::optional<QString> chosen = ctx_.files.getOpenFileName(
        {.title = QStringLiteral("Add an Exercise"),
         .defaultExtension = QStringLiteral(".avi"),
         .filter = QStringLiteral("Video (*.avi)|*.avi;|Pictures (*.bmp)|*.bmp|All files|*.*"),
         .fileMustExist = true},
        this);
    if (!chosen)
        return;
    const std::int32_t before = ctx_.exercises.ExerciseCount;
    {
        frmAdd form(ctx_, *chosen, this);
        form.exec();
    }
    LoadL();
    if (ctx_.exercises.ExerciseCount > before)
        ui->l->scrollToItem(listItem(ctx_.exercises.ExerciseCount));
    DetailIt();
}

void SchemePage::cmdRemove_Click() {
    const QString title = QLatin1String(kProgramTitle);
    const int n = ui->l->topLevelItemCount();
    if (n == 1) {
        ctx_.messages.show(
            QStringLiteral("Cannot delete exercise.  A scheme must contain at least one exercise."), title);
        return;
    }
    const int k = selectedPosition();
    if (k == 0)
        return;
    if (ctx_.messages.show(QStringLiteral("Are you sure you want to remove this exercise from the list?"),
                           title, MessageBox::Buttons::YesNo) != MessageBox::Answer::Yes)
        return;
    // Not saved here: Apply or the next change of scheme does.
    removeExercise(ctx_.exercises, k);
    rebuildingList_ = true;
    delete ui->l->takeTopLevelItem(k - 1);
    selectItem(listItem(positionAfterRemoval(k, n - 1)));
    rebuildingList_ = false;
    DetailIt();
}

void SchemePage::cmdReorder_Click(int Index) {
    const int p = selectedPosition();
    const std::optional<std::int32_t> target = reorderTarget(Index, p, ui->l->topLevelItemCount());
    if (!target)
        return;
    // The moved item is made anew from what the frame shows of it.
    QString title = ofCaption(ui->framex->title());
    if (title.endsWith(kSettingsSuffix))
        title.chop(kSettingsSuffix.size());
    QTreeWidgetItem* moved =
        newItem(title, ui->chkDoit->isChecked() ? 2 : 1, lengthText(ui->txtXsecs->text()));
    rebuildingList_ = true;
    delete ui->l->takeTopLevelItem(p - 1);
    ui->l->insertTopLevelItem(*target - 1, moved);
    std::swap(ctx_.exercises.Exercises[static_cast<size_t>(p)],
              ctx_.exercises.Exercises[static_cast<size_t>(*target)]);
    selectItem(moved);
    rebuildingList_ = false;
}

// --- preview ---

void SchemePage::cmdPreview_Click() {
    const int k = selectedPosition();
    if (k == 0 || static_cast<size_t>(k) >= ctx_.exercises.Exercises.size())
        return;
    MediaSurface& surface = *ui->amxPreview;
    QPalette ground = ui->picMovie->palette();
    ground.setColor(QPalette::Window, Qt::black);
    ui->picMovie->setPalette(ground);
    const QString file = ctx_.exercises.Exercises[static_cast<size_t>(k)].File;
    const QString extension = media_.ShowExerciseMedia(surface, file, ctx_.record.ViewAm);
    // A picture that could not be read leaves the surface hidden; a video shows in it.
    surface.setVisible(extension == QLatin1String(".avi") || surface.hasPicture());
    placeOverlays();
    ui->picMovie->raise();
    ui->picMovie->show();
    ui->cmdClose->show();
    ui->cmdClose->raise();
    if (file.toLower().endsWith(QLatin1String(".avi")))
        media_.PlayVideo();
}

void SchemePage::cmdClose_Click() {
    // The media keep going behind it until Done or the next preview.
    ui->picMovie->hide();
    ui->cmdClose->hide();
}

void SchemePage::cmdDone_Click() {
    ctx_.media.send(QStringLiteral("stop tarvox"));
    media_.CloseVideo();
    ui->picMovie->hide();
    // Close lies over Preview and has nothing left to close: Preview is the button there again.
    ui->cmdClose->hide();
}

// --- layout ---

void SchemePage::layOut() {
    placeOverlays();
    ui->picMovie->raise();
    ui->picMovie->hide();
}

void SchemePage::placeOverlays() {
    ui->picMovie->setGeometry(ui->l->geometry());
    const QSize movie = ui->picMovie->size();
    const int margin = style()->pixelMetric(QStyle::PM_LayoutRightMargin);
    ui->cmdDone->adjustSize();
    ui->cmdDone->move(movie.width() - ui->cmdDone->width() - margin,
                      movie.height() - ui->cmdDone->height() - margin);
    MediaSurface& surface = *ui->amxPreview;
    surface.move(std::max(0, (movie.width() - surface.width()) / 2),
                 std::max(0, (movie.height() - surface.height()) / 2));
    ui->cmdDone->raise();
    ui->cmdClose->setGeometry(ui->cmdPreview->geometry());
}

bool SchemePage::eventFilter(QObject* watched, QEvent* event) {
    if ((watched == ui->l || watched == ui->cmdPreview) &&
        (event->type() == QEvent::Move || event->type() == QEvent::Resize))
        placeOverlays();
    return QWidget::eventFilter(watched, event);
}

} // namespace tarvo
