#include "analysis/curvestore.h"
#include "framework/exceptions.h"

#include <gtest/gtest.h>

namespace dv::analysis {
namespace {

TEST(StrToFloatPTest, CommaIsTheSeparatorUnlessThereIsAPoint)
{
    struct Row {
        const char* text;
        double expected;
    };
    const Row rows[] = {
        {"1,5", 1.5},      {"1.5", 1.5},       {"-0,25", -0.25},  {" 2,5 ", 2.5},
        {"1e3", 1000.0},   {"3", 3.0},         {"", 0.0},         {"abc", 0.0},
        {"1,5,3", 0.0},    // two separators: no number
        {"1.000,5", 0.0},  // with a point, the comma is no separator
        {"1,000.5", 0.0},  // and no digit grouping either
        {"12V", 0.0},      {"inf", 0.0},       {"nan", 0.0},
    };
    for (const Row& r : rows) {
        EXPECT_DOUBLE_EQ(StrToFloatP(QString::fromUtf8(r.text)), r.expected) << r.text;
    }
}

class CurveZoomTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        // Times 0, 1, 2, 3, 4 on curve 2.
        store.Assign(2, {0, 1, 2, 3, 4}, {5, 6, 7, 8, 9});
    }
    TCurveStore store;
};

TEST_F(CurveZoomTest, ClipMarksSelectFirstSamplesAtOrBeyondThem)
{
    struct Row {
        const char* start;
        const char* stop;
        int from;
        int to;
    };
    const Row rows[] = {
        {"", "", 0, 4},
        {"1", "3", 1, 3},
        {"0,5", "2,5", 1, 3},  // the stop mark takes the first sample after it, not the last before
        {"1.5", "", 2, 4},
        {"-7", "0", 0, 0},
        {"4", "", 0, 4},       // the first sample at the start mark is the last one: 0
        {"9", "9", 0, 4},      // no sample reaches either mark
        {"", "4", 0, 4},       // stop index not below last: last
        {"", "3,99", 0, 4},
        {"x", "y", 0, 0},      // unreadable marks read as 0
    };
    for (const Row& r : rows) {
        store.SetClip(r.start, r.stop);
        int from = -1, to = -1;
        store.GetCurveZoomParams(2, from, to);
        EXPECT_EQ(from, r.from) << r.start << ":" << r.stop;
        EXPECT_EQ(to, r.to) << r.start << ":" << r.stop;
    }
}

TEST_F(CurveZoomTest, BothScansStartAtTheFirstSampleEvenOnUnorderedTimes)
{
    store.Assign(1, {5, 0, 6, 1, 7}, {0, 0, 0, 0, 0});
    store.SetClip("1", "2");
    int from = -1, to = -1;
    store.GetCurveZoomParams(1, from, to);
    EXPECT_EQ(from, 0);  // x = 5 already reaches 1
    EXPECT_EQ(to, 0);
}

TEST_F(CurveZoomTest, EmptyCurveGivesAnEmptyRange)
{
    int from = -1, to = -1;
    store.SetClip("1", "2");
    store.GetCurveZoomParams(3, from, to);
    EXPECT_EQ(from, 0);
    EXPECT_EQ(to, -1);
}

TEST_F(CurveZoomTest, PointEditingAndBadHandles)
{
    store.Append(5, 1, 2);
    store.Append(5, 3, 4);
    store.RemoveAt(5, 0);
    store.RemoveAt(5, 7);  // out of range: ignored
    ASSERT_EQ(store.CurveValuesCount(5), 1);
    EXPECT_EQ(store.GetValue(5, 0).x, 3);
    store.SetValue(5, 0, {8, 9});
    EXPECT_EQ(store.GetValue(5, 0).y, 9);
    store.SetCross(1.5, 2.5);  // value first, time second
    ASSERT_EQ(store.Crosses().size(), 1u);
    EXPECT_EQ(store.Crosses()[0].x, 2.5);
    EXPECT_EQ(store.Crosses()[0].y, 1.5);
    for (int bad : {0, 8, -1}) {
        EXPECT_THROW(store.CurveValuesCount(bad), TDravikException) << bad;
    }
    EXPECT_THROW(store.Assign(1, {1, 2}, {1}), TDravikException);
    EXPECT_EQ(store.CurveValuesCount(1), 0);  // the failed assignment left the curve alone
}

}  // namespace
}  // namespace dv::analysis
