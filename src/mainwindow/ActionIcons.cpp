#include "mainwindow/ActionIcons.h"

#include "mainwindow/Pictograms.h"

#include <QIconEngine>
#include <QPainter>

namespace {

constexpr double fieldSide = 16.0;
constexpr double disabledOpacity = 0.35;

class PictogramEngine final : public QIconEngine {
public:
    explicit PictogramEngine(QLatin1StringView drawing)
        : m_drawing(drawing)
    {
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/) override
    {
        const double side = std::min(rect.width(), rect.height());
        painter->save();
        painter->translate(rect.x() + (rect.width() - side) / 2.0, rect.y() + (rect.height() - side) / 2.0);
        painter->scale(side / fieldSide, side / fieldSide);
        painter->setRenderHint(QPainter::Antialiasing);
        if (mode == QIcon::Disabled)
            painter->setOpacity(painter->opacity() * disabledOpacity);
        paintDrawing(*painter, m_drawing);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new PictogramEngine(m_drawing); }

private:
    QLatin1StringView m_drawing;
};

} // namespace

QIcon actionIcon(Pictogram pictogram)
{
    return actionIcon(pictogramDrawing(pictogram));
}

QIcon actionIcon(QLatin1StringView drawing)
{
    return QIcon(new PictogramEngine(drawing));
}
