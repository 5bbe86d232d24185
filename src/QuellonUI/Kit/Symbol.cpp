#include "QuellonUI/Kit/Symbol.h"

#include "QuellonUI/Theme.h"

#include <QApplication>
#include <QCache>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

#include <cmath>

namespace quellon {

namespace {

/// Device pixels of all pixmaps that are kept.
constexpr int mostKept = 256 * 1024;

QCache<QString, QPixmap>& kept()
{
    static QCache<QString, QPixmap> cache{mostKept};
    // Pixmaps must not outlive the application.
    static const bool registered = (qAddPostRoutine([] { kept().clear(); }), true);
    static_cast<void>(registered);
    return cache;
}

QPixmap drawn(std::string_view name, int side, const QColor& colour)
{
    QPixmap result{side, side};
    result.fill(Qt::transparent);
    QFile file{QStringLiteral(":/symbols/%1.svg").arg(toQString(name))};
    if (!file.open(QIODevice::ReadOnly)) return result;
    QSvgRenderer renderer{file.readAll().replace("currentColor", colour.name().toLatin1())};
    QPainter painter{&result};
    renderer.render(&painter);
    if (colour.alpha() == 255) return result;
    // All of it at once, or it would be less faint where its lines meet.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.fillRect(result.rect(), QColor{0, 0, 0, colour.alpha()});
    return result;
}

class SymbolEngine final : public QIconEngine {
public:
    SymbolEngine(std::string_view name, Tint tint) : name_(name), tint_(tint) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        const double ratio = painter->device()->devicePixelRatio();
        painter->drawPixmap(rect, scaledPixmap(rect.size() * ratio, mode, state, ratio));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }
    /// The size is in device pixels.
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/, double scale) override
    {
        constexpr float faint = 0.4F;
        QColor colour = Theme::of(QApplication::palette()).tint(tint_);
        if (mode == QIcon::Disabled) colour.setAlphaF(faint);
        if (mode == QIcon::Selected) colour = Qt::white;
        const int side = static_cast<int>(std::lround(std::min(size.width(), size.height()) / scale));
        return symbolPixmap(name_, side, colour, scale);
    }
    [[nodiscard]] QIconEngine* clone() const override { return new SymbolEngine{name_, tint_}; }

private:
    std::string name_;
    Tint tint_;
};

} // namespace

QPixmap symbolPixmap(std::string_view name, int points, const QColor& colour, double devicePixelRatio)
{
    const int side = static_cast<int>(std::lround(points * devicePixelRatio));
    const QString key = QStringLiteral("%1 %2 %3 %4")
                            .arg(toQString(name))
                            .arg(side)
                            .arg(colour.name(QColor::HexArgb))
                            .arg(devicePixelRatio);
    if (const QPixmap* const found = kept().object(key)) return *found;
    QPixmap result = drawn(name, side, colour);
    result.setDevicePixelRatio(devicePixelRatio);
    kept().insert(key, new QPixmap{result}, side * side);
    return result;
}

void drawSymbol(QPainter& painter, const QPoint& at, std::string_view name, int points, const QColor& colour)
{
    if (name.empty()) return;
    // The device may be a picture that is finer than the screen of the widget that is drawn.
    painter.drawPixmap(at, symbolPixmap(name, points, colour, painter.deviceTransform().m11()));
}

QIcon symbolIcon(std::string_view name, Tint tint)
{
    return name.empty() ? QIcon{} : QIcon{new SymbolEngine{name, tint}};
}

SymbolLabel::SymbolLabel(int points, QWidget* parent) : QWidget(parent), points_(points)
{
    setFixedSize(points, points);
}

void SymbolLabel::setSymbol(std::string_view name, Tint tint)
{
    if (name == name_ && tint == tint_) return;
    name_ = name;
    tint_ = tint;
    update();
}

void SymbolLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter{this};
    drawSymbol(painter, {0, 0}, name_, points_, Theme::of(palette()).tint(tint_));
}

} // namespace quellon
