// The files the scope reads: curve source texts into their forms and modifiers, curve files into
// points, envelope files written and read as the platform's profile functions do.
#include "scope/curvesource.h"
#include "scope/envelopefile.h"
#include "tests/scope/testio.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <chrono>
#include <fcntl.h>
#include <future>
#include <limits>
#include <unistd.h>

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
    QString Text() { return testio::ReadText(file); }
    void Write(const QByteArray& text) { ASSERT_TRUE(testio::WriteFile(file, text)); }
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
        {"UTF-16 LE", "\xFF\xFE" + testio::Utf16(text, true)},
        {"UTF-16 BE", "\xFE\xFF" + testio::Utf16(text, false)},
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

TCurveSource Src(TSourceKind kind, QString main = {}, QString second = {}, QChar channel = {}, bool row = true, QString ofx = {},
                 QString ofy = {}, QString fx = {}, QString fy = {}, QString name = {})
{
    return {kind, main, second, channel, row, ofx, ofy, fx, fy, name};
}

TEST(CurveSource, EveryFormAndModifierIsParsed)
{
    using enum TSourceKind;
    struct Row {
        QString text;
        TCurveSource expected;
    };
    const Row rows[] = {
        {"FILE:\"/d/a b.txt\",SEP:59", Src(File, "\"/d/a b.txt\"", "59")},
        {"FILE:/d/a,b.txt,SEP:124,NAME:U1", Src(File, "/d/a,b.txt", "124", {}, true, "", "", "", "", "U1")},
        {"ARRAY:A,FREQ:1000", Src(Array, "A", "1000")},
        {"ARRAY:A,FREQ:", Src(Array, "A", "")},
        {"X:xv,Y:yv,OFX:1:OFY:", Src(Point, "xv", "yv", {}, true, "1", "")},
        {"ADX_DATA:", Src(Recording)},
        {"IMAGE-G-C:12,FREQ:25", Src(Image, "12", "25", 'G', false)},
        {"IMAGE-R-L:3,FREQ:1,FAKX:2:FAKY:3", Src(Image, "3", "1", 'R', true, "", "", "2", "3")},
        {"IMAGE-B-L:0,FREQ:1,OFX:a:OFY:b,FAKX::FAKY:c,NAME:n", Src(Image, "0", "1", 'B', true, "a", "b", "", "c", "n")},
        // Without the main field the slot stays unused.
        {"FILE:,SEP:59", Src(Empty)},
        {"ARRAY:,FREQ:100", Src(Empty)},
        {"X:a,Y:", Src(Empty)},
        {"IMAGE-R-L:,FREQ:1", Src(Empty, "", "1", 'R', true)},
        {"", Src(Empty)},
        {"nonsense", Src(Empty)},
    };
    for (const Row& r : rows) {
        const TCurveSource got = ParseCurveSource(r.text);
        // An unused slot only needs its kind; its other fields are what parsing left.
        if (r.expected.kind == Empty) EXPECT_EQ(got.kind, Empty) << r.text.toStdString();
        else EXPECT_EQ(got, r.expected) << r.text.toStdString();
    }
}

TEST(CurveFile, RowsFieldsHeadersAndDecimalCommas)
{
    const std::string text =
        "Zeit;Spannung\n"
        "0;1.5\r\n"
        "\n"
        "1;2,5\n"      // decimal comma
        "2;1e-3;99\n"  // further fields ignored
        "x;4\n"        // not a number: skipped
        " 3 ; -4 \n"
        "4;1.000,5\n";  // "." present: the "," makes it no number
    const TCurvePoints p = ParseCurveText(text, ';');
    EXPECT_EQ(p.x, (std::vector<double>{0, 1, 2, 3}));
    EXPECT_EQ(p.y, (std::vector<double>{1.5, 2.5, 1e-3, -4}));

    // One field per row: y, with x counting the points.
    const TCurvePoints single = ParseCurveText("Wert\n7\n8,5\nnan\n9", ';');
    EXPECT_EQ(single.x, (std::vector<double>{0, 1, 2}));
    EXPECT_EQ(single.y, (std::vector<double>{7, 8.5, 9}));
}

TEST(CurveFile, AWrittenCurveReadsBackIdentically)
{
    QTemporaryDir dir;
    const TCurvePoints points{{0, 0.1, 1.0 / 3, -2e-300}, {1.0 / 7, -0.0, 1e300, 123456789.123456789}};
    const QString path = dir.filePath("kurve.txt");
    WriteCurveFile(path, points, '|');
    const TCurvePoints back = ReadCurveFile(path, '|');
    EXPECT_EQ(back.x, points.x);
    EXPECT_EQ(back.y, points.y);
    EXPECT_THROW(ReadCurveFile(dir.filePath("fehlt.txt"), ';'), TDravikException);
}

TEST(CurveFile, TellsItsRowCountBeforeReadingThePoints)
{
    // The spectrum of a curve is planned from this count while the rows are read: a last row
    // without a line end counts, or a file of 2^k rows would plan half its size.
    QTemporaryDir dir;
    const QString path = dir.filePath("kurve.txt");
    const std::pair<QByteArray, std::size_t> rows[] = {{"", 0}, {"1", 1}, {"1\n", 1}, {"1\n2", 2}, {"t;y\r\n0;1\r\n1;2", 3}, {"\n\n", 2}};
    for (const auto& [text, count] : rows) {
        ASSERT_TRUE(testio::WriteFile(path, text));
        std::vector<std::size_t> told;
        ReadCurveFile(path, ';', [&](std::size_t n) { told.push_back(n); });
        EXPECT_EQ(told, std::vector{count}) << text.toStdString();
    }
}

// The rows 0;1 / 1;2,5 / 2;3 with a header, as Windows editors save them.
TEST(CurveFile, WindowsEncodingsReadAsTheirText)
{
    QTemporaryDir dir;
    const QByteArray plain = "Zeit;Größe\r\n0;1\r\n1;2,5\r\n2;3\r\n";
    const QByteArray le = testio::Utf16(QString::fromUtf8(plain), true), be = testio::Utf16(QString::fromUtf8(plain), false);
    struct Row {
        const char* name;
        QByteArray bytes;
        char separator;
    };
    const Row rows[] = {
        {"UTF-8", plain, ';'},
        {"UTF-8 with mark", "\xEF\xBB\xBF" + plain, ';'},
        {"UTF-8 with mark before the first point", "\xEF\xBB\xBF" + plain.mid(plain.indexOf('\n') + 1), ';'},
        {"UTF-16 LE with mark", "\xFF\xFE" + le, ';'},
        {"UTF-16 BE with mark", "\xFE\xFF" + be, ';'},
        {"UTF-16 LE without mark", le, ';'},
        {"UTF-16 BE without mark", be, ';'},
        // A separator beyond ASCII is named by its Windows-1252 code: section sign 167.
        {"UTF-8 with mark, separator 167", "\xEF\xBB\xBF" + QByteArray(plain).replace(';', "\xC2\xA7"), '\xA7'},
        {"Windows-1252, separator 167", QByteArray(plain).replace(';', '\xA7'), '\xA7'},
    };
    for (const Row& r : rows) {
        const QString path = dir.filePath("kurve.txt");
        ASSERT_TRUE(testio::WriteFile(path, r.bytes));
        const TCurvePoints p = ReadCurveFile(path, r.separator);
        EXPECT_EQ(p.x, (std::vector<double>{0, 1, 2})) << r.name;
        EXPECT_EQ(p.y, (std::vector<double>{1, 2.5, 3})) << r.name;
    }
}

// A folder, a pipe and a device are refused at once with the file's name; none is waited on or read
// without end.
TEST(CurveFile, OnlyRegularFilesAreRead)
{
    QTemporaryDir dir;
    const QString fifo = dir.filePath("pipe");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    for (const QString& path : {dir.path(), fifo, QString("/dev/zero")}) {
        auto read = std::async(std::launch::async, [path] {
            try {
                ReadCurveFile(path, ';');
            } catch (const TDravikException& e) {
                return e.Message();
            }
            return QString();
        });
        if (read.wait_for(std::chrono::seconds(5)) != std::future_status::ready) {
            // Release a reader that waits for a writer, so that the test fails instead of hanging.
            const int writer = ::open(QFile::encodeName(fifo).constData(), O_WRONLY | O_NONBLOCK);
            if (writer >= 0) ::close(writer);
            ADD_FAILURE() << "still reading " << path.toStdString();
        }
        EXPECT_EQ(read.get(), "Die Kurvendatei " + path + " ist keine gewöhnliche Datei (Ordner, Gerät oder Pipe)");
    }
}

}  // namespace
}  // namespace dv::scope
