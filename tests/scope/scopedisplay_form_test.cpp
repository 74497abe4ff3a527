// The scope display: decimated curves look like every point drawn, autoscale shows every point,
// cursors read back what the mapping says, curves stored to a file read back through the FILE:
// source's reader, and the picture a Scope call leaves has its sine and yellow clip lines where
// the mapping puts them. A window on a display: "[HIDE]" hides it, "[KEEP]" leaves it as it is
// (also closed by the user), neither shows it again; pictures are taken only of a shown scope.
#include "analysis/curvestore.h"
#include "framework/artifacts.h"
#include "scope/curvefile.h"
#include "scope/gui_scope.h"
#include "scope/gui_scope_form.h"
#include "scope/scopedisplay_form.h"
#include "scope/scopemodel.h"
#include "scope/scopeview.h"
#include "tests/scope/testio.h"
#include "tests/support/modal.h"
#include "tests/support/testhost.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace dv::scope {
namespace {

constexpr double kPi = std::numbers::pi;

// Share of pixels that differ between two images of the same size.
double DifferingShare(const QImage& a, const QImage& b)
{
    long differing = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) differing += a.pixel(x, y) != b.pixel(x, y);
    }
    return static_cast<double>(differing) / (a.width() * a.height());
}

// The plot area, black, with what draw paints in green.
QImage Drawn(const std::function<void(QPainter&)>& draw)
{
    QImage image(kPlotAreaWidth, kPlotAreaHeight, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter p(&image);
    p.setPen(Qt::green);
    draw(p);
    p.end();
    return image;
}

TEST(ScopeDecimation, LooksLikeEveryPointDrawnWithFarFewerStrokes)
{
    // A noisy sine of 300000 points over the plot width: thousands of points per column.
    const std::size_t n = 300000;
    std::vector<double> x(n), y(n);
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, 0.05);
    for (std::size_t i = 0; i < n; ++i) {
        x[i] = static_cast<double>(i) / n;
        y[i] = std::sin(2 * kPi * 5 * x[i]) + noise(random);
    }
    TViewMapping map;
    map.zeroY = kPlotAreaHeight / 2.0;
    map.xStep = 1.0 / (kPlotAreaWidth / 50.0);
    map.yStep = 0.5;
    const QImage everyPoint = Drawn([&](QPainter& p) {
        QPolygonF line;
        for (std::size_t i = 0; i < n; ++i) line << QPointF(map.PixelX(x[i]), map.PixelY(y[i]));
        p.drawPolyline(line);
    });
    const std::vector<TColumnSpan> spans = DecimateMinMax(x, y, map, 0, kPlotAreaWidth);
    EXPECT_LE(spans.size(), static_cast<std::size_t>(kPlotAreaWidth + 2));
    EXPECT_LE(DifferingShare(everyPoint, Drawn([&](QPainter& p) { DrawDecimated(p, spans); })), 0.005);
}

TEST(ScopeDecimation, PointsOutsideTheColumnsStillJoinTheVisibleOnes)
{
    // Three points: one far left, one inside, one far right; the joins keep their true slopes.
    const std::vector<double> x{-1000, 0.5, 1000};
    const std::vector<double> y{0, 1, 0};
    TViewMapping map;
    const std::vector<TColumnSpan> spans = DecimateMinMax(x, y, map, 0, 100);
    ASSERT_EQ(spans.size(), 3u);
    EXPECT_EQ(spans[0].column, -1);
    EXPECT_EQ(spans[2].column, 100);
    EXPECT_DOUBLE_EQ(spans[0].xLast, map.PixelX(-1000));
    EXPECT_DOUBLE_EQ(spans[2].xFirst, map.PixelX(1000));
}

TEST(ScopeDivisions, StepsRunOneTwoFiveOverTheirRanges)
{
    struct TRow {
        std::span<const double> steps;
        double first;
        double last;
    };
    for (const TRow& row : {TRow{XDivisionSteps(), 1e-9, 100}, TRow{YDivisionSteps(), 1e-3, 100}, TRow{FrequencyDivisionSteps(), 1e-3, 1e8}}) {
        EXPECT_DOUBLE_EQ(row.steps.front(), row.first);
        EXPECT_NEAR(row.steps.back() / row.last, 1, 1e-12);
        for (std::size_t i = 1; i < row.steps.size(); ++i) {
            const double ratio = row.steps[i] / row.steps[i - 1];
            EXPECT_NEAR(ratio, i % 3 == 2 ? 2.5 : 2.0, 1e-9) << i;
        }
    }
    EXPECT_EQ(DivisionText(5e-3, "s"), "5 ms/Div");
    EXPECT_EQ(DivisionText(100, "V"), "100 V/Div");
}

TEST(ScopeAutoScale, ShowsEveryPointWithTheSmallestFittingSteps)
{
    struct TRow {
        double x0, x1, y0, y1;
    };
    for (const TRow& r : {TRow{0, 1e-6, -0.002, 0.002}, TRow{0.5, 0.503, 3, 4}, TRow{-10, 60, -150, 20}}) {
        const std::vector<double> x{r.x0, (r.x0 + r.x1) / 2, r.x1};
        const std::vector<double> y{r.y0, r.y1, r.y0};
        const TAutoScale a = AutoScale({{x, y}}, kPlotLeft, kPlotAreaWidth, kPlotAreaHeight, 50);
        ASSERT_TRUE(a.valid);
        TViewMapping map{a.zeroX, a.zeroY, XDivisionSteps()[a.xStep], YDivisionSteps()[a.yStep], 50};
        for (std::size_t i = 0; i < x.size(); ++i) {
            EXPECT_GE(map.PixelX(x[i]), kPlotLeft - 1e-9);
            EXPECT_LT(map.PixelX(x[i]), kPlotLeft + kPlotAreaWidth);
            EXPECT_GE(map.PixelY(y[i]), -1e-9);
            EXPECT_LT(map.PixelY(y[i]), kPlotAreaHeight);
        }
        // One step smaller would not hold the extent.
        if (a.xStep > 0) {
            EXPECT_GT(r.x1 - r.x0, XDivisionSteps()[a.xStep - 1] * (kPlotAreaWidth - 1) / 50.0);
        }
        if (a.yStep > 0) {
            EXPECT_GT(r.y1 - r.y0, YDivisionSteps()[a.yStep - 1] * (kPlotAreaHeight - 1) / 50.0);
        }
    }
    EXPECT_FALSE(AutoScale({{}}, kPlotLeft, kPlotAreaWidth, kPlotAreaHeight, 50).valid);
}

class ScopeWindowTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(ScopeWindow(), nullptr);
        SetArtifactsFolder(dir.path());
    }
    void TearDown() override { SetArtifactsFolder({}); }
    TFormScope& Window() { return *ScopeWindow(); }
    void Run(const QString& command, const QString& special)
    {
        Scope().Command = command;
        Scope().Special = special;
        Scope().Start();
    }
    QString SineFile(int n, double rate, double amplitude, double frequency)
    {
        return testio::WriteSignal(dir.filePath("sine.txt"), n, rate, [=](double t) { return amplitude * std::sin(2 * kPi * frequency * t); });
    }
    test::TTestHost host;
    QTemporaryDir dir;
};

// Curve 1 green, the rest of the defaults, beam at full intensity.
const QString kColours = "[SETCOL:00FF00:00FFFF:FFFF00:FF00FF:000000:000000:FF0000]";

TEST_F(ScopeWindowTest, PictureShowsTheSineOnItsCurveAndYellowClipLines)
{
    // 20 ms of a 100 Hz sine, amplitude 2 V, at 1 ms and 1 V per division (steps 18 and 9).
    const QString sine = SineFile(2000, 100000, 2, 100);
    Run("[CLR],1:[FILE:" + sine + ",SEP:59],[FX:MID:1],[OUT:],[CLIP:0.004:0.013]", kColours + "[SETSCALE:18:9:0:0:0:270]");
    ASSERT_FALSE(Window().LastPicture().isEmpty());
    EXPECT_EQ(Artifacts(), QStringList{Window().LastPicture()});
    const QImage picture(Window().LastPicture());
    ASSERT_FALSE(picture.isNull());
    // Independent of the widget: zero at (40, 270), 50 pixels per division.
    auto px = [](double t) { return 40 + t / 1e-3 * 50; };
    auto py = [](double v) { return 270 - v / 1.0 * 50; };
    int onCurve = 0, probes = 0;
    for (double t = 0.0005; t < 0.02; t += 0.00037) {
        const int x = static_cast<int>(px(t));
        const double v = 2 * std::sin(2 * kPi * 100 * t);
        bool green = false;
        for (int dy = -1; dy <= 1 && !green; ++dy) {
            const QColor c = picture.pixelColor(x, static_cast<int>(std::lround(py(v))) + dy);
            green = c.green() > 200 && c.red() < 60 && c.blue() < 60;
        }
        onCurve += green;
        ++probes;
    }
    EXPECT_EQ(onCurve, probes);
    for (double clip : {0.004, 0.013}) {
        const int x = static_cast<int>(std::floor(px(clip)));
        for (int y : {20, 500}) EXPECT_EQ(picture.pixelColor(x, y), QColor(255, 255, 0)) << clip << " " << y;
    }
}

// 1500 Hz and 4000 Hz of equal amplitude sampled at 10240 Hz: both lines are drawn up to the
// Nyquist frequency, at distances from the DC column in the ratio of their frequencies.
TEST_F(ScopeWindowTest, SpectrumShowsLinesUpToHalfTheSampleRate)
{
    const QString path = testio::WriteSignal(dir.filePath("zwei.txt"), 1024, 10240, [](double t) {
        return std::sin(2 * kPi * 1500 * t) + std::sin(2 * kPi * 4000 * t);
    });
    Run("[CLR],1:[FILE:" + path + ",SEP:59],[FX:FFT:10240:1],[OUT:]", "");
    const QImage picture = Window().Display().Spectrum().Picture();
    const QColor line = ColorOf(ScopeModel().Colors[0]);
    // Columns holding a line taller than a quarter of the picture.
    std::vector<int> columns;
    for (int x = kPlotLeft; x < picture.width(); ++x) {
        int n = 0;
        for (int y = 0; y < picture.height(); ++y) n += picture.pixelColor(x, y) == line;
        if (n > picture.height() / 4) columns.push_back(x);
    }
    ASSERT_EQ(columns.size(), 2u) << (columns.empty() ? -1 : columns[0]);
    const double ratio = (columns[1] - kPlotLeft) / static_cast<double>(columns[0] - kPlotLeft);
    EXPECT_NEAR(ratio, 4000.0 / 1500.0, 0.05);
    EXPECT_GT(columns[0] - kPlotLeft, 20);  // not crowded into the first divisions
}

// The prefix button switches the shown result between the two formats; the next call's tags
// decide again.
TEST_F(ScopeWindowTest, PrefixButtonSwitchesTheShownResult)
{
    const QString path = dir.filePath("konstant.txt");
    WriteCurveFile(path, {{0, 1, 2}, {0.0123, 0.0123, 0.0123}}, ';');
    Run("[CLR],1:[FILE:" + path + ",SEP:59],[FX:MID:1],[OUT:]", "");
    auto& prefix = test::Child<QPushButton>(Window(), "BT_Prefix");
    auto& result = test::Child<QLabel>(Window(), "LB_Result");
    EXPECT_FALSE(prefix.isChecked());
    EXPECT_EQ(result.text(), "0.0123 V");
    prefix.click();
    EXPECT_EQ(result.text(), "12.300 mV");
    prefix.click();
    EXPECT_EQ(result.text(), "0.0123 V");
    Run("[PREFIX],[FX:MID:1],[OUT:]", "");
    EXPECT_TRUE(prefix.isChecked());
    EXPECT_EQ(result.text(), "12.300 mV");
    // An array result has no number to switch.
    Run("[FX:DIFFCUR:1:1:],[OUT:D]", "");
    prefix.click();
    EXPECT_EQ(result.text(), "im Array:");
}

TEST_F(ScopeWindowTest, AutoscaleTagShowsTheWholeCurve)
{
    const QString sine = SineFile(500, 1e6, 0.003, 10000);  // 0.5 ms, 3 mV
    Run("[CLR],[AUTO],1:[FILE:" + sine + ",SEP:59]", "");
    const TViewMapping map = Window().Display().Main().Mapping();
    EXPECT_GE(map.PixelX(0), kPlotLeft - 0.5);
    EXPECT_LT(map.PixelX(499e-6), kPlotLeft + kPlotAreaWidth);
    EXPECT_GE(map.PixelY(0.003), -0.5);
    EXPECT_LT(map.PixelY(-0.003), kPlotAreaHeight);
    EXPECT_GT(map.PixelX(499e-6) - map.PixelX(0), kPlotAreaWidth * 0.4);  // not lost in a corner
}

TEST_F(ScopeWindowTest, CursorsReadTheirDifference)
{
    Run("[CLR],[TX:s]", "[SETSCALE:18:9:0:0:0:270]");  // 1 ms per division from x = 40
    TOsci& osci = Window().Display().Main();
    QTest::mouseClick(&osci, Qt::LeftButton, {}, QPoint(90, 100));
    QTest::mouseClick(&osci, Qt::RightButton, {}, QPoint(240, 100));
    const QString text = test::Child<QLabel>(Window(), "LB_Cursor").text();
    EXPECT_TRUE(text.contains("X1 = 0.001 s")) << text.toStdString();
    EXPECT_TRUE(text.contains("dX = 0.003 s")) << text.toStdString();
    EXPECT_TRUE(text.contains("1/dX = 333.333 Hz")) << text.toStdString();
}

TEST_F(ScopeWindowTest, StoredCurveReadsBackThroughTheFileSource)
{
    const QString sine = SineFile(300, 777, 1.234567890123, 13);
    Run("[CLR],1:[FILE:" + sine + ",SEP:59,FAKX:1:FAKY:3]", "");
    const QString stored = dir.filePath("stored.txt");
    ASSERT_TRUE(Window().Display().StoreCurve(1, stored));
    const TCurvePoints back = ReadCurveFile(stored, ';');
    const auto& store = analysis::ScopeStore();
    ASSERT_EQ(back.y.size(), store.Y(1).size());
    for (std::size_t i = 0; i < back.y.size(); ++i) {
        EXPECT_EQ(back.x[i], store.X(1)[i]);
        EXPECT_EQ(back.y[i], store.Y(1)[i]);
    }
    EXPECT_FALSE(Window().Display().StoreCurve(2, dir.filePath("empty.txt")));
}

TEST_F(ScopeWindowTest, PrintsToPdf)
{
    const QString pdf = dir.filePath("scope.pdf");
    ASSERT_TRUE(Window().Display().PrintToPdf(pdf));
    QFile file(pdf);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.read(5) == "%PDF-");
}

TEST_F(ScopeWindowTest, WeiterBlinksBetweenItsTwoFontsAndEndsTheWait)
{
    Run("[WAIT]", "");
    auto& weiter = test::Child<QPushButton>(Window(), "BT_Weiter");
    auto* timer = Window().findChild<QTimer*>();
    ASSERT_NE(timer, nullptr);
    EXPECT_TRUE(timer->isActive());
    EXPECT_EQ(timer->interval(), 1000);
    EXPECT_TRUE(weiter.isEnabled());
    EXPECT_EQ(weiter.font().pointSize(), 8);
    QSignalSpy tick(timer, &QTimer::timeout);
    ASSERT_TRUE(tick.wait(3000));
    EXPECT_EQ(weiter.font().pointSize(), 10);
    EXPECT_TRUE(weiter.font().bold());
    EXPECT_EQ(weiter.palette().color(QPalette::ButtonText), QColor(0, 0x80, 0));
    QTest::mouseClick(&weiter, Qt::LeftButton);
    EXPECT_FALSE(timer->isActive());
    EXPECT_EQ(weiter.font().pointSize(), 8);
    EXPECT_FALSE(weiter.font().bold());
    EXPECT_FALSE(weiter.isEnabled());
    EXPECT_TRUE(Scope().ContinueEvent.StopRequested());
}

TEST(ScopeLiveWindow, HideHidesKeepLeavesAsItIsAndPicturesOnlyWhenShown)
{
    test::TTestHost host;
    QTemporaryDir dir;
    SetArtifactsFolder(dir.path());
    auto run = [](const QString& command) {
        Scope().Command = command;
        Scope().Special.clear();
        Scope().Start();
    };
    {
        TFormScope live(true);
        struct Row {
            const char* command;
            bool close;  // the user closes the window before the call
            bool visible;
            bool picture;
        };
        const Row rows[] = {
            {"[CLR]", false, true, true},   {"[KEEP]", false, true, true},  {"[HIDE]", false, false, false},
            {"[KEEP]", false, false, false}, {"[CLR]", false, true, true},   {"[KEEP]", true, false, false},
            {"[HIDE]", false, false, false}, {"", false, true, true},
        };
        int pictures = 0;
        for (const Row& r : rows) {
            if (r.close) {
                live.close();
                ASSERT_FALSE(live.isVisible());
            }
            run(r.command);
            pictures += r.picture;
            EXPECT_EQ(live.isVisible(), r.visible) << r.command;
            EXPECT_EQ(ScopeModel().Visible, r.visible) << r.command;
            EXPECT_EQ(live.LastPicture().isEmpty(), !r.picture) << r.command;
            EXPECT_EQ(Artifacts().size(), pictures) << r.command;
        }
        // Numbered on from the first picture of the folder.
        EXPECT_EQ(Artifacts(), (QStringList{dir.filePath("scope-001.png"), dir.filePath("scope-002.png"), dir.filePath("scope-003.png"),
                                            dir.filePath("scope-004.png")}));
    }
    // The library's window takes the runs again once the second window is gone.
    run("[CLR]");
    ASSERT_NE(ScopeWindow(), nullptr);
    EXPECT_FALSE(ScopeWindow()->LastPicture().isEmpty());
    SetArtifactsFolder({});
}

}  // namespace
}  // namespace dv::scope
