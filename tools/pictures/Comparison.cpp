#include "Comparison.h"

#include <QColor>

#include <algorithm>
#include <cstdlib>

namespace quellon::Comparison {

namespace {

int difference(QRgb left, QRgb right)
{
    return std::max({std::abs(qRed(left) - qRed(right)), std::abs(qGreen(left) - qGreen(right)),
                     std::abs(qBlue(left) - qBlue(right)), std::abs(qAlpha(left) - qAlpha(right))});
}

/// The pixel with its colours weighed by how much it covers: what cannot be seen makes no difference.
QRgb pixel(const QImage& image, int x, int y)
{
    return reinterpret_cast<const QRgb*>(image.constScanLine(y))[x];
}

/// The mean over a square at `corner`, of which what lies outside the pictures counts as equal.
double mean(const QImage& left, const QImage& right, QPoint corner)
{
    int sum = 0;
    for (int y = corner.y(); y < std::min(corner.y() + tile, left.height()); ++y)
        for (int x = corner.x(); x < std::min(corner.x() + tile, left.width()); ++x)
            sum += difference(pixel(left, x, y), pixel(right, x, y));
    return static_cast<double>(sum) / (tile * tile);
}

} // namespace

Result compare(const QImage& one, const QImage& other)
{
    Result result;
    result.sameSize = one.size() == other.size() && !one.isNull();
    if (!result.sameSize) return result;
    const QImage left = one.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage right = other.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < left.height(); y += tile / 2) {
        for (int x = 0; x < left.width(); x += tile / 2) {
            const double here = mean(left, right, {x, y});
            if (here <= result.worst) continue;
            result.worst = here;
            result.where = {x, y};
        }
    }
    return result;
}

bool isSame(const Result& result)
{
    return result.sameSize && result.worst <= mostWorst;
}

} // namespace quellon::Comparison
