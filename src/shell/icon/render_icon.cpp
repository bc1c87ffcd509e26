// Build tool: draws the program icon from its SVG source into one PNG per size that panels, menus
// and docks ask for, and writes the resource file that compiles them into the program.
//   render_icon <icon.svg> <output folder>
//
// Drawing at build time means the running program needs neither Qt SVG nor its icon engine plugin:
// both would stay loaded for the whole session only to draw one small picture once.
#include "shell/ProgramIconSizes.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTextStream>

#include <cstdio>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: render_icon <icon.svg> <output folder>\n");
        return 2;
    }
    QSvgRenderer svg(QString::fromLocal8Bit(argv[1]));
    if (!svg.isValid()) {
        std::fprintf(stderr, "render_icon: cannot read %s\n", argv[1]);
        return 1;
    }
    const QDir out(QString::fromLocal8Bit(argv[2]));
    if (!QDir().mkpath(out.path())) {
        std::fprintf(stderr, "render_icon: cannot create %s\n", argv[2]);
        return 1;
    }

    QString qrc;
    QTextStream list(&qrc);
    list << "<!DOCTYPE RCC>\n<RCC version=\"1.0\">\n    <qresource prefix=\"/icons\">\n";
    for (const int size : tarvo::kProgramIconSizes) {
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        svg.render(&painter);
        painter.end();
        const QString name = QStringLiteral("tarvo-%1.png").arg(size);
        if (!image.save(out.filePath(name), "PNG")) {
            std::fprintf(stderr, "render_icon: cannot write %s\n", qPrintable(out.filePath(name)));
            return 1;
        }
        list << "        <file>" << name << "</file>\n";
    }
    list << "    </qresource>\n</RCC>\n";
    list.flush();

    QFile file(out.filePath(QStringLiteral("tarvo_icon.qrc")));
    if (!file.open(QIODevice::WriteOnly) || file.write(qrc.toUtf8()) != qrc.toUtf8().size()) {
        std::fprintf(stderr, "render_icon: cannot write %s\n", qPrintable(file.fileName()));
        return 1;
    }
    return 0;
}
