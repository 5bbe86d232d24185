#include "QuellonUI/Kit/TextRuns.h"

#include "QuellonUI/Theme.h"

#include <QPainter>
#include <QStringList>
#include <QTextLayout>

#include <cmath>

namespace quellon {

TextRuns::TextRuns(const QFont& font, QWidget* parent) : QWidget(parent)
{
    setFont(font);
    QSizePolicy policy{QSizePolicy::Preferred, QSizePolicy::Minimum};
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void TextRuns::setRuns(const std::vector<Run>& runs)
{
    if (runs == runs_) return;
    runs_ = runs;
    setAccessibleName(text());
    updateGeometry();
    update();
}

QString TextRuns::text() const
{
    QStringList texts;
    for (const Run& each : runs_) texts.append(each.text);
    return texts.join(QLatin1Char{' '});
}

double TextRuns::layOut(QTextLayout& layout, double width) const
{
    layout.beginLayout();
    double height = 0.0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0.0, height});
        height += line.height();
    }
    layout.endLayout();
    return height;
}

void TextRuns::colour(QTextLayout& layout) const
{
    const Theme& theme = Theme::of(palette());
    QList<QTextLayout::FormatRange> formats;
    int start = 0;
    for (const Run& each : runs_) {
        const int length = static_cast<int>(each.text.size());
        QTextCharFormat format;
        format.setForeground(theme.textTint(each.tint));
        if (each.isMedium) format.setFontWeight(QFont::Medium);
        formats.append({start, length, format});
        start += length + 1;
    }
    layout.setFormats(formats);
}

QSize TextRuns::sizeHint() const
{
    QTextLayout layout{text(), font()};
    colour(layout);
    constexpr double enough = 1e6;
    const double height = layOut(layout, enough);
    return {static_cast<int>(std::ceil(layout.maximumWidth())), static_cast<int>(std::ceil(height))};
}

QSize TextRuns::minimumSizeHint() const
{
    return {1, fontMetrics().height()};
}

int TextRuns::heightForWidth(int width) const
{
    QTextLayout layout{text(), font()};
    colour(layout);
    return static_cast<int>(std::ceil(layOut(layout, width)));
}

void TextRuns::paintEvent(QPaintEvent* /*event*/)
{
    QTextLayout layout{text(), font()};
    colour(layout);
    layOut(layout, width());
    QPainter painter{this};
    layout.draw(&painter, {0.0, 0.0});
}

} // namespace quellon
