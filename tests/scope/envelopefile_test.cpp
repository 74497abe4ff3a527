#include "scope/envelopefile.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QTemporaryDir>

#include <limits>

namespace dv::scope {
namespace {

using analysis::kLowerEnvelope;
using analysis::kUpperEnvelope;
using ::testing::ThrowsMessage;

class EnvelopeFileTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    analysis::TCurveStore store;
    QString file = dir.filePath("test.HKV");
    QByteArray Text()
    {
        QFile f(file);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : "<unreadable>";
    }
    void Write(const QByteArray& text)
    {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly) && f.write(text) == text.size());
    }
    static std::vector<double> Values(std::span<const double> v) { return {v.begin(), v.end()}; }
};

TEST_F(EnvelopeFileTest, SavesBothSectionsInOrderOverAnOlderLongerFile)
{
    store.Assign(kUpperEnvelope, {1, 2, 3, 4}, {1, 2, 3, 4});
    store.Assign(kLowerEnvelope, {1}, {1});
    SaveHK(store, file);
    store.Assign(kUpperEnvelope, {0, 0.5, 1e-7}, {1.25, -3, 123456789012345678.0});
    store.Clear(kLowerEnvelope);
    SaveHK(store, file, '.');
    EXPECT_EQ(Text(), "[UpperCurve]\r\nValues=3\r\nXValue0=0\r\nYValue0=1.25\r\nXValue1=0.5\r\n"
                      "YValue1=-3\r\nXValue2=1E-7\r\nYValue2=1.23456789012346E17\r\n"
                      "\r\n[LowerCurve]\r\nValues=0\r\n");
    SaveHK(store, file, ',');  // the locale's decimal separator
    EXPECT_TRUE(Text().contains("XValue1=0,5\r\n"));
}

TEST_F(EnvelopeFileTest, LoadingReadsWhatIsMissingAsEmptyOrZeroAndFailuresKeepTheEnvelopes)
{
    store.Assign(kUpperEnvelope, {1, 2}, {3, 4});
    store.Assign(kLowerEnvelope, {5}, {6});
    const QString missing = dir.filePath("missing.HKV");
    EXPECT_THAT([&] { LoadHK(store, missing); },
                ThrowsMessage<TEnvelopeFileMissing>(
                    ("Scope-Plugin: Fehler beim Laden der Hüllkurvendatei !\n" + missing +
                     " existiert im agegebenen Pfad nicht !").toStdString()));
    EXPECT_EQ(store.CurveValuesCount(kUpperEnvelope) + store.CurveValuesCount(kLowerEnvelope), 3);
    Write("[uppercurve]\nvalues = 3\nXValue0=1,5\nYValue0=2\nYValue1=4.5\nXValue2=x\n");
    LoadHK(store, file);  // keys and sections without case; a missing or unreadable number is 0
    EXPECT_EQ(Values(store.X(kUpperEnvelope)), std::vector({1.5, 0.0, 0.0}));
    EXPECT_EQ(Values(store.Y(kUpperEnvelope)), std::vector({2.0, 4.5, 0.0}));
    EXPECT_EQ(store.CurveValuesCount(kLowerEnvelope), 0);  // no section: empty, no error
    // A count beyond any drawn envelope is a damaged file; below that, each point the file lacks
    // reads as 0, however short the file is.
    for (const char* count : {"20000000", "10000001"}) {
        Write(QByteArray("[UpperCurve]\nValues=") + count + "\n");
        EXPECT_THAT([&] { LoadHK(store, file); }, ThrowsMessage<TDravikException>(::testing::HasSubstr(count)));
    }
    Write("[UpperCurve]\nValues=40\nYValue39=2\n");
    LoadHK(store, file);
    EXPECT_EQ(Values(store.X(kUpperEnvelope)), std::vector(40, 0.0));
    EXPECT_EQ(store.GetValue(kUpperEnvelope, 39).y, 2.0);
    Write("[UpperCurve]\nValues=10000000\n");
    LoadHK(store, file);
    EXPECT_EQ(store.CurveValuesCount(kUpperEnvelope), 10'000'000);
    EXPECT_THROW(SaveHK(store, dir.filePath("no/such/dir/x.HKV")), TDravikException);
    EXPECT_EQ(EnvelopeSaveFaultText("a.HKV", "voll"),
              "Scope-Plugin: Fehler beim speichern der Hüllkurvendateia.HKV !\nvoll");
}

// Files as written by hand or by other programs on the platform the envelopes come from.
TEST_F(EnvelopeFileTest, ReadsAsThePlatformsProfileFunctions)
{
    using V = std::vector<double>;
    const struct {
        const char* what;
        QByteArray text;  // the upper section
        V x, y;
    } rows[] = {
        {"the first of duplicate keys", "Values=1\nXValue0=1\nxvalue0=2\nYValue0=3\nYValue0=4\n", {1}, {3}},
        {"the first of duplicate counts", "Values=1\nVALUES=2\nXValue0=5\n", {5}, {0}},
        {"a count after $ is hexadecimal", "Values=$3\nXValue2=7\n", {0, 0, 7}, {0, 0, 0}},
        {"so is one after 0x", "Values=0x2\n", {0, 0}, {0, 0}},
        {"a count that is no integer reads as none", "Values=2.0\nXValue0=1\n", {}, {}},
        {"a count beyond 32 bits reads as none", "Values=4294967297\nXValue0=1\n", {}, {}},
        {"quoted values lose their quotes", "Values=\"1\"\nXValue0=\"2,5\"\nYValue0='-4'\n", {2.5}, {-4}},
        {"unmatched quotes stay and make the number unreadable", "Values=1\nXValue0=\"2\nYValue0=3'\n", {0}, {0}},
        {"a number beyond the double range is unreadable", "Values=1\nXValue0=1e999\nYValue0=-1.8E308\n", {0}, {0}},
        {"an index is written without leading zeros", "Values=2\nXValue01=4\nXValue1=5\nYValue00=6\n", {0, 5}, {0, 0}},
        {"only the first section of a name counts", "Values=1\n[LowerCurve]\n[ uppercurve ]\nXValue0=5\nYValue0=6\n", {0}, {0}},
        {"also for its count", "XValue0=5\n[UpperCurve]\nValues=1\n", {}, {}},
    };
    for (const auto& r : rows) {
        Write("[UpperCurve]\n" + r.text);
        LoadHK(store, file);
        EXPECT_EQ(Values(store.X(kUpperEnvelope)), r.x) << r.what;
        EXPECT_EQ(Values(store.Y(kUpperEnvelope)), r.y) << r.what;
    }
}

// Files saved as "Unicode" by a Windows editor carry a byte order mark, which the platform's
// profile functions read by; so does a UTF-8 file.
TEST_F(EnvelopeFileTest, ReadsUnicodeFilesByTheirByteOrderMark)
{
    const QString text = QStringLiteral("[UpperCurve]\r\nValues=2\r\nXValue0=0\r\nYValue0=1,5\r\nXValue1=10\r\nYValue1=1\r\n"
                                         "[LowerCurve]\r\nValues=1\r\nXValue0=5\r\nYValue0=-1\r\n");
    const struct {
        const char* what;
        QByteArray bytes;
    } rows[] = {
        {"UTF-16 LE", QByteArray("\xFF\xFE") + QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2)},
        {"UTF-16 BE", [&] {
             QByteArray be("\xFE\xFF");
             for (QChar c : text) be.append(static_cast<char>(c.unicode() >> 8)).append(static_cast<char>(c.unicode() & 0xFF));
             return be;
         }()},
        {"UTF-8", QByteArray("\xEF\xBB\xBF") + text.toUtf8()},
    };
    for (const auto& r : rows) {
        store.ClearAll();
        Write(r.bytes);
        LoadHK(store, file);
        EXPECT_EQ(Values(store.X(kUpperEnvelope)), std::vector({0.0, 10.0})) << r.what;
        EXPECT_EQ(Values(store.Y(kUpperEnvelope)), std::vector({1.5, 1.0})) << r.what;
        EXPECT_EQ(Values(store.X(kLowerEnvelope)), std::vector({5.0})) << r.what;
        EXPECT_EQ(Values(store.Y(kLowerEnvelope)), std::vector({-1.0})) << r.what;
    }
}

TEST_F(EnvelopeFileTest, ExtremeValuesSurviveSavingAndLoading)
{
    constexpr double big = std::numeric_limits<double>::max();
    constexpr double tiny = std::numeric_limits<double>::denorm_min();
    const std::vector<double> x = {-big, -1e-300, 0, tiny, 1e300}, y = {big, -big, 0.1, -tiny, 1};
    for (QChar separator : {QChar('.'), QChar(',')}) {
        store.Assign(kUpperEnvelope, x, y);
        store.Assign(kLowerEnvelope, y, x);
        SaveHK(store, file, separator);
        store.ClearAll();
        LoadHK(store, file);
        // Each of these has 15 significant digits or fewer, so each must come back exactly; the
        // largest double's 15-digit text lies beyond the double range.
        EXPECT_EQ(Values(store.X(kUpperEnvelope)), x) << separator.toLatin1();
        EXPECT_EQ(Values(store.Y(kUpperEnvelope)), y) << separator.toLatin1();
        EXPECT_EQ(Values(store.X(kLowerEnvelope)), y) << separator.toLatin1();
        EXPECT_EQ(Values(store.Y(kLowerEnvelope)), x) << separator.toLatin1();
    }
}

TEST_F(EnvelopeFileTest, NearestPointToDeleteByTime)
{
    store.Assign(kUpperEnvelope, {0, 2, 4, 10}, {0, 0, 0, 0});
    // Half-way goes to the later point; left of the first is 0, right of the last the last.
    const std::pair<double, int> rows[] = {{-5, 0}, {0.9, 0}, {1, 1}, {2, 1}, {3.5, 2}, {99, 3}};
    for (const auto& [x, index] : rows) EXPECT_EQ(GetHKToDelete(store, kUpperEnvelope, x), index);
    EXPECT_EQ(GetHKToDelete(store, kLowerEnvelope, 1), -1);
}

}  // namespace
}  // namespace dv::scope
