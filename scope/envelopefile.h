#pragma once
// Envelope files (".HKV"): the upper and lower envelope (handles 5 and 6) as INI text, and the
// nearest-point search used to delete an envelope point. Failures are raised to the caller, which
// shows them; nothing here opens a dialog.
#include "analysis/curvestore.h"
#include "framework/exceptions.h"

#include <QChar>
#include <QString>

namespace dv::scope {

// The most points one envelope of a file may declare: a damaged count cannot ask for gigabytes.
inline constexpr long kMaxEnvelopePoints = 10'000'000;

inline constexpr const char* kEnvelopeExtension = "HKV";
inline constexpr const char* kEnvelopeFilter = "Hüllkurve|*.HKV";

// The envelope file vanished while it was being loaded; the message is the file name.
class TFileNotFoundException : public TDravikException {
public:
    explicit TFileNotFoundException(const QString& fileName) : TDravikException(fileName) {}
};

// The file did not exist when loading began; nothing was loaded. The message is the complete
// error text for the user.
class TEnvelopeFileMissing : public TDravikException {
public:
    explicit TEnvelopeFileMissing(const QString& fileName);
};

// The decimal separator of the user's locale, which envelope files are written with.
QChar LocaleDecimalSeparator();

// Writes handle 5 as "UpperCurve" and handle 6 as "LowerCurve"; an existing file is deleted first
// so that no keys of an older, longer envelope remain. Numbers get 15 significant digits with the
// given decimal separator. Raises TDravikException when the file cannot be replaced or written.
void SaveHK(const analysis::TCurveStore& store, const QString& fileName,
            QChar decimalSeparator = LocaleDecimalSeparator());

// Replaces handles 5 and 6 by the envelopes of the file, read as the platform's profile functions
// read them (docs/analysis.md lists the rules): only the first section of a name counts and in it
// the first of duplicate keys, a quoted value loses its quotes, the count is read as the runtime
// reads integers ("$3" is 3), a file with a byte order mark is Unicode text. A missing section
// reads as an empty envelope, a missing or unreadable coordinate as 0, also for a count beyond
// the file's keys; the largest double as saved reads back as itself. Raises TEnvelopeFileMissing
// when the file does not exist (both envelopes untouched), TFileNotFoundException when it
// disappears between the two sections and TDravikException when it cannot be read or counts more
// than 10,000,000 points; points loaded before a fault stay.
void LoadHK(analysis::TCurveStore& store, const QString& fileName);

// Zero-based index of the point of the envelope handle nearest to x (a tie goes to the later
// point); -1 for an envelope without points.
int GetHKToDelete(const analysis::TCurveStore& store, int envelope, double x);

// Texts of the scope's error dialogs for a failed save or load.
QString EnvelopeSaveFaultText(const QString& fileName, const QString& fault);
QString EnvelopeLoadFaultText(const QString& fileName, const QString& fault);

}  // namespace dv::scope
