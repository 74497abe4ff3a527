#include "image/bitmapfile.h"
#include "image/brightness.h"
#include "image/currentimage.h"
#include "image/evaluation.h"
#include "image/gui_imagecapture.h"
#include "image/gui_imagechange.h"
#include "image/gui_imageevaluation.h"
#include "image/gui_imageload.h"
#include "image/gui_imagesave.h"
#include "tests/commands/params.h"
#include "tests/scope/testio.h"
#include "tests/support/testhost.h"

#include <QDir>
#include <QtEndian>

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace dv {
namespace {

using namespace test;

// The failure text of a call, empty when it succeeded.
template <class F>
QString Failure(F f)
{
    try {
        f();
    } catch (const TDravikException& e) {
        return e.Message();
    }
    return {};
}

// A BMP file of 4 x 2 pixels, put together byte by byte: the header, the palette (BGR0 entries),
// the pixel rows; compression 1 is run-length coding.
QByteArray BmpFile(int bits, const QByteArray& palette, const QByteArray& pixels, quint32 compression = 0)
{
    QByteArray file(54, '\0');
    const int offset = 54 + static_cast<int>(palette.size());
    file[0] = 'B';
    file[1] = 'M';
    qToLittleEndian<quint32>(offset + pixels.size(), file.data() + 2);
    qToLittleEndian<quint32>(offset, file.data() + 10);
    qToLittleEndian<quint32>(40, file.data() + 14);
    qToLittleEndian<qint32>(4, file.data() + 18);
    qToLittleEndian<qint32>(2, file.data() + 22);
    qToLittleEndian<quint16>(1, file.data() + 26);
    qToLittleEndian<quint16>(static_cast<quint16>(bits), file.data() + 28);
    qToLittleEndian<quint32>(compression, file.data() + 30);
    qToLittleEndian<quint32>(compression ? static_cast<quint32>(pixels.size()) : 0, file.data() + 34);
    qToLittleEndian<quint32>(static_cast<quint32>(palette.size() / 4), file.data() + 46);
    return file + palette + pixels;
}

// Red, green, blue, white / black, white, red, blue (1 bit: black and white only) at any depth,
// bottom-up rows padded to four bytes.
QByteArray Bmp(int bits)
{
    const QRgb colours[2][4] = {{qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255), qRgb(255, 255, 255)},
                                {qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(255, 0, 0), qRgb(0, 0, 255)}};
    const QList<QRgb> palette = bits == 1 ? QList<QRgb>{qRgb(0, 0, 0), qRgb(255, 255, 255)}
                                          : QList<QRgb>{qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255)};
    auto colourOf = [&](int x, int y) {
        const QRgb c = colours[y][x];
        if (bits != 1) return c;
        return qGray(c) > 100 ? qRgb(255, 255, 255) : qRgb(0, 0, 0);
    };
    const int rowBytes = ((4 * bits + 31) / 32) * 4;
    QByteArray pixels;
    for (int y = 1; y >= 0; --y) {
        QByteArray row(rowBytes, '\0');
        for (int x = 0; x < 4; ++x) {
            const QRgb c = colourOf(x, y);
            const int index = static_cast<int>(palette.indexOf(c));
            switch (bits) {
            case 1: row[x / 8] = static_cast<char>(row[x / 8] | (index << (7 - x % 8))); break;
            case 4: row[x / 2] = static_cast<char>(row[x / 2] | (index << (x % 2 ? 0 : 4))); break;
            case 8: row[x] = static_cast<char>(index); break;
            case 16: {
                const quint16 v = static_cast<quint16>(((qRed(c) >> 3) << 10) | ((qGreen(c) >> 3) << 5) | (qBlue(c) >> 3));
                qToLittleEndian(v, row.data() + 2 * x);
                break;
            }
            default:
                for (int k = 0; k < bits / 8; ++k) {
                    const int channel[] = {qBlue(c), qGreen(c), qRed(c), 0};
                    row[x * bits / 8 + k] = static_cast<char>(channel[k]);
                }
            }
        }
        pixels += row;
    }
    QByteArray paletteBytes;
    for (QRgb c : palette) {
        const char bgr0[4] = {char(qBlue(c)), char(qGreen(c)), char(qRed(c)), 0};
        if (bits <= 8) paletteBytes.append(bgr0, 4);
    }
    return BmpFile(bits, paletteBytes, pixels);
}

// Run-length coded 8 bits: each row two black pixels, then two white; runs, end of line, runs,
// end of picture.
// The header claims 2^31 - 1 pixels each way.
QByteArray Huge(QByteArray bmp)
{
    qToLittleEndian<qint32>(0x7FFFFFFF, bmp.data() + 18);
    qToLittleEndian<qint32>(0x7FFFFFFF, bmp.data() + 22);
    return bmp;
}

QByteArray Rle8() { return BmpFile(8, QByteArray::fromHex("00000000ffffff00"), QByteArray::fromHex("020002010000020002010001"), 1); }

class ImageCommandTest : public testing::Test {
protected:
    void SetUp() override
    {
        host.projectPath = dir.path();
        host.Declare("Ergebnis", g_NumberType);
        CurrentImage::replace({});
    }
    QString Path(const QString& name) const { return dir.filePath(name); }
    void Capture(const QString& device) { Run<TDVCmdImageCapture>({{"Device", device}}); }
    void Load(const QString& file) { Run<TDVCmdImageLoad>({{"File", file}}); }
    void Save(const QString& file) { Run<TDVCmdImageSave>({{"File", file}}); }
    double Eval(std::initializer_list<std::pair<QString, QString>> params)
    {
        Run<TDVCmdImageEvaluation>(params, {{"Result", "Ergebnis"}});
        return host.ValueText("Ergebnis").toDouble();
    }
    template <class Command>
    void Run(std::initializer_list<std::pair<QString, QString>> rows, std::initializer_list<std::pair<QString, QString>> more = {})
    {
        Command command(&host);
        TParamList params;
        for (const auto& [name, text] : rows) params.AddString(name, text);
        for (const auto& [name, text] : more) params.AddString(name, text);
        command.Run(params);
    }

    QTemporaryDir dir;
    TTestHost host;
};

TEST_F(ImageCommandTest, BitmapsOfEveryDepthLoadAsTwentyFourBit)
{
    for (int bits : {1, 4, 8, 16, 24, 32}) {
        const QString file = Path(QStringLiteral("depth%1.bmp").arg(bits));
        ASSERT_TRUE(testio::WriteFile(file, Bmp(bits)));
        Load(file);
        const QImage image = CurrentImage::snapshot();
        EXPECT_EQ(image.format(), QImage::Format_RGB888) << bits;
        ASSERT_EQ(image.size(), QSize(4, 2)) << bits;
        // 16 bits hold 5 bits a channel: the full value 31 is read back as 31 << 3.
        const int full = bits == 16 ? 31 << 3 : 255;
        EXPECT_EQ(image.pixel(0, 1), qRgb(0, 0, 0)) << bits;
        EXPECT_EQ(image.pixel(3, 0), qRgb(full, full, full)) << bits;
        if (bits > 1) {
            EXPECT_EQ(image.pixel(0, 0), qRgb(full, 0, 0)) << bits;
            EXPECT_EQ(image.pixel(1, 0), qRgb(0, full, 0)) << bits;
            EXPECT_EQ(image.pixel(3, 1), qRgb(0, 0, full)) << bits;
        }
    }
}

TEST_F(ImageCommandTest, FileErrorsNameTheFileAndKeepWhatWasThere)
{
    EXPECT_TRUE(Failure([&] { Save(Path("a.bmp")); }).contains("kein aktuelles Bild"));
    EXPECT_TRUE(Failure([&] { Load(Path("fehlt.bmp")); }).contains(Path("fehlt.bmp")));
    ASSERT_TRUE(testio::WriteFile(Path("kaputt.bmp"), "BM kein Bild"));
    Capture("pattern:grey");
    EXPECT_TRUE(Failure([&] { Load(Path("kaputt.bmp")); }).contains("kaputt.bmp"));
    EXPECT_EQ(CurrentImage::snapshot().size(), QSize(640, 480));  // the failed load changed nothing
    EXPECT_TRUE(Failure([&] { Save(Path("kein/ordner/a.bmp")); }).contains("kann nicht geschrieben werden"));
}

TEST_F(ImageCommandTest, TruncatedBitmapsAreRefusedAndTheImageStays)
{
    Capture("pattern:bars");
    Save(Path("bars.bmp"));
    QFile whole(Path("bars.bmp"));
    const QByteArray bars = whole.open(QIODevice::ReadOnly) ? whole.readAll() : QByteArray();
    const std::pair<const char*, QByteArray> rows[] = {
        {"kurz24.bmp", Bmp(24).left(54 + 10)},           // 10 of 24 pixel bytes
        {"kurz8.bmp", Bmp(8).chopped(1)},                // the last pixel byte missing
        {"kurz1.bmp", Bmp(1).chopped(4)},                // the top row missing
        {"halb.bmp", bars.left(bars.size() / 2)},        // half of a 640 x 480 picture
        {"kopf.bmp", bars.left(54)},                     // the header alone
        {"rle.bmp", Rle8().chopped(2)},                  // the end-of-picture code missing
        {"riesig24.bmp", Huge(Bmp(32))},                 // rows no file could hold
        {"kopfhalb.bmp", Bmp(24).left(27)},              // the picture's header cut short
    };
    Capture("pattern:grey");
    const QImage before = CurrentImage::snapshot();
    for (const auto& [name, bytes] : rows) {
        ASSERT_TRUE(testio::WriteFile(Path(name), bytes));
        const QString failure = Failure([&] { Load(Path(name)); });
        EXPECT_TRUE(failure.contains(Path(name)) && failure.contains("unvollständig")) << name << ": " << failure.toStdString();
        EXPECT_EQ(CurrentImage::snapshot(), before) << name;
    }
    // Whole files load, bytes after the pixels are no harm.
    for (const QByteArray& bytes : {Bmp(24) + QByteArray(7, 'x'), Rle8()}) {
        ASSERT_TRUE(testio::WriteFile(Path("ganz.bmp"), bytes));
        Load(Path("ganz.bmp"));
        ASSERT_EQ(CurrentImage::snapshot().size(), QSize(4, 2));
        EXPECT_EQ(CurrentImage::snapshot().pixel(3, 0), qRgb(255, 255, 255));
        EXPECT_EQ(CurrentImage::snapshot().pixel(0, 1), qRgb(0, 0, 0));
    }
    // A complete run-length coded file of 62 bytes that stands for 9000 x 9000 pixels is not
    // decoded (it would take 324 MB).
    QByteArray huge = Rle8();
    qToLittleEndian<qint32>(9000, huge.data() + 18);
    qToLittleEndian<qint32>(9000, huge.data() + 22);
    ASSERT_TRUE(testio::WriteFile(Path("riesig.bmp"), huge));
    EXPECT_TRUE(Failure([&] { Load(Path("riesig.bmp")); }).contains("zu groß"));
    EXPECT_EQ(CurrentImage::snapshot().size(), QSize(4, 2));
}

TEST_F(ImageCommandTest, SavedCopyComparesAt100AndTheProjectPlaceholderResolves)
{
    Capture("pattern:bars");
    Save("%PROJEKTPFAD%/bars.bmp");
    EXPECT_EQ(Eval({{"File", Path("bars.bmp")}}), 100.0);
    EXPECT_EQ(Eval({{"File", "%PROJEKTPFAD%/bars.bmp"}, {"CompareMax", "True"}, {"Displacement", "3"}}), 100.0);
    Run<TDVCmdImageChange>({{"Brightness", "5"}});
    EXPECT_LT(Eval({{"File", Path("bars.bmp")}}), 100.0);
    Load(Path("bars.bmp"));
    EXPECT_EQ(Eval({{"File", Path("bars.bmp")}, {"Rect", "{0}{0}{10}{10}"}}), 100.0);
    EXPECT_TRUE(Failure([&] { Eval({{"File", Path("bars.bmp")}, {"Displacement", "viel"}}); }).contains("viel"));
}

TEST_F(ImageCommandTest, CoverageOfACheckerboardArea)
{
    Capture("pattern:checker");
    EXPECT_DOUBLE_EQ(Eval({{"Coverage", "True"}, {"Rect", "[0, 0, 80, 80]"}}), 50.0);
    EXPECT_DOUBLE_EQ(Eval({{"Coverage", "True"}, {"Rect", "[0, 0, 40, 40]"}}), 0.0);  // one white square
}

TEST_F(ImageCommandTest, ChangeReachesTheTargetMeanInLinearLight)
{
    struct Row {
        const char* device;
        const char* brightness;  // empty: the default 21.4
        const char* rect;
        bool grey;
    };
    const Row rows[] = {
        {"pattern:bars", "21.4", "", false},  {"pattern:bars", "60", "[0, 0, 320, 240]", false},
        {"pattern:bars", "5", "", true},      {"pattern:grey", "90", "[600, 400, 100, 100]", false},
        {"pattern:bars", "60", "", false},  // saturated bars: only clipping gets there
        // Few levels: no single byte a level lies within 0.5 % of these targets.
        {"pattern:grey", "", "", false},      {"pattern:grey", "5", "", false},
        {"pattern:grey", "1", "[10, 10, 300, 200]", false},  {"pattern:bars", "5", "", false},
        {"pattern:checker", "10", "", false}, {"pattern:checker", "10", "[20, 20, 80, 80]", true},
    };
    for (const Row& r : rows) {
        Capture(r.device);
        const QImage before = CurrentImage::snapshot();
        Run<TDVCmdImageChange>({{"Brightness", r.brightness}, {"Rect", r.rect}, {"GreyScale", r.grey ? "True" : "False"}});
        const QImage image = CurrentImage::snapshot();
        const QRect area = QString(r.rect).isEmpty() ? image.rect() : image::ClipTo(*image::RectOfText(r.rect), image.size());
        const double target = (QString(r.brightness).isEmpty() ? 21.4 : QString(r.brightness).toDouble()) / 100;
        const QString row = QStringLiteral("%1 %2 %3").arg(r.device, r.brightness, r.rect);
        EXPECT_NEAR(image::MeanLuminance(image, area), target, 0.005 * target) << row.toStdString();
        int lowest = 255, highest = 0, changedOutside = 0, lit = 0, notGrey = 0;
        for (int y = 0; y < image.height(); ++y) {
            const uchar* was = before.constScanLine(y);
            const uchar* is = image.constScanLine(y);
            for (int x = 0; x < image.width(); ++x, was += 3, is += 3) {
                if (!area.contains(x, y)) {
                    changedOutside += std::equal(was, was + 3, is) ? 0 : 1;
                    continue;
                }
                // A channel without light has nothing to scale: black stays black.
                for (int c = 0; c < 3; ++c) lit += !r.grey && was[c] == 0 && is[c] != 0 ? 1 : 0;
                notGrey += r.grey && (is[0] != is[1] || is[1] != is[2]) ? 1 : 0;
                lowest = std::min<int>(lowest, is[1]);
                highest = std::max<int>(highest, is[1]);
            }
        }
        EXPECT_EQ(changedOutside, 0) << row.toStdString();
        EXPECT_EQ(lit, 0) << row.toStdString();
        EXPECT_EQ(notGrey, 0) << row.toStdString();
        // A uniform area is spread over the two bytes next to the wanted light, no wider.
        if (QString(r.device) == "pattern:grey") {
            EXPECT_LE(highest - lowest, 1) << row.toStdString();
        }
    }
    // Half black, half white cannot reach 80 %: the white stays white, the black black.
    Capture("pattern:checker");
    Run<TDVCmdImageChange>({{"Brightness", "80"}});
    EXPECT_DOUBLE_EQ(image::MeanLuminance(CurrentImage::snapshot(), QRect(0, 0, 640, 480)), 0.5);
    // A black area stays black; bad brightness is refused.
    Run<TDVCmdImageChange>({{"Brightness", "50"}, {"Rect", "[40, 0, 40, 40]"}});  // a black square
    EXPECT_EQ(image::MeanLuminance(CurrentImage::snapshot(), QRect(40, 0, 40, 40)), 0.0);
    EXPECT_TRUE(Failure([&] { Run<TDVCmdImageChange>({{"Brightness", "120"}}); }).contains("120"));
}

TEST_F(ImageCommandTest, CaptureFromFilesAndPatterns)
{
    Capture("pattern:checker");
    Save(Path("checker.bmp"));
    Capture("pattern:bars");
    Capture("file:%PROJEKTPFAD%/checker.bmp");
    EXPECT_EQ(CurrentImage::snapshot().pixel(45, 5), qRgb(0, 0, 0));
    EXPECT_EQ(CurrentImage::snapshot().pixel(5, 5), qRgb(255, 255, 255));
    Capture("pattern:checker@5,-3");
    EXPECT_EQ(CurrentImage::snapshot().pixel(44, 5), qRgb(255, 255, 255));  // the edge moved right by 5
    EXPECT_EQ(CurrentImage::snapshot().pixel(4, 36), qRgb(0, 0, 0));       // and up by 3
    // Moves beyond a million pixels are a million pixels.
    const std::pair<const char*, const char*> far[] = {{"pattern:bars@0,-2147483648", "pattern:bars@0,-1000000"},
                                                       {"pattern:bars@99999999999999999999,3", "pattern:bars@1000000,3"},
                                                       {"pattern:bars@-2147483648,2147483647", "pattern:bars@-1000000,1000000"}};
    for (const auto& [given, clamped] : far) {
        Capture(given);
        const QImage moved = CurrentImage::snapshot();
        Capture(clamped);
        EXPECT_EQ(moved, CurrentImage::snapshot()) << given;
    }
    EXPECT_TRUE(Failure([&] { Capture("pattern:zebra"); }).contains("bars, grey, checker"));
    EXPECT_TRUE(Failure([&] { Capture("file:" + Path("fehlt.bmp")); }).contains("fehlt.bmp"));
    EXPECT_TRUE(Failure([&] { Run<TDVCmdImageCapture>({{"Device", "pattern:bars"}, {"Exposure", "-1"}}); }).contains("-1"));
}

TEST_F(ImageCommandTest, EvalShowsAFourNumberRectInTheDialogForm)
{
    TDVCmdImageEvaluation command(&host);
    TParamList out;
    command.SetParams(MakeParams({{"Rect", "{1}{2}{3}{4}"}, {"Result", "Ergebnis"}}));
    command.ReadParams(out);
    EXPECT_EQ(out.GetString("Rect"), "[1, 2, 3, 4]");
    command.SetParams(MakeParams({{"Rect", "[1, 2]"}}));
    command.ReadParams(out);
    EXPECT_EQ(out.GetString("Rect"), "[1, 2]");  // not four numbers: kept as written
}

TEST(PortableFileTextTest, TheProjectFolderBecomesThePlaceholder)
{
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"/p/projekt/bilder/a.bmp", "/p/projekt", "\"%PROJEKTPFAD%/bilder/a.bmp\""},
        {"/p/projekt2/a.bmp", "/p/projekt", "\"/p/projekt2/a.bmp\""},
        {"/p/projekt/a.bmp", "/p/projekt/", "\"%PROJEKTPFAD%/a.bmp\""},
        {"/x/a.bmp", "", "\"/x/a.bmp\""},
        // Folders are matched regardless of case, as the placeholder is replaced when the script runs.
        {"/P/Projekt/Bilder/a.bmp", "/p/projekt", "\"%PROJEKTPFAD%/Bilder/a.bmp\""},
        {"/p/projekt/a.bmp", "/P/PROJEKT", "\"%PROJEKTPFAD%/a.bmp\""},
        {"/p/projektX/a.bmp", "/P/PROJEKT", "\"/p/projektX/a.bmp\""},
    };
    for (const auto& [path, folder, text] : rows) EXPECT_EQ(image::PortableFileText(path, folder), text) << path;
    // A relative project folder is taken from the working directory, as the file dialog's path is.
    EXPECT_EQ(image::PortableFileText(QDir::current().filePath("proj/a.bmp"), "proj"), "\"%PROJEKTPFAD%/a.bmp\"");
}

}  // namespace
}  // namespace dv
