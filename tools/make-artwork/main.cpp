// make-artwork OUTDIR: draws every icon and picture of libOrbCameraGuiApi.
// One palette and one stroke width keep the set consistent; everything is
// drawn on a 16-unit grid so that it stays legible at 16 pixels.
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cstdio>
#include <functional>

namespace {

const QColor ink(0x2b, 0x3a, 0x4a);
const QColor blue(0x1e, 0x78, 0xc8);
const QColor green(0x2e, 0x9e, 0x4f);
const QColor red(0xd6, 0x3a, 0x2f);
const QColor amber(0xe8, 0x9f, 0x1a);
const QColor paper(0xff, 0xff, 0xff);

using Drawing = std::function<void(QPainter &)>;

// Renders a drawing made on a 16 x 16 grid at the given pixel size.
QImage render(const Drawing &draw, int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(size / 16.0, size / 16.0);
    draw(p);
    return image;
}

QPen pen(const QColor &color, double width = 1.5)
{
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

bool save(const QImage &image, const QString &path)
{
    if (!image.save(path)) {
        std::fprintf(stderr, "make-artwork: cannot write %s\n", qPrintable(path));
        return false;
    }
    return true;
}

// A PNG at 16 px and its @2x twin, which Qt picks on high-DPI screens.
bool png(const QString &dir, const QString &name, const Drawing &draw)
{
    return save(render(draw, 16), dir + QLatin1Char('/') + name + QStringLiteral(".png"))
        && save(render(draw, 32), dir + QLatin1Char('/') + name + QStringLiteral("@2x.png"));
}

bool ico(const QString &dir, const QString &name, const Drawing &draw)
{
    return save(render(draw, 32), dir + QLatin1Char('/') + name + QStringLiteral(".ico"));
}

void chevrons(QPainter &p, bool down)
{
    p.setPen(pen(ink));
    for (double y : { 4.0, 9.0 }) {
        QPainterPath path;
        path.moveTo(3.5, down ? y : y + 3);
        path.lineTo(8, down ? y + 3 : y);
        path.lineTo(12.5, down ? y : y + 3);
        p.drawPath(path);
    }
}

void badge(QPainter &p, const QColor &color)
{
    p.setPen(Qt::NoPen);
    p.setBrush(color);
    p.drawEllipse(QRectF(1, 1, 14, 14));
}

void options(QPainter &p, bool caseSensitive, bool whole)
{
    // A funnel; marks in its corners tell which options are on.
    p.setPen(pen(ink, 1.3));
    QPainterPath funnel;
    funnel.moveTo(2, 3);
    funnel.lineTo(14, 3);
    funnel.lineTo(9.5, 8.5);
    funnel.lineTo(9.5, 13.5);
    funnel.lineTo(6.5, 12);
    funnel.lineTo(6.5, 8.5);
    funnel.closeSubpath();
    p.drawPath(funnel);
    p.setPen(Qt::NoPen);
    p.setBrush(blue);
    if (caseSensitive)
        p.drawEllipse(QRectF(0.5, 10, 5, 5));
    if (whole)
        p.drawRect(QRectF(10.5, 10, 5, 5));
}

void frame(QPainter &p) // a camera body, shared by the dialog icons
{
    p.setPen(pen(ink, 1.2));
    p.setBrush(paper);
    p.drawRoundedRect(QRectF(1.5, 4.5, 13, 9), 1.5, 1.5);
    p.drawRect(QRectF(4.5, 2.5, 4, 2));
}

// A timing picture: named signals as square waves over a shared time axis.
struct Trace {
    QString name;
    QVector<double> edges; // times (0..1) where the level toggles, starting low
    QColor color;
};

QImage diagram(const QString &title, const QVector<Trace> &traces)
{
    const int width = 360, rowHeight = 34, top = 26;
    QImage image(width, top + rowHeight * traces.size() + 12, QImage::Format_RGB32);
    image.fill(paper);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(11);
    p.setFont(font);
    p.setPen(ink);
    p.drawText(QRectF(8, 4, width - 16, 18), Qt::AlignLeft | Qt::AlignVCenter, title);
    const double x0 = 96, x1 = width - 12;
    for (int i = 0; i < traces.size(); ++i) {
        const Trace &t = traces[i];
        const double high = top + i * rowHeight + 6, low = high + 18;
        p.setPen(ink);
        p.drawText(QRectF(8, high, x0 - 12, 18), Qt::AlignLeft | Qt::AlignVCenter, t.name);
        QPainterPath wave;
        bool up = false;
        wave.moveTo(x0, low);
        for (double e : t.edges) {
            const double x = x0 + e * (x1 - x0);
            wave.lineTo(x, up ? high : low);
            up = !up;
            wave.lineTo(x, up ? high : low);
        }
        wave.lineTo(x1, up ? high : low);
        p.setPen(pen(t.color, 2));
        p.setBrush(Qt::NoBrush);
        p.drawPath(wave);
    }
    return image;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: make-artwork OUTDIR\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    const QString images = out + QStringLiteral("/images");
    const QString icons = out + QStringLiteral("/icons");
    QDir().mkpath(images);
    QDir().mkpath(icons);
    bool ok = true;

    ok &= png(images, QStringLiteral("collapse_all"), [](QPainter &p) { chevrons(p, false); });
    ok &= png(images, QStringLiteral("expand_all"), [](QPainter &p) { chevrons(p, true); });
    ok &= png(images, QStringLiteral("ok"), [](QPainter &p) {
        badge(p, green);
        p.setPen(pen(paper, 2));
        QPainterPath tick;
        tick.moveTo(4.5, 8.5);
        tick.lineTo(7, 11);
        tick.lineTo(11.5, 5.5);
        p.drawPath(tick);
    });
    ok &= png(images, QStringLiteral("err"), [](QPainter &p) {
        badge(p, red);
        p.setPen(pen(paper, 2));
        p.drawLine(QPointF(8, 4), QPointF(8, 9));
        p.drawPoint(QPointF(8, 12));
    });
    ok &= png(images, QStringLiteral("clear_left"), [](QPainter &p) {
        p.setPen(pen(ink, 1.2));
        QPainterPath tag;
        tag.moveTo(1.5, 8);
        tag.lineTo(5.5, 3.5);
        tag.lineTo(14.5, 3.5);
        tag.lineTo(14.5, 12.5);
        tag.lineTo(5.5, 12.5);
        tag.closeSubpath();
        p.drawPath(tag);
        p.drawLine(QPointF(7.5, 6), QPointF(11.5, 10));
        p.drawLine(QPointF(11.5, 6), QPointF(7.5, 10));
    });
    ok &= png(images, QStringLiteral("options"), [](QPainter &p) { options(p, false, false); });
    ok &= png(images, QStringLiteral("options-c"), [](QPainter &p) { options(p, true, false); });
    ok &= png(images, QStringLiteral("options-w"), [](QPainter &p) { options(p, false, true); });
    ok &= png(images, QStringLiteral("options-cw"), [](QPainter &p) { options(p, true, true); });

    ok &= ico(icons, QStringLiteral("orbicon"), [](QPainter &p) {
        p.setPen(pen(blue, 1.6));
        p.setBrush(Qt::NoBrush);
        p.drawEllipse(QRectF(1.5, 1.5, 13, 13));
        p.setPen(Qt::NoPen);
        p.setBrush(blue);
        p.drawEllipse(QRectF(5, 5, 6, 6));
    });
    ok &= ico(icons, QStringLiteral("connected"), [](QPainter &p) { badge(p, green); });
    ok &= ico(icons, QStringLiteral("disconnected"), [](QPainter &p) {
        p.setPen(pen(red, 1.6));
        p.drawEllipse(QRectF(2, 2, 12, 12));
        p.drawLine(QPointF(4.5, 11.5), QPointF(11.5, 4.5));
    });
    ok &= ico(icons, QStringLiteral("redball"), [](QPainter &p) { badge(p, red); });
    ok &= ico(icons, QStringLiteral("greenball"), [](QPainter &p) { badge(p, green); });
    ok &= ico(icons, QStringLiteral("frameab"), [](QPainter &p) {
        frame(p);
        QFont f(QStringLiteral("DejaVu Sans"));
        f.setPixelSize(6);
        f.setBold(true);
        p.setFont(f);
        p.setPen(blue);
        p.drawText(QRectF(1.5, 5, 13, 8), Qt::AlignCenter, QStringLiteral("AB"));
    });
    ok &= ico(icons, QStringLiteral("trigger"), [](QPainter &p) {
        p.setPen(pen(amber, 1.8));
        QPainterPath bolt;
        bolt.moveTo(9.5, 1.5);
        bolt.lineTo(4.5, 9);
        bolt.lineTo(8, 9);
        bolt.lineTo(6.5, 14.5);
        bolt.lineTo(11.5, 7);
        bolt.lineTo(8, 7);
        bolt.closeSubpath();
        p.setBrush(amber);
        p.drawPath(bolt);
    });
    ok &= ico(icons, QStringLiteral("pulse"), [](QPainter &p) {
        p.setPen(pen(blue, 1.6));
        QPainterPath wave;
        wave.moveTo(1, 12);
        for (double x : { 2.5, 7.0, 11.5 }) {
            wave.lineTo(x, 12);
            wave.lineTo(x, 4);
            wave.lineTo(x + 2, 4);
            wave.lineTo(x + 2, 12);
        }
        wave.lineTo(15, 12);
        p.drawPath(wave);
    });
    ok &= ico(icons, QStringLiteral("strobe"), [](QPainter &p) {
        p.setPen(pen(amber, 1.5));
        p.setBrush(amber);
        p.drawEllipse(QRectF(5, 5, 6, 6));
        for (int i = 0; i < 8; ++i) {
            p.save();
            p.translate(8, 8);
            p.rotate(45 * i);
            p.drawLine(QPointF(0, -5), QPointF(0, -7));
            p.restore();
        }
    });
    ok &= ico(icons, QStringLiteral("dataout"), [](QPainter &p) {
        frame(p);
        p.setPen(pen(blue, 1.6));
        p.drawLine(QPointF(5, 9), QPointF(11, 9));
        p.drawLine(QPointF(9, 7), QPointF(11, 9));
        p.drawLine(QPointF(9, 11), QPointF(11, 9));
    });
    ok &= ico(icons, QStringLiteral("color"), [](QPainter &p) {
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(230, 60, 60, 210));
        p.drawEllipse(QRectF(1.5, 1.5, 8.5, 8.5));
        p.setBrush(QColor(60, 180, 80, 210));
        p.drawEllipse(QRectF(6, 1.5, 8.5, 8.5));
        p.setBrush(QColor(50, 110, 230, 210));
        p.drawEllipse(QRectF(3.75, 6, 8.5, 8.5));
    });

    const QColor exposure = blue, readout = green, strobe = amber;
    auto strobes = [&](bool firstOnExposure, bool secondOnExposure) {
        return QVector<Trace> {
            { QStringLiteral("Exposure"), { 0.10, 0.45 }, exposure },
            { QStringLiteral("Readout"), { 0.45, 0.80 }, readout },
            { QStringLiteral("Strobe 1"),
              firstOnExposure ? QVector<double> { 0.15, 0.35 } : QVector<double> { 0.50, 0.70 },
              strobe },
            { QStringLiteral("Strobe 2"),
              secondOnExposure ? QVector<double> { 0.20, 0.40 } : QVector<double> { 0.55, 0.75 },
              strobe },
        };
    };
    ok &= save(
        diagram(QStringLiteral("Both strobes follow the exposure start"), strobes(true, true)),
        images + QStringLiteral("/strobeBothExp.bmp"));
    ok &= save(
        diagram(QStringLiteral("Both strobes follow the readout start"), strobes(false, false)),
        images + QStringLiteral("/strobeBothRead.bmp"));
    ok &= save(
        diagram(QStringLiteral("Strobe 1 on exposure, strobe 2 on readout"), strobes(true, false)),
        images + QStringLiteral("/strobe1Exp_strobe2Read.bmp"));
    ok &= save(
        diagram(QStringLiteral("Strobe 1 on readout, strobe 2 on exposure"), strobes(false, true)),
        images + QStringLiteral("/strobe1Read_strobe2Exp.bmp"));
    ok &= save(
        diagram(QStringLiteral("Pulse generator: period P, width W, delay P - W"),
                { { QStringLiteral("Output"), { 0.05, 0.20, 0.40, 0.55, 0.75, 0.90 }, blue } }),
        images + QStringLiteral("/pulseimage.bmp"));
    ok &= save(diagram(QStringLiteral("Wide dynamic range: three knee points"),
                       { { QStringLiteral("Segment 1"), { 0.05, 0.95 }, blue },
                         { QStringLiteral("Segment 2"), { 0.55, 0.95 }, green },
                         { QStringLiteral("Segment 3"), { 0.85, 0.95 }, amber } }),
               images + QStringLiteral("/wdr.bmp"));
    return ok ? 0 : 1;
}
