#pragma once
// Curve files: one point per row, fields split at a separator character. Rows with two or more
// fields give x = field 1 and y = field 2; rows with one field give y, with x the row's index among
// the curve's points. Rows whose fields are no numbers (headers, blank lines) are skipped. Numbers
// are read as typed numbers are: "," is the decimal separator unless the field holds a ".".
// Files are read as Windows-1252 bytes, the code the separator is given in; UTF-8 with a byte
// order mark and UTF-16 (little or big endian, with or without the mark) are converted first.
#include <QString>

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

namespace dv::scope {

struct TCurvePoints {
    std::vector<double> x;
    std::vector<double> y;
};

// Reads the points of a file; raises TDravikException naming the file when it cannot be read or
// is no regular file (a folder, a device, a pipe). onRows, when given, learns the number of rows
// before they are read (the points are at most that many).
TCurvePoints ReadCurveFile(const QString& path, char separator, const std::function<void(std::size_t rows)>& onRows = {});
// The points of a file's text (exposed for tests).
TCurvePoints ParseCurveText(std::string_view text, char separator);
// Writes the points as rows "x<separator>y" with 17 significant digits and a decimal point, the
// form ReadCurveFile reads back identically.
void WriteCurveFile(const QString& path, const TCurvePoints& points, char separator);

}  // namespace dv::scope
