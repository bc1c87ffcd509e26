#include "platform/linux/QtMessageBox.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStyle>

namespace tarvo {

namespace {

// The box's icon and buttons are given as pictures and texts of our own: Qt's standard ones are
// looked up in the desktop's icon theme, which loads every image format plugin (SVG, JPEG, GIF...)
// into the program for the rest of its run; the style's built-in pictures need none of them.
QStyle::StandardPixmap pictureOf(MessageBox::Icon icon) {
    switch (icon) {
    case MessageBox::Icon::Information:
        return QStyle::SP_MessageBoxInformation;
    case MessageBox::Icon::Question:
        return QStyle::SP_MessageBoxQuestion;
    case MessageBox::Icon::Critical:
        return QStyle::SP_MessageBoxCritical;
    case MessageBox::Icon::None:
        break;
    }
    return QStyle::SP_CustomBase;
}

} // namespace

MessageBox::Answer QtMessageBox::show(const QString& text, const QString& title, Buttons buttons, Icon icon) {
    // The box belongs to the window the user is working in, so that it comes up over that window and
    // stays above it: over the exercise player, not on a monitor that a black cover hides. That window
    // may go while the box waits; then it takes the box with it, and the answer is the cautious one.
    const QPointer<QMessageBox> box = new QMessageBox(QApplication::activeWindow());
    box->setWindowTitle(title);
    box->setText(text);
    if (icon != Icon::None)
        box->setIconPixmap(box->style()->standardPixmap(pictureOf(icon), nullptr, box));
    QPushButton* yes = nullptr;
    if (buttons == Buttons::YesNo) {
        yes = box->addButton(QStringLiteral("&Yes"), QMessageBox::YesRole);
        box->setDefaultButton(yes);
        box->setEscapeButton(box->addButton(QStringLiteral("&No"), QMessageBox::NoRole));
    } else {
        box->setEscapeButton(box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole));
    }
    box->exec();
    const bool saidYes = box && yes && box->clickedButton() == yes;
    delete box.data();
    if (buttons == Buttons::YesNo)
        return saidYes ? Answer::Yes : Answer::No;
    return Answer::Ok;
}

} // namespace tarvo
