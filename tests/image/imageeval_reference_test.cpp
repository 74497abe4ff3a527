// ImageEval against results computed independently from the written rules (numpy, by
// make_imageeval_refs.py) on the pictures in data/imageeval: content moved with and without
// noise; areas inside, partly outside, the whole picture, tiny, along the border; tolerances 0 to
// 16; RMS, worst pixel and coverage.
#include "image/bitmapfile.h"
#include "image/currentimage.h"
#include "image/evaluation.h"
#include "image/gui_imageevaluation.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iomanip>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace dv {
namespace {

using namespace test;

const QString kFolder = QStringLiteral(DV_TEST_DATA_DIR "/image/data/imageeval/");

struct TRefRow {
    std::string reference;
    std::string current;
    std::string rect;  // "left,top,width,height" or "-"
    int displacement = 0;
    std::string mode;  // rms, max or coverage
    double result = 0;
    QPoint offset;
};

std::vector<TRefRow> LoadRows()
{
    std::ifstream in((kFolder + "results.txt").toStdString());
    std::vector<TRefRow> rows;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream fields(line);
        TRefRow r;
        int dx = 0, dy = 0;
        fields >> r.reference >> r.current >> r.rect >> r.displacement >> r.mode >> r.result >> dx >> dy;
        r.offset = QPoint(dx, dy);
        if (fields) rows.push_back(r);
        else ADD_FAILURE() << "unreadable row: " << line;
    }
    return rows;
}

// The Rect parameter as a script hands it over; "-" none, the whole picture.
QString RectParam(const std::string& rect)
{
    return rect == "-" ? QStringLiteral("[]") : '[' + QString::fromStdString(rect).replace(',', ", ") + ']';
}

TEST(ImageEvalReferenceTest, ResultsAndOffsetsMatchTheIndependentComputation)
{
    const std::vector<TRefRow> rows = LoadRows();
    ASSERT_GE(rows.size(), 150u);
    TTestHost host;
    host.Declare("Ergebnis", g_NumberType);
    std::map<std::string, QImage> pictures;
    const auto picture = [&pictures](const std::string& name) -> const QImage& {
        auto [it, added] = pictures.try_emplace(name);
        if (added) it->second = image::ReadBitmap(kFolder + QString::fromStdString(name));
        return it->second;
    };
    for (const TRefRow& r : rows) {
        const QImage& reference = picture(r.reference);
        const QImage& current = picture(r.current);
        CurrentImage::replace(current);
        TParamList params;
        params.AddString("Result", "Ergebnis");
        params.AddString("File", kFolder + QString::fromStdString(r.reference));
        params.AddString("Rect", RectParam(r.rect));
        params.AddString("Displacement", QString::number(r.displacement));
        params.AddString("Coverage", r.mode == "coverage" ? "True" : "False");
        params.AddString("CompareMax", r.mode == "max" ? "True" : "False");
        TDVCmdImageEvaluation command(&host);
        command.Run(params);
        const double result = static_cast<double>(static_cast<const TNumberValue*>(host.Value("Ergebnis"))->GetVal());
        std::ostringstream row;
        row << std::setprecision(17) << r.current << " against " << r.reference << " rect " << r.rect << " d " << r.displacement << " " << r.mode
            << ": expected " << r.result << ", got " << result;
        // Both sides add the same squares in another order: they differ by about 1e-13.
        EXPECT_NEAR(result, r.result, 1e-9) << row.str();
        if (r.mode == "coverage") continue;
        const auto kind = r.mode == "max" ? image::TDifferenceKind::WorstPixel : image::TDifferenceKind::Rms;
        const QPoint offset = image::Compare(reference, current, image::AreaOfText(RectParam(r.rect), current.size()),
                                             r.displacement, kind).offset;
        EXPECT_EQ(offset, r.offset) << row.str() << " at " << offset.x() << "," << offset.y();
    }
}

}  // namespace
}  // namespace dv
