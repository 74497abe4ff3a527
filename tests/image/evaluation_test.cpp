// The image arithmetic: linear light, rect texts and clipping, coverage, differences and the
// search for a moved picture; and ImageEval against results computed independently from the
// written rules (numpy, by make_imageeval_refs.py) on the pictures in data/imageeval: content
// moved with and without noise; areas inside, partly outside, the whole picture, tiny, along the
// border; tolerances 0 to 16; RMS, worst pixel and coverage.
#include "image/evaluation.h"

#include "image/bitmapfile.h"
#include "image/currentimage.h"
#include "image/gui_imageevaluation.h"
#include "image/linearlight.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iomanip>
#include <map>
#include <optional>
#include <sstream>

namespace dv::image {
namespace {

// A scene with structure at every scale the coarse search looks at: smooth waves plus a few
// sharp-edged blocks, defined everywhere so that a moved copy has no empty border.
QRgb Scene(int x, int y)
{
    const double wave = 0.5 + 0.25 * std::sin(x / 23.0) * std::cos(y / 17.0) + 0.2 * std::sin((x + 2 * y) / 41.0);
    const bool block = ((x / 37) * 7 + (y / 29) * 3) % 5 == 0;
    const int v = static_cast<int>(255 * std::clamp(block ? 1.0 - wave : wave, 0.0, 1.0));
    return qRgb(v, (v * 3 + x) % 256, (255 - v + y) % 256);
}

// The scene seen with its content moved by shift.
QImage SceneImage(QSize size, QPoint shift = {})
{
    QImage image(size, QImage::Format_RGB888);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) image.setPixel(x, y, Scene(x - shift.x(), y - shift.y()));
    }
    return image;
}

QImage Uniform(QSize size, QRgb colour)
{
    QImage image(size, QImage::Format_RGB888);
    image.fill(colour);
    return image;
}

double SrgbToLinear(int v) { return v < 11 ? v / 3294.6 : std::pow((v / 255.0 + 0.055) / 1.055, 2.4); }

TEST(LinearLightTest, TableFollowsTheDecodingCurveAndEncodingInvertsIt)
{
    EXPECT_DOUBLE_EQ(Linear(0), 0.0);
    EXPECT_DOUBLE_EQ(Linear(10), 10 / 3294.6);
    EXPECT_DOUBLE_EQ(Linear(11), std::pow((11 / 255.0 + 0.055) / 1.055, 2.4));
    EXPECT_DOUBLE_EQ(Linear(255), 1.0);
    for (int v = 0; v < 256; ++v) {
        EXPECT_EQ(EncodeLinear(Linear(static_cast<std::uint8_t>(v))), v);
        if (v > 0) {
            EXPECT_GT(Linear(static_cast<std::uint8_t>(v)), Linear(static_cast<std::uint8_t>(v - 1)));
        }
    }
    EXPECT_EQ(EncodeLinear(-1.0), 0);
    EXPECT_EQ(EncodeLinear(7.0), 255);
}

TEST(AreaTest, RectTextsAndClipping)
{
    const QSize size(100, 50);
    struct Row {
        const char* text;
        QRect area;
    };
    const Row rows[] = {
        {"[10, 20, 30, 40]", QRect(10, 20, 30, 40)},  {"{10}{20}{30}{40}", QRect(10, 20, 30, 40)},
        {"[]", QRect(0, 0, 100, 50)},                  {"[1, 2, 3]", QRect(0, 0, 100, 50)},
        {"[1, 2, 3, 4, 5]", QRect(0, 0, 100, 50)},     {"", QRect(0, 0, 100, 50)},
        {"[-5, -5, 20, 20]", QRect(-5, -5, 20, 20)},  {"[10,20,30,40]", QRect(10, 20, 30, 40)},
        {"[10.7, 20, 30, 40]", QRect(10, 20, 30, 40)},  {"[1.5E1, 2e1, 3E+1, 40]", QRect(15, 20, 30, 40)},
    };
    for (const Row& r : rows) EXPECT_EQ(AreaOfText(r.text, size), r.area) << r.text;
    // Numbers beyond what a picture can have: the corners are kept within a billion pixels, so
    // that the area still reaches as far as it can and clipping gives what is visible.
    const std::pair<const char*, QRect> clipped[] = {
        {"{0}{0}{10000000000}{100}", QRect(0, 0, 100, 50)},
        {"{-10000000000}{0}{20000000000}{50}", QRect(0, 0, 100, 50)},
        {"[-1E20, -1E20, 1E20, 1E20]", QRect()},  // its right and bottom edges are 0
        {"[1E20, 0, 5, 5]", QRect()},
        {"[-2147483648, -2147483648, 2147483647, 2147483647]", QRect()},
        {"[2000000000, 0, 2000000000, 10]", QRect()},
        {"[-2000000000, 10, 2000000050, 10]", QRect(0, 10, 50, 10)},
        {"[-5, -5, 20, 20]", QRect(0, 0, 15, 15)},
        {"[90, 40, 20, 20]", QRect(90, 40, 10, 10)},
        {"[-10, 10, 200, 5]", QRect(0, 10, 100, 5)},
        {"[120, 0, 10, 10]", QRect()},
        {"[0, -30, 10, 10]", QRect()},
    };
    for (const auto& [text, visible] : clipped) {
        const QRect c = ClipTo(AreaOfText(text, size), size);
        EXPECT_EQ(c.isEmpty(), visible.isEmpty()) << text;
        if (!visible.isEmpty()) {
            EXPECT_EQ(c, visible) << text;
        }
    }
}

TEST(CoverageTest, UniformAreaIsZeroForEveryGreyLevelAndSize)
{
    // The mean of n equal values, summed and divided, can land an ulp above the value, which would
    // make every pixel "darker than the mean".
    // Every level at small and mid sizes; the full test picture's size at every 17th level.
    const std::pair<QSize, int> sizes[] = {{{1, 1}, 1}, {{3, 2}, 1}, {{7, 5}, 1}, {{64, 48}, 1}, {{200, 150}, 1}, {{640, 480}, 17}};
    for (const auto& [size, step] : sizes) {
        QImage image(size, QImage::Format_RGB888);
        for (int level = 0; level < 256; level += step) {
            image.fill(qRgb(level, level, level));
            EXPECT_EQ(Coverage(image, image.rect()), 0.0) << "grey " << level << " " << size.width() << "x" << size.height();
        }
    }
    for (QRgb colour : {qRgb(90, 120, 30), qRgb(255, 0, 1), qRgb(13, 200, 77)}) {
        EXPECT_EQ(Coverage(Uniform({640, 480}, colour), QRect(-5, -5, 700, 500)), 0.0) << qRed(colour);
    }
}

TEST(CoverageTest, DarkShareOfAClippedArea)
{
    // Left quarter black: a whole-image area is 25 % dark; an area hanging off the top-left corner
    // is clipped to (0, 0, 20, 20), half of which is black.
    QImage image = Uniform({40, 30}, qRgb(200, 200, 200));
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 10; ++x) image.setPixel(x, y, qRgb(0, 0, 0));
    }
    EXPECT_DOUBLE_EQ(Coverage(image, QRect(0, 0, 40, 30)), 25.0);
    EXPECT_DOUBLE_EQ(Coverage(image, QRect(-10, -10, 30, 30)), 50.0);
    EXPECT_EQ(Coverage(image, QRect(50, 50, 10, 10)), 0.0);
}

TEST(DifferenceTest, OnePixelDefectRmsAgainstWorstPixel)
{
    const int grey = 128;
    const QImage reference = Uniform({100, 80}, qRgb(grey, grey, grey));
    QImage current = reference;
    current.setPixel(37, 41, qRgb(255, 255, 255));
    const QRect all(0, 0, 100, 80);
    const double step = 1.0 - SrgbToLinear(grey);  // every channel of the one pixel differs by this
    EXPECT_NEAR(PixelDifference(reference, current, all, {}, TDifferenceKind::Rms), step / std::sqrt(100.0 * 80), 1e-15);
    EXPECT_NEAR(PixelDifference(reference, current, all, {}, TDifferenceKind::WorstPixel), step, 1e-15);
    // An area that leaves the defect out sees no difference; one with no pixels counts as all different.
    EXPECT_EQ(PixelDifference(reference, current, QRect(0, 0, 30, 30), {}, TDifferenceKind::WorstPixel), 0.0);
    EXPECT_EQ(PixelDifference(reference, current, QRect(200, 0, 30, 30), {}, TDifferenceKind::Rms), 1.0);
}

TEST(DifferenceTest, AreaPartlyOutsideIsClippedInEachImage)
{
    // Black reference, current white only in column 0: an area starting left of the images is
    // clipped to start at column 0 in both, so the white column is inside.
    const QImage reference = Uniform({20, 10}, qRgb(0, 0, 0));
    QImage current = reference;
    for (int y = 0; y < 10; ++y) current.setPixel(0, y, qRgb(255, 255, 255));
    EXPECT_NEAR(PixelDifference(reference, current, QRect(-5, 0, 10, 10), {}, TDifferenceKind::Rms), std::sqrt(1.0 / 5), 1e-15);
    EXPECT_EQ(PixelDifference(reference, current, QRect(1, 0, 10, 10), {}, TDifferenceKind::Rms), 0.0);
}

TEST(CompareTest, CoarseAndFineSearchFindKnownShifts)
{
    struct Row {
        QPoint shift;      // how far the current image's content is moved against the reference
        int displacement;  // the search radius
        QPoint expected;   // the offset the comparison reports
        bool exact;        // whether the moved copy matches there without any difference
    };
    const Row rows[] = {
        {{0, 0}, 0, {0, 0}, true},     {{5, -3}, 16, {5, -3}, true},  {{-12, 7}, 16, {-12, 7}, true},
        {{1, 1}, 1, {1, 1}, true},     {{9, 0}, 10, {9, 0}, true},    {{20, 0}, 16, {16, 0}, false},
        {{5, -3}, 0, {0, 0}, false},
    };
    const QSize size(240, 180);
    // The area keeps a margin for the search to move it in (tolerance plus the largest block).
    const QRect area(32, 32, 176, 116);
    const QImage reference = SceneImage(size);
    for (const Row& r : rows) {
        const QImage current = SceneImage(size, r.shift);
        const TComparison found = Compare(reference, current, area, r.displacement, TDifferenceKind::Rms);
        EXPECT_EQ(found.offset, r.expected) << r.shift.x() << "," << r.shift.y() << " d=" << r.displacement;
        if (r.exact) EXPECT_EQ(found.Result(), 100.0) << r.shift.x() << "," << r.shift.y();
        else EXPECT_LT(found.Result(), 100.0);
    }
}

TEST(CompareTest, WholePictureAreaFollowsShiftsTowardTheBottomRightOnly)
{
    // Each rectangle is clipped to its picture and compared from its top-left corner. With the
    // whole picture as the area, moving the current image's rectangle right or down leaves its
    // corner inside and finds content moved that way; moving it left or up is clipped back to
    // (0, 0), so content moved that way is never found. A Rect inside the border finds both.
    // An offset left or up of the shift is clipped to it as well and scores alike; the first one
    // tried is reported. Tolerances 1 and 2 keep the coarse search out of it (none, or one step of 2).
    const QSize size(240, 180);
    const QImage reference = SceneImage(size);
    const QRect whole(QPoint(0, 0), size);
    const QRect inside(32, 32, 176, 116);
    struct Row {
        QPoint shift;
        int displacement;
        QRect area;
        std::optional<QPoint> offset;  // where the content is found; none: nowhere
    };
    const Row rows[] = {
        {{1, 0}, 1, whole, QPoint(1, -1)},  {{0, 1}, 1, whole, QPoint(-1, 1)},  {{1, 1}, 1, whole, QPoint(1, 1)},
        {{2, 1}, 2, whole, QPoint(2, 1)},   {{-1, 0}, 1, whole, {}},            {{0, -1}, 1, whole, {}},
        {{-1, 1}, 1, whole, {}},            {{-2, -1}, 2, whole, {}},           {{-1, 0}, 1, inside, QPoint(-1, 0)},
        {{0, -1}, 1, inside, QPoint(0, -1)}, {{-2, -1}, 2, inside, QPoint(-2, -1)},
    };
    for (const Row& r : rows) {
        const TComparison found = Compare(reference, SceneImage(size, r.shift), r.area, r.displacement, TDifferenceKind::Rms);
        const std::string row = std::to_string(r.shift.x()) + "," + std::to_string(r.shift.y()) + (r.area == whole ? " whole" : " inside");
        if (r.offset) {
            EXPECT_EQ(found.Result(), 100.0) << row;
            EXPECT_EQ(found.offset, *r.offset) << row;
        } else {
            EXPECT_LT(found.Result(), 95.0) << row;
        }
    }
}

TEST(CompareTest, GridsWithoutInnerCellsLeaveTheCoarseStepWhereItIs)
{
    // Under 3 rows or columns a grid has no inner cells. The sum over none would be 0, which
    // beats the start value 1 at the first offset tried, (-1, -1), and would move the
    // displacement on no evidence; such grids count as entirely different instead.
    const auto grid = [](int rows, int cols, double v) { return TBlockGrid{rows, cols, std::vector<double>(rows * cols * 3, v)}; };
    for (const auto& [rows, cols] : {std::pair{2, 5}, {5, 2}, {1, 1}, {2, 2}}) {
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) EXPECT_EQ(BlockDifference(grid(rows, cols, 0.2), grid(rows, cols, 0.2), dx, dy), 1.0) << rows << "x" << cols;
        }
    }
    // One inner cell: its three channels over the 3 x 3 grid's size.
    EXPECT_DOUBLE_EQ(BlockDifference(grid(3, 3, 0.2), grid(3, 3, 0.5), 0, 0), std::sqrt(3 * 0.09) / std::sqrt(27.0));
    // A 4 x 4 picture at tolerance 2: n = 5, one step with s = 2 on grids of 2 x 2 cells.
    const QImage tiny = SceneImage({4, 4});
    EXPECT_EQ(CoarseSearch(tiny, tiny, QRect(0, 0, 4, 4), 2), QPoint(0, 0));
}

TEST(CompareTest, DisplacementZeroTriesOnlyTheOriginAndLogsIt)
{
    const QImage reference = SceneImage({60, 40});
    QStringList lines;
    const TComparison found = Compare(reference, reference, QRect(0, 0, 60, 40), 0, TDifferenceKind::Rms,
                                      [&](const QString& line) { lines << line; });
    EXPECT_EQ(lines, QStringList{"0,0 0.00%"});
    EXPECT_EQ(found.Result(), 100.0);
    EXPECT_EQ(CoarseSearch(reference, SceneImage({60, 40}, {3, 3}), QRect(0, 0, 60, 40), 0), QPoint(0, 0));
}

TEST(CompareTest, FineSearchStaysInsideTheToleranceAndLogsEachOffset)
{
    const QImage reference = SceneImage({160, 120});
    QStringList lines;
    const TComparison found = Compare(reference, SceneImage({160, 120}, {5, 0}), QRect(24, 24, 112, 72), 4,
                                      TDifferenceKind::Rms, [&](const QString& line) { lines << line; });
    // The shift 5 lies beyond the tolerance 4: the search ends at its edge, where of the offsets
    // around (4, 0) only x in 3..4 are tried.
    EXPECT_EQ(found.offset, QPoint(4, 0));
    EXPECT_GT(found.difference, 0.0);
    ASSERT_EQ(lines.size(), 6) << lines.join(" | ").toStdString();
    EXPECT_TRUE(lines[0].startsWith("3,-1 ")) << lines[0].toStdString();
    EXPECT_TRUE(lines.last().startsWith("4,1 ")) << lines.last().toStdString();
    for (const QString& line : lines) EXPECT_TRUE(line.endsWith('%')) << line.toStdString();
}

const QString kFolder = QStringLiteral(DV_TEST_DATA_DIR "/image/data/imageeval/");

struct TRefRow {
    std::string reference;
    std::string current;
    std::string rect;  // "left,top,width,height" or "-"
    int displacement = 0;
    std::string mode;  // rms, max or coverage
    double result = 0;
    QPoint offset;
};

std::vector<TRefRow> LoadRows()
{
    std::ifstream in((kFolder + "results.txt").toStdString());
    std::vector<TRefRow> rows;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream fields(line);
        TRefRow r;
        int dx = 0, dy = 0;
        fields >> r.reference >> r.current >> r.rect >> r.displacement >> r.mode >> r.result >> dx >> dy;
        r.offset = QPoint(dx, dy);
        if (fields) rows.push_back(r);
        else ADD_FAILURE() << "unreadable row: " << line;
    }
    return rows;
}

// The Rect parameter as a script hands it over; "-" none, the whole picture.
QString RectParam(const std::string& rect)
{
    return rect == "-" ? QStringLiteral("[]") : '[' + QString::fromStdString(rect).replace(',', ", ") + ']';
}

TEST(ImageEvalReferenceTest, ResultsAndOffsetsMatchTheIndependentComputation)
{
    const std::vector<TRefRow> rows = LoadRows();
    ASSERT_GE(rows.size(), 150u);
    test::TTestHost host;
    host.Declare("Ergebnis", g_NumberType);
    std::map<std::string, QImage> pictures;
    const auto picture = [&pictures](const std::string& name) -> const QImage& {
        auto [it, added] = pictures.try_emplace(name);
        if (added) it->second = image::ReadBitmap(kFolder + QString::fromStdString(name));
        return it->second;
    };
    for (const TRefRow& r : rows) {
        const QImage& reference = picture(r.reference);
        const QImage& current = picture(r.current);
        CurrentImage::replace(current);
        TParamList params;
        params.AddString("Result", "Ergebnis");
        params.AddString("File", kFolder + QString::fromStdString(r.reference));
        params.AddString("Rect", RectParam(r.rect));
        params.AddString("Displacement", QString::number(r.displacement));
        params.AddString("Coverage", r.mode == "coverage" ? "True" : "False");
        params.AddString("CompareMax", r.mode == "max" ? "True" : "False");
        TDVCmdImageEvaluation command(&host);
        command.Run(params);
        const double result = static_cast<double>(static_cast<const TNumberValue*>(host.Value("Ergebnis"))->GetVal());
        std::ostringstream row;
        row << std::setprecision(17) << r.current << " against " << r.reference << " rect " << r.rect << " d " << r.displacement << " " << r.mode
            << ": expected " << r.result << ", got " << result;
        // Both sides add the same squares in another order: they differ by about 1e-13.
        EXPECT_NEAR(result, r.result, 1e-9) << row.str();
        if (r.mode == "coverage") continue;
        const auto kind = r.mode == "max" ? image::TDifferenceKind::WorstPixel : image::TDifferenceKind::Rms;
        const QPoint offset = image::Compare(reference, current, image::AreaOfText(RectParam(r.rect), current.size()),
                                             r.displacement, kind).offset;
        EXPECT_EQ(offset, r.offset) << row.str() << " at " << offset.x() << "," << offset.y();
    }
}

}  // namespace
}  // namespace dv::image
