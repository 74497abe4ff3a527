#pragma once
// Characters and codes always convert through the Windows-1252 code page, never through UTF-16.
#include <QChar>
#include <QString>

namespace dv {

// The character of a Windows-1252 code (128 is the euro sign); "?" for a code outside 0..255.
QChar Chr1252(int code);
// The Windows-1252 code of a character; 63 ("?") for a character the code page lacks.
int Ord1252(QChar c);

}  // namespace dv
