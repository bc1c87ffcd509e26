#include "platform/linux/QtMessageBox.h"

#include <QMessageBox>
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
    QMessageBox box;
    box.setWindowTitle(title);
    box.setText(text);
    if (icon != Icon::None)
        box.setIconPixmap(box.style()->standardPixmap(pictureOf(icon), nullptr, &box));
    if (buttons == Buttons::YesNo) {
        QPushButton* yes = box.addButton(QStringLiteral("&Yes"), QMessageBox::YesRole);
        QPushButton* no = box.addButton(QStringLiteral("&No"), QMessageBox::NoRole);
        box.setDefaultButton(yes);
        box.setEscapeButton(no);
        box.exec();
        return box.clickedButton() == yes ? Answer::Yes : Answer::No;
    }
    box.setEscapeButton(box.addButton(QStringLiteral("OK"), QMessageBox::AcceptRole));
    box.exec();
    return Answer::Ok;
}

} // namespace tarvo
