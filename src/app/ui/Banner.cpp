#include "app/ui/Banner.h"

#include "app/ui/Theme.h"

#include <QCoreApplication>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr int splashWidth = 480;
constexpr int splashHeight = 280;
constexpr int bannerTop = 45;
constexpr int bannerHeight = 150;

QFont bannerFont(int pixelSize, QFont::Weight weight)
{
    QFont font;
    // The later names stand in where the first is not installed.
    font.setFamilies({u"Segoe UI"_s, u"Tahoma"_s, u"DejaVu Sans"_s, u"sans-serif"_s});
    font.setPixelSize(std::max(1, pixelSize));
    font.setWeight(weight);
    return font;
}

} // namespace

QPixmap renderBanner(int width, int height)
{
    QPixmap banner(width, height);
    banner.fill(fixedColors::splashBackground);
    QPainter painter(&banner);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);

    const int side = static_cast<int>(height * 0.78);
    const QRectF logo(height * 0.14, (height - side) * 0.5, side, side);
    const QPixmap image(u":/logo.png"_s);
    if (!image.isNull())
        painter.drawPixmap(logo, image, QRectF(image.rect()));

    const double left = logo.right() + height * 0.16;
    QLinearGradient gradient(left, 0.0, width * 0.95, 0.0);
    gradient.setColorAt(0.0, fixedColors::wordmarkStart);
    gradient.setColorAt(1.0, fixedColors::wordmarkEnd);
    painter.setFont(bannerFont(static_cast<int>(height * 0.34), QFont::Bold));
    painter.setPen(QPen(QBrush(gradient), 1.0));
    painter.drawText(QRectF(left, 0.0, width - left, static_cast<int>(height * 0.62)),
        Qt::AlignLeft | Qt::AlignBottom, u"Tavoran"_s);

    QFont subtitle = bannerFont(static_cast<int>(height * 0.16), QFont::Normal);
    subtitle.setLetterSpacing(QFont::AbsoluteSpacing, 2.5);
    painter.setFont(subtitle);
    painter.setPen(fixedColors::subtitle);
    painter.drawText(QRectF(left + 2.0, height * 0.62, width - left, static_cast<int>(height * 0.38)),
        Qt::AlignLeft | Qt::AlignTop, u"DESKTOP TERMINAL"_s);
    return banner;
}

QPixmap renderSplash()
{
    QPixmap splash(splashWidth, splashHeight);
    splash.fill(fixedColors::splashBackground);
    QPainter painter(&splash);
    painter.drawPixmap(0, bannerTop, renderBanner(splashWidth, bannerHeight));
    painter.setFont(bannerFont(12, QFont::Normal));
    painter.setPen(fixedColors::subtitle);
    painter.drawText(QRect(0, 234, splashWidth, 20), Qt::AlignCenter,
        QCoreApplication::translate("Banner", "Version %1 — loading...")
            .arg(QCoreApplication::applicationVersion()));
    painter.setPen(fixedColors::splashBorder);
    painter.drawRect(0, 0, splashWidth - 1, splashHeight - 1);
    return splash;
}
