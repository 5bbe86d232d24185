#pragma once

#include <QImage>
#include <QPoint>

/// Whether two pictures show the same.
namespace quellon::Comparison {

/// The side of the squares in which pictures are compared, in pixels: about a letter. They overlap by half. A wrong
/// letter is a large difference in one square, wherever it stands; another version of the font renderer, which moves
/// the edges of all letters a little, is a small one in every square.
inline constexpr int tile = 12;
/// The mean difference within a square that still counts as the same. Of two pixels it is that of the channel that
/// differs most, 0 to 255.
inline constexpr double mostWorst = 8.0;

/// How far two pictures are apart.
struct Result {
    bool sameSize = false; ///< Without it nothing else was compared.
    double worst = 0.0;    ///< The mean difference within the square that differs most.
    QPoint where;          ///< Its corner.
};

/// Compares pixel by pixel; pictures without a pixel are never of the same size.
[[nodiscard]] Result compare(const QImage& one, const QImage& other);
[[nodiscard]] bool isSame(const Result& result);

} // namespace quellon::Comparison
