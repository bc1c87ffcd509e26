#pragma once

#include <QWidget>

#include <memory>

QT_BEGIN_NAMESPACE
namespace Ui {
class frmChkExercise;
}
QT_END_NAMESPACE

namespace tarvo {

class ExerciseSequencer;
class WindowSession;

// "Exercise...": the prompt that offers an exercise break when its minutes have run out. It comes up
// above every other window but leaves the keyboard where the user is typing; "&Exercise Now..." starts
// the break, "&Later" puts it off by the minutes in cmbMinutes (with the spinner UpDown1 beside it, or
// typed). Loading it sets the minutes to the next prompt to the last postponement; it deletes itself
// when it closes, which lets the minute tick count the exercise countdown again.
class frmChkExercise : public QWidget {
    Q_OBJECT

public:
    frmChkExercise(ExerciseSequencer& sequencer, WindowSession& session, QWidget* parent = nullptr);
    ~frmChkExercise() override;

private slots:
    void cmdOK_Click();
    void cmdWait_Click();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Form_Load();

    std::unique_ptr<Ui::frmChkExercise> ui;
    ExerciseSequencer& sequencer_;
};

} // namespace tarvo
