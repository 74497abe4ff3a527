#include "scope/curvefile.h"

#include "framework/exceptions.h"
#include "framework/translate.h"
#include "framework/typeconversion.h"

#include <QFile>
#include <QSaveFile>
#include <QStringDecoder>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>
#include <string>

namespace dv::scope {

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string_view Trimmed(std::string_view s)
{
    while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
    while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
    return s;
}

// The whole field as a number, or none.
std::optional<double> FieldNumber(std::string_view field)
{
    field = Trimmed(field);
    if (field.empty()) return std::nullopt;
    if (field.front() == '+') field.remove_prefix(1);
    double value = 0;
    auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (ec == std::errc() && end == field.data() + field.size()) return std::isfinite(value) ? std::optional(value) : std::nullopt;
    if (field.find('.') != std::string_view::npos || field.find(',') == std::string_view::npos) return std::nullopt;
    std::string pointed(field);
    for (char& c : pointed) {
        if (c == ',') c = '.';
    }
    const char* last = pointed.data() + pointed.size();
    auto [end2, ec2] = std::from_chars(pointed.data(), last, value);
    if (ec2 != std::errc() || end2 != last || !std::isfinite(value)) return std::nullopt;
    return value;
}

// Lines of the text, a last one without a line end included.
std::size_t RowCount(std::string_view text)
{
    std::size_t rows = 0;
    for (const char* p = text.data(); (p = static_cast<const char*>(std::memchr(p, '\n', text.data() + text.size() - p)));) {
        ++rows;
        ++p;
    }
    return rows + (!text.empty() && text.back() != '\n' ? 1 : 0);
}

// Text that Windows editors save as UTF-8 with a byte order mark or as UTF-16, brought to the
// Windows-1252 bytes a separator code names. Plain files (ASCII, Windows-1252, UTF-8 without a
// mark) stay as they are: none.
std::optional<QByteArray> Recoded1252(std::string_view bytes)
{
    const QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QByteArray ansi = AnsiBytes(data);
    if (ansi.constData() != data.constData()) return ansi;
    // No mark, but a zero byte beside the first character: UTF-16 all the same.
    if (bytes.size() < 2 || (bytes[0] == '\0') == (bytes[1] == '\0')) return std::nullopt;
    QStringDecoder decode(bytes[0] == '\0' ? QStringConverter::Utf16BE : QStringConverter::Utf16LE);
    return EncodeText(decode(data), TTextEncoding::Windows1252);
}

// The points of a file's bytes; onRows, when given, learns the number of rows first.
TCurvePoints ParseBytes(std::string_view bytes, char separator, const std::function<void(std::size_t rows)>& onRows)
{
    const std::optional<QByteArray> recoded = Recoded1252(bytes);
    const std::string_view text = recoded ? std::string_view(recoded->constData(), static_cast<std::size_t>(recoded->size())) : bytes;
    if (onRows) onRows(RowCount(text));
    return ParseCurveText(text, separator);
}

}  // namespace

TCurvePoints ParseCurveText(std::string_view text, char separator)
{
    TCurvePoints points;
    points.x.reserve(text.size() / 16);
    points.y.reserve(text.size() / 16);
    while (!text.empty()) {
        const std::size_t eol = text.find('\n');
        const std::string_view row = text.substr(0, eol);
        text = eol == std::string_view::npos ? std::string_view() : text.substr(eol + 1);
        const std::size_t cut = row.find(separator);
        if (cut == std::string_view::npos) {
            const std::optional<double> y = FieldNumber(row);
            if (!y) continue;
            points.x.push_back(static_cast<double>(points.y.size()));
            points.y.push_back(*y);
            continue;
        }
        const std::string_view rest = row.substr(cut + 1);
        const std::optional<double> x = FieldNumber(row.substr(0, cut));
        const std::optional<double> y = FieldNumber(rest.substr(0, rest.find(separator)));
        if (!x || !y) continue;
        points.x.push_back(*x);
        points.y.push_back(*y);
    }
    return points;
}

TCurvePoints ReadCurveFile(const QString& path, char separator, const std::function<void(std::size_t rows)>& onRows)
{
    const QString unreadable = Format(_("Die Kurvendatei %s kann nicht gelesen werden"), {path});
    // Opened without waiting and looked at before reading: a pipe would wait for a writer, and a
    // device or a folder never ends.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) throw TDravikException(unreadable);
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        throw TDravikException(Format(_("Die Kurvendatei %s ist keine gewöhnliche Datei (Ordner, Gerät oder Pipe)"), {path}));
    }
    QFile file;
    if (!file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        throw TDravikException(unreadable);
    }
    const qint64 size = file.size();
    if (size > 0) {
        if (const uchar* mapped = file.map(0, size)) {
            return ParseBytes(std::string_view(reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(size)), separator, onRows);
        }
    }
    const QByteArray bytes = file.readAll();
    return ParseBytes(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())), separator, onRows);
}

void WriteCurveFile(const QString& path, const TCurvePoints& points, char separator)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        throw TDravikException(Format(_("Die Kurvendatei %s kann nicht geschrieben werden"), {path}));
    }
    QByteArray text;
    for (std::size_t i = 0; i < points.x.size() && i < points.y.size(); ++i) {
        text += QByteArray::number(points.x[i], 'g', 17) + separator + QByteArray::number(points.y[i], 'g', 17) + '\n';
    }
    file.write(text);
    if (!file.commit()) throw TDravikException(Format(_("Die Kurvendatei %s kann nicht geschrieben werden"), {path}));
}

}  // namespace dv::scope
