// tarvomultimedia: renders the built-in exercise media into the program folder (see RunMultimedia.h).
#include "multimedia/RunMultimedia.h"
#include "platform/linux/LinuxFiles.h"

#include <QGuiApplication>
#include <QTextStream>

#include <cstdio>

int main(int argc, char** argv) {
    // The program draws into images and never opens a window, so it needs no display: it runs the
    // same at first start on the desktop and in a build without one.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return tarvo::runMultimedia(app.arguments().mid(1), tarvo::programFolder(), out, err);
}
