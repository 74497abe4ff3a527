// Curve source texts into their forms and modifiers, and curve files into points.
#include "framework/exceptions.h"
#include "scope/curvefile.h"
#include "scope/curvesource.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace dv::scope {
namespace {

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
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(text) == text.size());
        file.close();
        std::vector<std::size_t> told;
        ReadCurveFile(path, ';', [&](std::size_t n) { told.push_back(n); });
        EXPECT_EQ(told, std::vector{count}) << text.toStdString();
    }
}

}  // namespace
}  // namespace dv::scope
