#include "scope/envelopefile.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace dv::scope {
namespace {

using analysis::kLowerEnvelope;
using analysis::kUpperEnvelope;
using analysis::TCurveStore;

QByteArray ReadAll(const QString& file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<unreadable>");
}

void WriteAll(const QString& file, const QByteArray& text)
{
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(text);
}

class EnvelopeFileTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    TCurveStore store;
    QString file = dir.filePath("test.HKV");
};

TEST_F(EnvelopeFileTest, SavesBothSectionsInOrderWithAnEmptyLowerEnvelope)
{
    store.Assign(kUpperEnvelope, {0, 0.5, 1e-7}, {1.25, -3, 123456789012345678.0});
    SaveHK(store, file, '.');
    EXPECT_EQ(ReadAll(file),
              "[UpperCurve]\r\nValues=3\r\n"
              "XValue0=0\r\nYValue0=1.25\r\n"
              "XValue1=0.5\r\nYValue1=-3\r\n"
              "XValue2=1E-7\r\nYValue2=1.23456789012346E17\r\n"
              "\r\n[LowerCurve]\r\nValues=0\r\n");
}

TEST_F(EnvelopeFileTest, SavingOverALongerFileLeavesNoOldKeys)
{
    store.Assign(kUpperEnvelope, {1, 2, 3, 4}, {1, 2, 3, 4});
    SaveHK(store, file);
    store.Assign(kUpperEnvelope, {7}, {8});
    SaveHK(store, file);
    EXPECT_FALSE(ReadAll(file).contains("XValue1"));
    LoadHK(store, file);
    EXPECT_EQ(store.CurveValuesCount(kUpperEnvelope), 1);
}

TEST_F(EnvelopeFileTest, RoundTripWithCommaSeparator)
{
    store.Assign(kUpperEnvelope, {0.1, 2.5}, {1.0 / 3, -7});
    store.Assign(kLowerEnvelope, {0.1, 2.5}, {-1.0 / 3, -8});
    SaveHK(store, file, ',');
    EXPECT_TRUE(ReadAll(file).contains("YValue0=0,333333333333333\r\n"));
    TCurveStore loaded;
    LoadHK(loaded, file);
    ASSERT_EQ(loaded.CurveValuesCount(kLowerEnvelope), 2);
    EXPECT_DOUBLE_EQ(loaded.GetValue(kLowerEnvelope, 0).y, -0.333333333333333);
    EXPECT_EQ(loaded.GetValue(kUpperEnvelope, 1).x, 2.5);
}

TEST_F(EnvelopeFileTest, MissingSectionsAndKeysReadAsEmptyAndZero)
{
    WriteAll(file, "[uppercurve]\nvalues = 3\nXValue0=1.5\nYValue0=2\nYValue1=4\nXValue2=x\n");
    store.Assign(kLowerEnvelope, {1}, {1});
    LoadHK(store, file);
    ASSERT_EQ(store.CurveValuesCount(kUpperEnvelope), 3);
    EXPECT_EQ(store.GetValue(kUpperEnvelope, 0).x, 1.5);
    EXPECT_EQ(store.GetValue(kUpperEnvelope, 1).x, 0.0);  // missing key
    EXPECT_EQ(store.GetValue(kUpperEnvelope, 1).y, 4.0);
    EXPECT_EQ(store.GetValue(kUpperEnvelope, 2).x, 0.0);  // no number
    EXPECT_EQ(store.CurveValuesCount(kLowerEnvelope), 0);  // no section: empty, no error
}

TEST_F(EnvelopeFileTest, LoadFailuresNameTheFileAndKeepWhatWasThere)
{
    store.Assign(kUpperEnvelope, {1, 2}, {3, 4});
    const QString missing = dir.filePath("missing.HKV");
    try {
        LoadHK(store, missing);
        FAIL() << "no exception";
    } catch (const TEnvelopeFileMissing& e) {
        EXPECT_EQ(e.Message(), "Scope-Plugin: Fehler beim Laden der Hüllkurvendatei !\n" + missing +
                                   " existiert im agegebenen Pfad nicht !");
    }
    EXPECT_EQ(store.CurveValuesCount(kUpperEnvelope), 2);

    WriteAll(file, "[UpperCurve]\nValues=999999999999\n");
    EXPECT_THROW(LoadHK(store, file), TDravikException);
    EXPECT_THROW(SaveHK(store, dir.filePath("no/such/dir/x.HKV")), TDravikException);
    EXPECT_EQ(EnvelopeSaveFaultText("a.HKV", "voll"),
              "Scope-Plugin: Fehler beim speichern der Hüllkurvendateia.HKV !\nvoll");
}

TEST_F(EnvelopeFileTest, NearestPointToDeleteByTime)
{
    store.Assign(kUpperEnvelope, {0, 2, 4, 10}, {0, 0, 0, 0});
    struct Row {
        double x;
        int index;
    };
    const Row rows[] = {{-5, 0}, {0, 0}, {0.9, 0}, {1, 1},  // half-way goes to the later point
                        {2, 1},  {3.5, 2}, {7, 3},  {10, 3}, {99, 3}};
    for (const Row& r : rows) EXPECT_EQ(GetHKToDelete(store, kUpperEnvelope, r.x), r.index) << r.x;
    EXPECT_EQ(GetHKToDelete(store, kLowerEnvelope, 1), -1);
}

}  // namespace
}  // namespace dv::scope
