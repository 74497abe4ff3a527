#pragma once
// How ImageEval judges a picture: coverage of an area, and the comparison of the current image
// with a reference (a coarse search on block means, a fine search on pixels, RMS or worst-pixel
// difference in linear light). Works on QImage::Format_RGB888 images; no store, no GUI.
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace dv::image {

// The four numbers (left, top, width, height) of a Rect text such as "[10, 20, 30, 40]" or
// "{10}{20}{30}{40}"; nothing when the text holds other than exactly 4 numbers. Fractions are cut
// off; corners farther than a billion pixels out are moved in to that distance.
std::optional<QRect> RectOfText(const QString& text);
// The area a Rect text names in an image of that size: its 4 numbers, else the whole image.
QRect AreaOfText(const QString& text, const QSize& imageSize);
// r cut to an image of that size: negative coordinates become 0, right and bottom are cut.
QRect ClipTo(const QRect& r, const QSize& size);

// Percentage of the area (clipped) whose linear brightness is below the area's mean; 0 when empty.
double Coverage(const QImage& image, const QRect& area);

enum class TDifferenceKind { Rms, WorstPixel };

// Difference 0..1 in linear light between the reference's area and the current image's area
// moved by offset, each clipped to its image and compared from its top-left corner over the size
// both have. An area with no pixels left counts as entirely different (1).
double PixelDifference(const QImage& reference, const QImage& current, const QRect& area, QPoint offset,
                       TDifferenceKind kind);

// The block means of an image's rectangle: ceil(h/s) x ceil(w/s) cells of three channels, each
// the sum of the linear values in the block divided by s * s.
struct TBlockGrid {
    int rows = 0;
    int cols = 0;
    std::vector<double> cells;  // row-major, three channels a cell
    const double* Cell(int row, int col) const { return cells.data() + (static_cast<qsizetype>(row) * cols + col) * 3; }
};
TBlockGrid BlockGrid(const QImage& image, const QRect& rect, int s);
// Difference of two grids with b moved by (dx, dy) cells, over the inner cells of the smaller
// size; 1 when there are no inner cells.
double BlockDifference(const TBlockGrid& a, const TBlockGrid& b, int dx, int dy);

// The displacement of the current image against the reference that the coarse search finds,
// each component within [-maxShift, maxShift].
QPoint CoarseSearch(const QImage& reference, const QImage& current, const QRect& area, int maxShift);

struct TComparison {
    double difference = 1.0;  // the smallest difference found, 0..1
    QPoint offset;            // where it was found
    double Result() const { return 100.0 - 100.0 * difference; }
};
// Receives one line per offset the fine search tried.
using TTrace = std::function<void(const QString& line)>;
// The coarse search, then the fine search of the 9 pixel offsets around its displacement.
TComparison Compare(const QImage& reference, const QImage& current, const QRect& area, int maxShift,
                    TDifferenceKind kind, const TTrace& trace = {});

}  // namespace dv::image
