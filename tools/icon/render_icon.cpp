// paneforge-icon-render SVG PNG SIZE [PNG SIZE]...
//
// Renders the application icon's SVG into square PNGs at build time, for the hicolor theme and the
// macOS icon set. Qt Svg only: no image tools, no network.
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTextStream>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments().mid(1);
    QTextStream err(stderr);
    if (args.size() < 3 || args.size() % 2 == 0) {
        err << "usage: paneforge-icon-render SVG PNG SIZE [PNG SIZE]...\n";
        return 2;
    }
    QSvgRenderer renderer(args[0]);
    if (!renderer.isValid()) {
        err << "paneforge-icon-render: " << args[0] << ": not a valid SVG image\n";
        return 1;
    }
    for (qsizetype i = 1; i < args.size(); i += 2) {
        bool ok = false;
        const int size = args[i + 1].toInt(&ok);
        if (!ok || size <= 0 || size > 4096) {
            err << "paneforge-icon-render: “" << args[i + 1] << "” is not an icon size\n";
            return 2;
        }
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        {
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            renderer.render(&painter, QRectF(0, 0, size, size));
        }
        QDir().mkpath(QFileInfo(args[i]).absolutePath());
        if (!image.convertToFormat(QImage::Format_ARGB32).save(args[i], "PNG")) {
            err << "paneforge-icon-render: cannot write " << args[i] << "\n";
            return 1;
        }
    }
    return 0;
}
