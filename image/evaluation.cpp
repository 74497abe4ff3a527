#include "image/evaluation.h"

#include "image/linearlight.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace dv::image {

namespace {

// (T(a) - T(b))^2 for every pair of bytes: one lookup a channel in the fine search.
const std::vector<double>& SquaredDifferences()
{
    static const std::vector<double> table = [] {
        std::vector<double> q(256 * 256);
        const auto& t = LinearLight();
        for (int a = 0; a < 256; ++a) {
            for (int b = 0; b < 256; ++b) q[a * 256 + b] = (t[a] - t[b]) * (t[a] - t[b]);
        }
        return q;
    }();
    return table;
}

const std::uint8_t* Pixel(const QImage& image, int x, int y) { return image.constScanLine(y) + 3 * x; }

int CeilDiv(int a, int b) { return (a + b - 1) / b; }

constexpr double kFarthest = 1e9;

}  // namespace

std::optional<QRect> RectOfText(const QString& text)
{
    // "," separates the numbers of an array literal, so only "." is a decimal point here; large
    // numbers come as "1E20".
    static const QRegularExpression number(QStringLiteral("-?\\d+(?:\\.\\d+)?(?:[eE][-+]?\\d+)?"));
    std::vector<double> values;
    for (auto it = number.globalMatch(text); it.hasNext();) values.push_back(std::trunc(it.next().captured().toDouble()));
    if (values.size() != 4) return std::nullopt;
    // No picture is a billion pixels wide: corners beyond that are moved to it, so that the
    // area reaches as far as it can and all the sums below stay in int.
    const auto limit = [](double v) { return static_cast<int>(std::clamp(v, -kFarthest, kFarthest)); };
    const int left = limit(values[0]);
    const int top = limit(values[1]);
    return QRect(left, top, limit(values[0] + values[2]) - left, limit(values[1] + values[3]) - top);
}

QRect AreaOfText(const QString& text, const QSize& imageSize)
{
    return RectOfText(text).value_or(QRect(QPoint(0, 0), imageSize));
}

QRect ClipTo(const QRect& r, const QSize& size)
{
    const qint64 left = std::max<qint64>(0, r.x());
    const qint64 top = std::max<qint64>(0, r.y());
    const qint64 right = std::min<qint64>(qint64{r.x()} + r.width(), size.width());
    const qint64 bottom = std::min<qint64>(qint64{r.y()} + r.height(), size.height());
    return QRect(static_cast<int>(left), static_cast<int>(top), static_cast<int>(std::max<qint64>(0, right - left)),
                 static_cast<int>(std::max<qint64>(0, bottom - top)));
}

double Coverage(const QImage& image, const QRect& area)
{
    const QRect r = ClipTo(area, image.size());
    if (r.isEmpty()) return 0.0;
    const auto& t = LinearLight();
    const auto lightAt = [&t](const std::uint8_t* p) { return t[p[0]] + t[p[1]] + t[p[2]]; };
    // Neumaier's compensated sum: a plain sum of a million values drifts by many ulps, and the
    // mean of a uniform area must be the value itself.
    double sum = 0;
    double compensation = 0;
    double lowest = lightAt(Pixel(image, r.x(), r.y()));
    double highest = lowest;
    for (int y = r.y(); y < r.y() + r.height(); ++y) {
        const std::uint8_t* p = Pixel(image, r.x(), y);
        for (int x = 0; x < r.width(); ++x, p += 3) {
            const double l = lightAt(p);
            const double next = sum + l;
            compensation += std::abs(sum) >= std::abs(l) ? (sum - next) + l : (l - next) + sum;
            sum = next;
            lowest = std::min(lowest, l);
            highest = std::max(highest, l);
        }
    }
    const double pixels = static_cast<double>(r.width()) * r.height();
    // Dividing still rounds; the mean of values lies between them, so a uniform area gets its own
    // value back and no pixel counts as darker.
    const double mean = std::clamp((sum + compensation) / pixels, lowest, highest);
    qsizetype darker = 0;
    for (int y = r.y(); y < r.y() + r.height(); ++y) {
        const std::uint8_t* p = Pixel(image, r.x(), y);
        for (int x = 0; x < r.width(); ++x, p += 3) darker += lightAt(p) < mean ? 1 : 0;
    }
    return 100.0 * static_cast<double>(darker) / pixels;
}

double PixelDifference(const QImage& reference, const QImage& current, const QRect& area, QPoint offset,
                       TDifferenceKind kind)
{
    const QRect a = ClipTo(area, reference.size());
    const QRect b = ClipTo(area.translated(offset), current.size());
    const int width = std::min(a.width(), b.width());
    const int height = std::min(a.height(), b.height());
    if (width <= 0 || height <= 0) return 1.0;
    const double* q = SquaredDifferences().data();
    double sum = 0;
    double worst = 0;
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* pa = Pixel(reference, a.x(), a.y() + y);
        const std::uint8_t* pb = Pixel(current, b.x(), b.y() + y);
        if (kind == TDifferenceKind::Rms) {
            double row = 0;
            for (int k = 0; k < 3 * width; ++k) row += q[pa[k] * 256 + pb[k]];
            sum += row;
        } else {
            for (int x = 0; x < width; ++x, pa += 3, pb += 3) {
                worst = std::max(worst, q[pa[0] * 256 + pb[0]] + q[pa[1] * 256 + pb[1]] + q[pa[2] * 256 + pb[2]]);
            }
        }
    }
    if (kind == TDifferenceKind::WorstPixel) return std::sqrt(worst) / std::sqrt(3.0);
    return std::sqrt(sum) / std::sqrt(static_cast<double>(width) * height * 3);
}

TBlockGrid BlockGrid(const QImage& image, const QRect& rect, int s)
{
    TBlockGrid grid;
    grid.rows = CeilDiv(rect.height(), s);
    grid.cols = CeilDiv(rect.width(), s);
    grid.cells.assign(static_cast<std::size_t>(grid.rows) * grid.cols * 3, 0.0);
    const auto& t = LinearLight();
    for (int y = 0; y < rect.height(); ++y) {
        double* row = grid.cells.data() + static_cast<std::size_t>(y / s) * grid.cols * 3;
        const std::uint8_t* p = Pixel(image, rect.x(), rect.y() + y);
        for (int x = 0; x < rect.width(); ++x, p += 3) {
            double* cell = row + (x / s) * 3;
            cell[0] += t[p[0]];
            cell[1] += t[p[1]];
            cell[2] += t[p[2]];
        }
    }
    const double blockSize = static_cast<double>(s) * s;
    for (double& v : grid.cells) v /= blockSize;
    return grid;
}

double BlockDifference(const TBlockGrid& a, const TBlockGrid& b, int dx, int dy)
{
    const int h = std::min(a.rows, b.rows);
    const int w = std::min(a.cols, b.cols);
    if (h < 3 || w < 3) return 1.0;
    double sum = 0;
    for (int i = 1; i < h - 1; ++i) {
        for (int j = 1; j < w - 1; ++j) {
            const double* ca = a.Cell(i, j);
            const double* cb = b.Cell(i + dy, j + dx);
            for (int c = 0; c < 3; ++c) sum += (ca[c] - cb[c]) * (ca[c] - cb[c]);
        }
    }
    return std::sqrt(sum) / std::sqrt(static_cast<double>(h) * w * 3);
}

QPoint CoarseSearch(const QImage& reference, const QImage& current, const QRect& area, int maxShift)
{
    const int d = std::max(0, maxShift);
    int n = std::min(2 * d, std::max(reference.width(), reference.height())) + 1;
    QPoint shift(0, 0);
    while (n > 4) {
        const int s = CeilDiv(n, 3);
        // The reference keeps the area where it is; the current image's area follows the
        // displacement found so far, so each step refines it.
        const TBlockGrid a = BlockGrid(reference, ClipTo(area.adjusted(-s, -s, s, s), reference.size()), s);
        const TBlockGrid b = BlockGrid(current, ClipTo(area.translated(shift).adjusted(-s, -s, s, s), current.size()), s);
        double best = 1.0;
        QPoint step(0, 0);
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                const double difference = BlockDifference(a, b, dx, dy);
                if (difference < best) {
                    best = difference;
                    step = QPoint(dx, dy);
                }
            }
        }
        shift += s * step;
        n = CeilDiv(2 * n, 3);
        shift = QPoint(std::clamp(shift.x(), -d, d), std::clamp(shift.y(), -d, d));
    }
    return shift;
}

TComparison Compare(const QImage& reference, const QImage& current, const QRect& area, int maxShift,
                    TDifferenceKind kind, const TTrace& trace)
{
    const int d = std::max(0, maxShift);
    const QPoint centre = CoarseSearch(reference, current, area, d);
    TComparison best;
    best.offset = centre;
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const QPoint offset = centre + QPoint(dx, dy);
            if (std::abs(offset.x()) > d || std::abs(offset.y()) > d) continue;
            const double difference = PixelDifference(reference, current, area, offset, kind);
            if (trace) trace(QString::asprintf("%d,%d %.2f%%", offset.x(), offset.y(), 100.0 * difference));
            if (difference < best.difference) {
                best.difference = difference;
                best.offset = offset;
            }
        }
    }
    return best;
}

}  // namespace dv::image
