#pragma once
// The host's text and number helpers that the commands rely on.
#include <QString>
#include <QStringList>

#include <cstdint>

namespace dv {

// Text of source between the first startText (of occurrence index, 0 = first) and the following
// stopText, without either; empty when either is missing.
QString GetStrPart(const QString& startText, const QString& stopText, const QString& source, int index = 0);
// The n-th piece of text split at separator, counting from 1; empty when there are fewer pieces.
QString Segment(const QString& text, const QString& separator, int n);
// 1-based position of the last occurrence of sub in text; 0 when there is none.
int RPos(const QString& sub, const QString& text);
// Text without one pair of enclosing double or single quotes.
QString StripQuotes(const QString& text);
QString StripChar(const QString& text, QChar c);
// Non-overlapping occurrences of what (one character or a longer text) in text.
int CountOfChar(const QString& what, const QString& text);
// text, or def when text is empty or blank.
QString GetDefStr(const QString& text, const QString& def);
// "True"/"False" in any case, "Ja"/"Nein", "Yes"/"No", "On"/"Off" and numbers (non-zero true);
// def for anything else.
bool StrToBoolEx(const QString& text, bool def);
// A number as text with a decimal point, 15 significant digits, independent of the locale.
QString DVFloatToStr(long double x);
// Text with a decimal point to a number, independent of the locale; raises TDVRuntimeException
// naming the text when it is no number.
long double DVStrToFloat(const QString& text);
// Number text with its decimal separator normalised to a point.
QString KzP(const QString& text);
// Binary digits of an unsigned value, at least digits wide.
QString IntToBin(std::uint64_t value, int digits);
// Value of a text of binary digits; raises TDVRuntimeException for any other character.
std::int64_t BinToInt(const QString& text);
// value limited to low..high.
int InInterval(int low, int high, int value);
// Writes a formatted line to the debug log ("%s"/"%d" placeholders).
void DbgLog(const QString& format, const QStringList& args = {});
// File size in bytes; -1 when the file cannot be read.
std::int64_t FileGetSize(const QString& path);

}  // namespace dv
