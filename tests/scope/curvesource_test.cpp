// Curve source texts into their forms and modifiers, and curve files into points.
#include "framework/exceptions.h"
#include "scope/curvefile.h"
#include "scope/curvesource.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <chrono>
#include <fcntl.h>
#include <future>
#include <unistd.h>

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

// The rows 0;1 / 1;2,5 / 2;3 with a header, as Windows editors save them.
TEST(CurveFile, WindowsEncodingsReadAsTheirText)
{
    QTemporaryDir dir;
    const QByteArray plain = "Zeit;Größe\r\n0;1\r\n1;2,5\r\n2;3\r\n";
    const QString text = QString::fromUtf8(plain);
    auto utf16 = [&text](bool little) {
        QByteArray bytes;
        for (QChar c : text) {
            const char hi = static_cast<char>(c.unicode() >> 8), lo = static_cast<char>(c.unicode() & 0xFF);
            bytes += little ? QByteArray{} + lo + hi : QByteArray{} + hi + lo;
        }
        return bytes;
    };
    struct Row {
        const char* name;
        QByteArray bytes;
        char separator;
    };
    const Row rows[] = {
        {"UTF-8", plain, ';'},
        {"UTF-8 with mark", "\xEF\xBB\xBF" + plain, ';'},
        {"UTF-8 with mark before the first point", "\xEF\xBB\xBF" + plain.mid(plain.indexOf('\n') + 1), ';'},
        {"UTF-16 LE with mark", "\xFF\xFE" + utf16(true), ';'},
        {"UTF-16 BE with mark", "\xFE\xFF" + utf16(false), ';'},
        {"UTF-16 LE without mark", utf16(true), ';'},
        {"UTF-16 BE without mark", utf16(false), ';'},
        // A separator beyond ASCII is named by its Windows-1252 code: section sign 167.
        {"UTF-8 with mark, separator 167", "\xEF\xBB\xBF" + QByteArray(plain).replace(';', "\xC2\xA7"), '\xA7'},
        {"Windows-1252, separator 167", QByteArray(plain).replace(';', '\xA7'), '\xA7'},
    };
    for (const Row& r : rows) {
        const QString path = dir.filePath("kurve.txt");
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(r.bytes);
        file.close();
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
