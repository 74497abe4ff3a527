// The curve measurements: numbers against make_measure_refs.py's data, hand-worked edge cases and
// kept quirks with the crosses they leave, the clip marks and the store; the Butterworth filters
// against scipy, alone and over the scope's curves.
#include "analysis/curvefunctions.h"
#include "analysis/curvefunctions_filters.h"
#include "analysis/iirfilter.h"
#include "framework/exceptions.h"
#include "scope/envelopefile.h"
#include "tests/analysis/refdata.h"
#include "tests/scope/testio.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <tuple>

namespace dv::analysis::test {
namespace {

using ::testing::NanSensitiveDoubleNear;

class CurveFunctionsTest : public ScopeCurveTest {
protected:
    static TCurveStore& Store() { return ScopeStore(); }
    static void SetCurve(int c, const std::vector<double>& y)  // at times 0, 1, 2, ...
    {
        std::vector<double> x(y.size());
        for (std::size_t i = 0; i < x.size(); ++i) x[i] = double(i);
        Store().Assign(c, x, y);
    }
};

// Sums of a few thousand samples, pairwise in numpy and in eight partial sums here, stay within
// n * epsilon of the exact sum: 1e-11. Edge times interpolate straight ramps exactly up to the
// rounding of the times; differences of a few ms between times near 0.1 s keep 13 digits: 1e-9.
TEST_F(CurveFunctionsTest, LevelsAndEdgesMatchTheReference)
{
    auto near = [](double e, double rel) { return ::testing::DoubleNear(e, rel * std::abs(e)); };
    for (const TRefCase& c : LoadRefCases("measure_levels.txt")) {
        SCOPED_TRACE(c.name);
        Store().Assign(1, c.Vector("x"), c.Vector("y"));
        const double off = c.Number("rms_offset");
        EXPECT_THAT(KurvenMittelwert(1), near(c.Number("mean"), 1e-11));
        EXPECT_THAT(KurvenEffektivwert(1, off, 1), near(c.Number("rms"), 1e-11));
        EXPECT_THAT(KurvenOffset(1), near(c.Number("offset"), 1e-11));
        EXPECT_THAT(KurvenEffektivwert(1, off, 2), near(c.Number("rms_whole_periods"), 1e-11));
        EXPECT_NEAR(KurvenOffset(1), c.Number("dc"), 2e-3);  // the DC part the mean misses
    }
    for (const TRefCase& c : LoadRefCases("measure_pulses.txt")) {
        SCOPED_TRACE(c.name);
        Store().Assign(1, c.Vector("x"), c.Vector("y"));
        auto edge = [l = c.Number("level")](int count, TImpulsMode mode) {
            return Zeitdifferenz(1, l, l, true, false, true, count, mode);
        };
        EXPECT_EQ(edge(1, imCount), c.Number("count"));
        EXPECT_THAT(edge(1, imTime), near(c.Number("time_count1"), 1e-9));
        EXPECT_THAT(edge(2, imTime), near(c.Number("time_count2"), 1e-9));
        EXPECT_THAT(edge(1, imFreq), near(c.Number("frequency"), 1e-9));
        EXPECT_THAT(edge(1, imDutyCycle), near(c.Number("duty_cycle"), 1e-9));
        EXPECT_THAT(edge(7, imPhase), near(c.Number("first_rise"), 1e-9));
    }
}

// Sample times are exact results, so the first extremum's time must match exactly.
TEST_F(CurveFunctionsTest, FirstLocalExtremumMatchesTheReference)
{
    for (const TRefCase& c : LoadRefCases("measure_extrema.txt")) {
        SCOPED_TRACE(c.name);
        Store().Assign(1, c.Vector("x"), c.Vector("y"));
        const double epsX = c.Number("eps_x"), epsY = c.Number("eps_y");
        EXPECT_EQ(Peak(1, PeakMax, true, epsX, epsY), c.Number("max_time"));
        EXPECT_EQ(Peak(1, PeakMin, true, epsX, epsY), c.Number("min_time"));
    }
}

TEST_F(CurveFunctionsTest, HandWorkedCases)
{
    QTemporaryDir dir;
    const QString band = dir.filePath("band.HKV"), twoPoints = dir.filePath("2.HKV");
    Store().Assign(kUpperEnvelope, {0, 4, 8, 12}, {2, 2, 4, 4});
    Store().Assign(kLowerEnvelope, {0, 4, 8, 12}, {0, 0, -1, -1});
    scope::SaveHK(Store(), band);
    Store().Assign(kUpperEnvelope, {0, 4}, {0, 0});
    scope::SaveHK(Store(), twoPoints);
    const QString table = dir.filePath("table.txt"), words = dir.filePath("words.txt");
    ASSERT_TRUE(testio::WriteFile(table, "0;0\r\nno numbers here\r\n10;5\r\nabc;1\r\n20;5\r\n30,5;2\r\n7\r\n"));
    ASSERT_TRUE(testio::WriteFile(words, "0;0\nnan;1\n100;10\ninf;2\n50;-inf\n-INF;3\n1e999;4\n"));
    constexpr double big = std::numeric_limits<double>::max();
    using V = std::vector<double>;
    const V off = {12, 1, 2.2, 4, 1, 2.2, 4, 4, 1, 2.2, 0}, ramp = {0, 10, 20, 10};
    const V wave = {3, -1, 3, -1, 3, -1, 3, -1, 3}, step = {5, 5, 0, 0, 5, 5, 0},
        peaks = {7, 0, -2, 9, 9, -2, 4, 100}, bumps = {5, 1, 3, 1, 4, 0.5};
    auto square = [](int shift) {  // period 4 between 1 and 3, high where (i + shift) % 4 < 2
        V y(16);
        for (int i = 0; i < 16; ++i) y[i] = (i + shift) % 4 < 2 ? 3 : 1;
        return y;
    };
    using F = std::function<double()>;
    auto crossFirst = [](F f) -> F { return [f] { Store().SetCross(7, 7); return f(); }; };
    auto edge = [](bool needsEdge, TImpulsMode m) -> F {
        return [=] { return Zeitdifferenz(1, 2.5, 2.5, true, false, needsEdge, 1, m); };
    };
    auto query = [](bool yGiven, double v) -> F { return [=] { return Query_XY(1, yGiven, v); }; };
    auto peak = [](TPeakMode m, bool local, double window = 1) -> F {
        return [=] { return Peak(1, m, local, window, 1e-5); };
    };
    auto diff = [](double k, int i) -> F { return [=] { return Differenzkurve(1, k).a.at(i); }; };
    auto phaseTo = [](V y) -> F {
        return [=] { SetCurve(2, y); return Phasenverschiebung(1, 2, 3); };
    };
    auto inside = [](QString file) -> F { return [=] { return Huellkurvenvergleich(1, file); }; };
    auto correct = [](QString f) -> F {
        return [=] { KurvenKorrektur(1, f); return Store().Y(1)[0]; };
    };
    using Marks = std::optional<std::vector<double>>;  // crosses as time, value, time, value, ...
    struct Row {
        const char* what;
        V y;  // curve 1
        F measure;
        double expected;
        Marks crosses = std::nullopt;
    };
    const Row rows[] = {
        {"offset of three samples", {1, 2, 3}, [] { return KurvenOffset(1); }, 0},
        {"offset without a whole period", {-1, -1, 1, 1, 1}, [] { return KurvenOffset(1); }, 0},
        // Counting the trailing zero would lower the mid level to 2 and move both crossings.
        {"offset over whole periods, zeros are gaps", off, [] { return KurvenOffset(1); }, 7.2 / 3,
         Marks({3, 0, 6, 0})},
        {"mean of nothing", {}, [] { return KurvenMittelwert(1); }, 0},
        {"rms of nothing, whole periods", {}, [] { return KurvenEffektivwert(1, 0, 2); }, 0},
        // Offset 1, falling crossings at 2.5 (tie: the later sample 3) and 6.5 (searched backward,
        // tie: the earlier sample 6); the RMS is about the caller's offset 0.
        {"rms over whole periods", wave, [] { return KurvenEffektivwert(1, 0, 2); }, std::sqrt(5.0),
         Marks({2.5, 1, 6.5, 1})},
        {"start at the curve's start without a needed edge", step, edge(false, imTime), 0.5},
        // The range's last step is never taken: the stop keeps the range's first time.
        {"no stop after the start", step, crossFirst(edge(true, imTime)), -3.5, Marks({3.5, 2.5})},
        {"phase mode keeps earlier crosses", step, crossFirst(edge(true, imPhase)), 3.5,
         Marks({7, 7, 3.5, 2.5})},
        {"time at a value", ramp, query(true, 15), 1.5, Marks({1.5, 15})},
        {"no time has the value", ramp, query(true, 30), NAN},
        {"before the first sample the first segment extrapolates", ramp, query(false, -3), -30},
        {"the last segment is never examined", ramp, query(false, 2.5), NAN},
        {"a flat pair answers with its later time", {3, 3, 3, 0}, query(true, 3), 1},
        {"a value on a sample: the segment that ends there", ramp, query(true, 10), 1, Marks({1, 10})},
        {"on a falling segment: (15 - 10) * (0 - 1) / (20 - 10) + 1", {20, 10, 0, 0}, query(true, 15), 0.5,
         Marks({0.5, 15})},
        {"a sample's time gives its value", ramp, query(false, 2), 20, Marks({2, 20})},
        {"a NaN value is found nowhere", ramp, query(true, NAN), NAN, Marks({})},
        {"no time is NaN", ramp, query(false, NAN), NAN, Marks({})},
        // Zeros and the last sample are skipped; equal values keep the earlier sample.
        {"spread, lowest marked first", peaks, peak(PeakDiff, false), 11, Marks({2, -2, 3, 9})},
        {"lowest of all-zero samples", {0, 0, 0}, peak(PeakMin, false), big},
        {"highest of all-zero samples", {0, 0, 0}, peak(PeakMax, false), -big},
        {"local maximum past the one on the range start", bumps, peak(PeakMax, true), 2,
         Marks({2, 3})},
        {"the local spread mode looks for minima", bumps, peak(PeakDiff, true), 1},
        {"a window wider than the curve keeps the edge", bumps, peak(PeakMax, true, big), 0},
        {"no local extremum", {4}, peak(PeakMax, true), -2.0, Marks({})},
        // Steps of 1/10000, rounded half to even: 0, 0.5 -> 0, 2.5 -> 2, 3.5 -> 4.
        {"difference, factor 0 as 1", {0, 0.00005, 0.00025, 0.00035}, diff(0, 2), 0.0002},
        {"difference, a step below 0.00005 vanishes", {1.00001, 1.00003}, diff(1, 0), 0},
        {"difference at the curve's own index", {0, 0, 0, 0, 0, 0.025, 0.036, 0.049, 0.064},
         [] { ScopeStore().SetClip("5", "7"); return Differenzkurve(1, -1).a.at(6); }, -0.013},
        {"lagging curve", square(2), phaseTo(square(1)), 90},
        // Every pass finds the first edge again, so the lag reads as -270 degrees here.
        {"the same lag, curve 2 rising first in the range", square(0), phaseTo(square(3)), -270},
        {"phase shift against a flat curve", {}, phaseTo(V(50, 1.0)), 0, Marks({})},
        // Curve 2 rises at 0.5, a quarter period of 4 before curve 1 at 1.5; the second pass
        // finds the same pair again: (0.5 - 1.5) * 360 / 4.
        {"curve 2 leading by a quarter period", square(2), phaseTo(square(3)), -90},
        // Curve 2 starts on its offset 2 and rises: its first edge lies at time 0 and counts as none.
        {"an edge at time 0 ends the passes", square(2), phaseTo({2, 3, 3, 1, 1, 3, 3, 1, 1, 3, 3, 1, 1, 3}), 0},
        {"touching both envelopes", {1, 2, 0, 1, 2, -0.25, 3, 3.5}, inside(band), 1, Marks({})},
        {"below the lower at 5, above the upper at 6: upper first",
         {1, 2, 0, 1, 2, -0.3, 3.0000001, 9}, inside(band), 0, Marks({6, 3.0000001})},
        {"envelopes of two points test nothing", {99, 99, 99}, inside(twoPoints), 1},
        {"missing envelope file", {1}, inside(dir.filePath("none.HKV")), 0},
        // Both differences scaled by 1/100, lines without two numbers skipped: 5 - 5 * 10 / 100 *
        // 5 / 100 and 25 - (5 * 10.5 / 100 * -3 / 100 + 5).
        {"correction inside a row", {5}, crossFirst(correct(table)), 4.975, Marks({})},
        {"correction by a row with a decimal comma", {25}, correct(table), 20.01575},
        {"no correction outside every row", {-1}, correct(table), -1},
        // 5 - 5 * 100 / 100 * 10 / 100; read as a row, "nan;1" would become (0, 1) and give 3.55.
        {"nan, inf and overflowing lines hold no numbers", {5}, correct(words), 4.5},
        {"a missing correction file changes nothing", {5}, correct(dir.filePath("none.txt")), 5},
    };
    for (const Row& r : rows) {
        SetUp();
        SetCurve(1, r.y);
        const double tolerance = std::isnan(r.expected) ? 0 : std::abs(r.expected) * 1e-14;
        EXPECT_THAT(r.measure(), NanSensitiveDoubleNear(r.expected, tolerance)) << r.what;
        std::vector<double> crosses;
        for (const TPoint& p : Store().Crosses()) crosses.insert(crosses.end(), {p.x, p.y});
        if (r.crosses) {
            EXPECT_EQ(crosses, *r.crosses) << r.what;
        }
    }
}

TEST(StrToFloatPTest, CommaIsTheSeparatorUnlessThereIsAPoint)
{
    // With a point the comma is neither separator nor digit grouping; no number reads as 0.
    const std::pair<const char*, double> rows[] = {
        {"1,5", 1.5},  {"1.5", 1.5},     {"-0,25", -0.25}, {" 2,5 ", 2.5}, {"1e3", 1000.0},
        {"", 0},       {"abc", 0},       {"1,5,3", 0},     {"1.000,5", 0}, {"1,000.5", 0},
        {"12V", 0},    {"inf", 0},       {"nan", 0},
    };
    for (const auto& [text, expected] : rows) EXPECT_EQ(StrToFloatP(text), expected) << text;
}

// "0,5" to "2,5": the stop takes the first sample after its mark; start "4": the first sample at
// the mark is the last one, so 0; "9": no sample reaches a mark; "x": unreadable marks read as 0.
TEST(CurveStoreTest, ClipMarksSelectTheFirstSamplesAtOrBeyondThem)
{
    TCurveStore store;
    store.Assign(1, {5, 0, 6, 1, 7}, {0, 0, 0, 0, 0});  // unordered: both scans start at index 0
    store.Assign(2, {0, 1, 2, 3, 4}, {5, 6, 7, 8, 9});
    const std::tuple<int, const char*, const char*, int, int> rows[] = {
        {2, "", "", 0, 4},   {2, "1", "3", 1, 3}, {2, "0,5", "2,5", 1, 3}, {2, "4", "", 0, 4},
        {2, "9", "9", 0, 4}, {2, "x", "y", 0, 0}, {1, "1", "2", 0, 0},     {3, "1", "2", 0, -1},
    };
    for (const auto& [curve, start, stop, from, to] : rows) {
        store.SetClip(start, stop);
        int gotFrom = -1, gotTo = -1;
        store.GetCurveZoomParams(curve, gotFrom, gotTo);
        EXPECT_EQ(std::pair(gotFrom, gotTo), std::pair(from, to)) << curve << start << ":" << stop;
    }
}

TEST(CurveStoreTest, BadHandlesAndIndicesChangeNothing)
{
    TCurveStore store;
    store.Assign(1, {1}, {2});
    for (int bad : {0, 8, -1}) {
        EXPECT_THAT([&] { store.Clear(bad); }, ::testing::ThrowsMessage<TDravikException>(
                                                   ::testing::EndsWith(" " + std::to_string(bad))));
    }
    EXPECT_THROW(KurvenOffset(9), TDravikException);
    EXPECT_THROW(store.Assign(1, {1, 2}, {1}), TDravikException);
    store.RemoveAt(1, 7);
    store.SetValue(1, -1, {8, 9});
    EXPECT_EQ(std::pair(store.CurveValuesCount(1), store.GetValue(1, 0).y), std::pair(1, 2.0));
}

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

const std::map<std::string, TFilterResponse> kResponses = {
    {"lowpass", TFilterResponse::LowPass}, {"highpass", TFilterResponse::HighPass}, {"bandpass", TFilterResponse::BandPass}};

// Relative to the largest output: scipy runs in double, so any real design fault lies far above
// 1e-6 (a wrong zero pairing errs by tens of percent on wide bands).
void ExpectNear(const std::vector<double>& ours, const test::TRefCase& c)
{
    const double largest = std::abs(std::ranges::max(c.values, {}, [](double v) { return std::abs(v); }));
    ASSERT_EQ(ours.size(), c.values.size()) << c.header;
    for (std::size_t i = 0; i < c.values.size(); ++i) {
        ASSERT_NEAR(ours[i], c.values[i], 1e-6 * largest) << c.header << " sample " << i;
    }
}

// Orders 1 to 8; bands as wide as the rate allows, narrow ones at either band edge, rates above
// 1 MHz, and the unit impulse through the widest band.
TEST(ButterworthTest, MatchesScipyButterSosfiltForOrdersOneToEight)
{
    int cases = 0;
    for (const test::TRefCase& c : test::LoadRefCases("butterworth.txt")) {
        if (c.name == "zoomed") continue;
        std::vector<double> ours(c.input.size());
        RunCascade(DesignButterworth(kResponses.at(c.name), c.Int("order"), c.Number("f1"), c.Number("f2"), c.Number("rate")),
                   c.input, ours);
        ExpectNear(ours, c);
        ++cases;
    }
    EXPECT_GE(cases, 8 * 15);
}

TEST(ButterworthTest, InvalidArgumentsAreNamedInTheMessage)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    using enum TFilterResponse;
    const std::pair<std::tuple<TFilterResponse, int, double, double, double>, const char*> rows[] = {
        {{LowPass, 0, 100, 0, 1000}, "Filterordnung 0"},       {{HighPass, 17, 100, 0, 1000}, "Filterordnung 17"},
        {{LowPass, 2, 100, 0, 0}, "Abtastrate 0"},             {{LowPass, 2, 100, 0, nan}, "Abtastrate nan"},
        {{HighPass, 2, -10, 0, 1000}, "Grenzfrequenz -10 "},   {{LowPass, 2, 500, 0, 1000}, "Grenzfrequenz 500 "},
        {{LowPass, 2, nan, 0, 1000}, "Grenzfrequenz nan "},    {{BandPass, 2, 100, 500, 1000}, "Grenzfrequenz 500 "},
        {{BandPass, 2, 200, 100, 1000}, "Untere Grenzfrequenz 200"}, {{BandPass, 2, 150, 150, 1000}, "Untere Grenzfrequenz 150"}};
    for (const auto& [arguments, mentions] : rows) {
        EXPECT_THAT([&arguments] { std::apply(DesignButterworth, arguments); }, ThrowsMessage<TDravikException>(HasSubstr(mentions)));
    }
}

class FilterCurveTest : public test::ScopeCurveTest {};  // the scope's filters over curve 1

TEST_F(FilterCurveTest, EachResponseFiltersTheZoomedRangeFromRestAndLeavesTheCurve)
{
    using Filter = std::function<std::vector<double>(const test::TRefCase&)>;
    const std::map<std::string, Filter> filters = {
        {"lowpass", [](const auto& c) { return FuncLowPass(1, c.Number("f1"), c.Number("rate"), c.Int("order")); }},
        {"highpass", [](const auto& c) { return FuncHighPass(1, c.Number("f1"), c.Number("rate"), c.Int("order")); }},
        {"bandpass", [](const auto& c) { return FuncBandPass(1, c.Number("f1"), c.Number("f2"), c.Number("rate"), c.Int("order")); }}};
    for (const test::TRefCase& c : test::LoadRefCases("butterworth.txt")) {
        if (c.name != "zoomed") continue;
        SetCurve(c.input, c.Number("rate"));
        ScopeStore().SetClip("0,1", "0.3");  // samples 100 .. 300 at 1 kHz
        ExpectNear(filters.at(c.params.at("response"))(c), c);
        EXPECT_TRUE(std::ranges::equal(ScopeStore().Y(1), c.input)) << c.header;
    }
}

TEST_F(FilterCurveTest, RateAboveOneMillionIsScaledDownAndBadArgumentsAreNamed)
{
    SetCurve(test::Tones(1000, {{30, 1.0}}, 1.0, 300), 1000);
    EXPECT_EQ(FuncLowPass(1, 10000, 2000000, 3), FuncLowPass(1, 10, 2000, 3));
    EXPECT_EQ(FuncBandPass(1, 20000, 90000, 2000000, 2), FuncBandPass(1, 20, 90, 2000, 2));
    // Below the limit nothing is scaled, so a cut-off the design refuses stays refused.
    EXPECT_THAT([] { FuncHighPass(1, 600000, 1000000, 2); }, ThrowsMessage<TDravikException>(HasSubstr("Grenzfrequenz 600000")));
    EXPECT_NO_THROW(FuncHighPass(1, 600000, 2000000, 2));
    EXPECT_TRUE(FuncHighPass(2, 50, 1000, 2).empty());
    EXPECT_THAT([] { FuncLowPass(9, 50, 1000, 2); }, ThrowsMessage<TDravikException>(HasSubstr("Kurvennummer 9")));
    EXPECT_THAT([] { FuncBandPass(1, 50, 60, 1000, 0); }, ThrowsMessage<TDravikException>(HasSubstr("Filterordnung 0")));
}

}  // namespace
}  // namespace dv::analysis::test
