#include "video/TarvoVideo.h"

#include "video/VideoService.h"

#include <QApplication>

namespace tarvo {

int runTarvoVideo(int& argc, char** argv) {
    QApplication app(argc, argv);
    app.setQuitOnLastWindowClosed(false);
    VideoService service;
    return app.exec();
}

} // namespace tarvo
