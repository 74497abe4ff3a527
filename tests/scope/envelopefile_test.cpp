#include "scope/envelopefile.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QTemporaryDir>

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
    for (const char* count : {"999999999999", "9999999", "40"}) {  // more points than the file has bytes
        Write(QByteArray("[UpperCurve]\nValues=") + count + "\n");
        EXPECT_THAT([&] { LoadHK(store, file); }, ThrowsMessage<TDravikException>(::testing::HasSubstr(count)));
    }
    Write("[UpperCurve]\nValues=20\n");  // 23 bytes: each missing point reads as 0
    LoadHK(store, file);
    EXPECT_EQ(store.CurveValuesCount(kUpperEnvelope), 20);
    EXPECT_THROW(SaveHK(store, dir.filePath("no/such/dir/x.HKV")), TDravikException);
    EXPECT_EQ(EnvelopeSaveFaultText("a.HKV", "voll"),
              "Scope-Plugin: Fehler beim speichern der Hüllkurvendateia.HKV !\nvoll");
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
