// ImageEval's comparison on a 1920 x 1080 picture against a copy moved by (5, -3), tolerance 16,
// over the picture less a margin, against the same algorithm written with OpenCV and numpy (bench/imageeval_opencv.py) on the
// same files. Prints both results and the ratio OpenCV time / our time, first call and best.
#include "image/evaluation.h"

#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

namespace {

constexpr int kDisplacement = 16;
// The area leaves a margin of the tolerance: an area that fills the picture is clipped back to
// the picture at every step, so the coarse search could not move it.
constexpr int kMargin = 2 * kDisplacement;

// A picture with structure at every scale; noise (a fixed pattern tied to the pixel, not to the
// content) keeps the moved copy from matching exactly, so that the two results are worth comparing.
QImage Scene(QSize size, QPoint shift, int noise)
{
    QImage image(size, QImage::Format_RGB888);
    for (int y = 0; y < size.height(); ++y) {
        std::uint8_t* row = image.scanLine(y);
        for (int x = 0; x < size.width(); ++x) {
            const int sx = x - shift.x();
            const int sy = y - shift.y();
            const double wave = 0.5 + 0.25 * std::sin(sx / 53.0) * std::cos(sy / 37.0) + 0.2 * std::sin((sx + 2 * sy) / 91.0);
            const bool block = (((sx + 4000) / 97) * 7 + ((sy + 4000) / 61) * 3) % 5 == 0;
            const int grain = noise * (((x * 7 + y * 13) % 5) - 2);
            const int v = std::clamp(static_cast<int>(255 * std::clamp(block ? 1.0 - wave : wave, 0.0, 1.0)) + grain, 0, 255);
            row[3 * x] = static_cast<std::uint8_t>(v);
            row[3 * x + 1] = static_cast<std::uint8_t>((v * 3 + sx + 4000) % 256);
            row[3 * x + 2] = static_cast<std::uint8_t>((255 - v + sy + 4000) % 256);
        }
    }
    return image;
}

double Seconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

}  // namespace

int main()
{
    QTemporaryDir dir;
    const QString refPath = dir.filePath("reference.bmp");
    const QString curPath = dir.filePath("current.bmp");
    Scene({1920, 1080}, {}, 0).save(refPath, "BMP");
    Scene({1920, 1080}, {5, -3}, 3).save(curPath, "BMP");
    // Both sides start from the files, so the pictures they compare are byte for byte the same.
    const QImage reference = QImage(refPath).convertToFormat(QImage::Format_RGB888);
    const QImage current = QImage(curPath).convertToFormat(QImage::Format_RGB888);
    const QRect area(kMargin, kMargin, current.width() - 2 * kMargin, current.height() - 2 * kMargin);

    double first = 0;
    double best = 1e9;
    dv::image::TComparison found;
    for (int run = 0; run < 4; ++run) {
        const auto start = std::chrono::steady_clock::now();
        found = dv::image::Compare(reference, current, area, kDisplacement, dv::image::TDifferenceKind::Rms);
        const double s = Seconds(start);
        if (run == 0) first = s;
        best = std::min(best, s);
    }

    const std::string command = "/usr/bin/python3 " DV_BENCH_DIR "/imageeval_opencv.py " + refPath.toStdString() + " " +
                                curPath.toStdString() + " " + std::to_string(kDisplacement) + " " + std::to_string(kMargin);
    FILE* pipe = popen(command.c_str(), "r");
    double cvFirst = 0, cvBest = 0, cvResult = 0;
    int cvX = 0, cvY = 0;
    const bool ok = pipe && std::fscanf(pipe, "%lf %lf %lf %d %d", &cvFirst, &cvBest, &cvResult, &cvX, &cvY) == 5;
    if (pipe) pclose(pipe);
    std::printf("ImageEval 1920x1080, shift (5, -3), displacement %d, area margin %d\n", kDisplacement, kMargin);
    std::printf("  ours:          result %.12f at (%d, %d)  first %.1f ms, best %.1f ms\n", found.Result(),
                found.offset.x(), found.offset.y(), first * 1e3, best * 1e3);
    if (!ok) {
        std::printf("  OpenCV+numpy:  not run (python3-opencv missing?)\n");
        return 1;
    }
    std::printf("  OpenCV+numpy:  result %.12f at (%d, %d)  first %.1f ms, best %.1f ms\n", cvResult, cvX, cvY,
                cvFirst * 1e3, cvBest * 1e3);
    std::printf("  |difference of results| = %.3g (target <= 1e-9)\n", std::fabs(cvResult - found.Result()));
    std::printf("  OpenCV+numpy time / our time (target >= 3): first %.2fx, best %.2fx\n", cvFirst / first, cvBest / best);
    return 0;
}
