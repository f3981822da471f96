#include "support/PictureCheck.h"

#include <QDir>
#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QImageWriter>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

const QString bundledFamily = u"Tavoran Test Sans"_s;

/// Versions of the font engine round the edges of letters differently.
constexpr int roundingOfChannel = 2;
/// Fewer than the smallest mark of a chart has, counted at a device pixel ratio of 1.
constexpr int toleratedPixels = 8;

bool differs(QRgb a, QRgb b)
{
    return std::abs(qRed(a) - qRed(b)) > roundingOfChannel
        || std::abs(qGreen(a) - qGreen(b)) > roundingOfChannel
        || std::abs(qBlue(a) - qBlue(b)) > roundingOfChannel;
}

bool save(const QImage& picture, const QString& path)
{
    QImageWriter writer(path, "png");
    writer.setCompression(100); // small files matter more than the moment it takes
    return writer.write(picture.convertToFormat(QImage::Format_RGB888));
}

bool updates()
{
    return qEnvironmentVariableIntValue("TAVORAN_UPDATE_PICTURES") == 1;
}

} // namespace

void pictures::useFixedTextRendering()
{
    const QString path = QDir::temp().filePath(u"fonts.conf"_s);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qUtf8Printable(path));
    QTextStream(&file)
        << "<?xml version=\"1.0\"?>\n<!DOCTYPE fontconfig SYSTEM \"fonts.dtd\">\n<fontconfig>\n"
           "<cachedir>"
        << QDir::tempPath()
        << "</cachedir>\n<match target=\"font\">\n"
           "<edit name=\"antialias\" mode=\"assign\"><bool>true</bool></edit>\n"
           "<edit name=\"hinting\" mode=\"assign\"><bool>false</bool></edit>\n"
           "<edit name=\"autohint\" mode=\"assign\"><bool>false</bool></edit>\n"
           "<edit name=\"hintstyle\" mode=\"assign\"><const>hintnone</const></edit>\n"
           "<edit name=\"rgba\" mode=\"assign\"><const>none</const></edit>\n"
           "</match>\n</fontconfig>\n";
    qputenv("FONTCONFIG_FILE", QFile::encodeName(path));
    qputenv("QT_FONT_DPI", "96");
}

bool pictures::useBundledFont(const QString& family)
{
    for (const QString& style : {u"Regular"_s, u"Bold"_s}) {
        const QString path = QStringLiteral(FONT_FOLDER "/TavoranTestSans-%1.ttf").arg(style);
        if (QFontDatabase::addApplicationFont(path) < 0)
            return false;
    }
    QFont::insertSubstitution(family, bundledFamily);
    return QFontInfo(QFont(family, 8)).family() == bundledFamily
        && QFontInfo(QFont(family, 8, QFont::Bold)).bold();
}

pictures::Difference pictures::differenceOf(const QImage& expected, const QImage& actual)
{
    Difference difference;
    const QImage a = expected.convertToFormat(QImage::Format_RGB32);
    const QImage b = actual.convertToFormat(QImage::Format_RGB32);
    const QSize shared = a.size().boundedTo(b.size());
    difference.picture = QImage(a.size().expandedTo(b.size()), QImage::Format_RGB32);
    difference.picture.fill(Qt::magenta);
    difference.pixels = difference.picture.width() * difference.picture.height();
    for (int y = 0; y < shared.height(); ++y) {
        const auto* wanted = reinterpret_cast<const QRgb*>(a.constScanLine(y));
        const auto* painted = reinterpret_cast<const QRgb*>(b.constScanLine(y));
        auto* marked = reinterpret_cast<QRgb*>(difference.picture.scanLine(y));
        for (int x = 0; x < shared.width(); ++x) {
            if (differs(wanted[x], painted[x]))
                continue;
            const int grey = qGray(wanted[x]) / 3;
            marked[x] = qRgb(grey, grey, grey);
            --difference.pixels;
        }
    }
    return difference;
}

pictures::PictureFolder::PictureFolder(const QString& stored, const QString& failed)
    : m_stored(stored)
    , m_failed(failed)
{
}

QString pictures::PictureFolder::check(const QString& name, const QImage& actual) const
{
    const QImage expected = stored(name);
    const qreal ratio = actual.devicePixelRatio();
    const bool same = expected.size() == actual.size()
        && differenceOf(expected, actual).pixels <= std::floor(toleratedPixels * ratio * ratio);
    if (same)
        return {};
    if (updates())
        return save(actual, storedPath(name)) ? QString() : u"cannot write "_s + storedPath(name);
    return explain(name, expected, actual);
}

QImage pictures::PictureFolder::stored(const QString& name) const
{
    return QImage(storedPath(name));
}

QString pictures::PictureFolder::storedPath(const QString& name) const
{
    return QDir(m_stored).filePath(name + u".png"_s);
}

QString pictures::PictureFolder::explain(
    const QString& name, const QImage& expected, const QImage& actual) const
{
    QDir().mkpath(m_failed);
    const auto pathOf
        = [&](QStringView kind) { return QDir(m_failed).filePath(u"%1-%2.png"_s.arg(name, kind)); };
    bool written = save(actual, pathOf(u"actual"));
    if (expected.isNull())
        return u"no picture is stored as %1; what was painted is %2"_s.arg(
            storedPath(name), pathOf(u"actual"));
    const Difference difference = differenceOf(expected, actual);
    written = save(expected, pathOf(u"expected")) && written;
    written = save(difference.picture, pathOf(u"difference")) && written;
    return u"%1 pixels are not as in %2; %3: %4"_s.arg(QString::number(difference.pixels), storedPath(name),
        written ? u"look at"_s : u"could not write"_s, pathOf(u"difference"));
}
