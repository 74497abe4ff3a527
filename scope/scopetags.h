#pragma once
// The tag language of Scope(Command, Special): reading both texts into the decoded settings and
// writing them back. Tags are found by plain substring search, so their order, spacing and any
// text between them do not matter.
#include "framework/exceptions.h"
#include "scope/scopesettings.h"

#include <QString>

namespace dv::scope {

// The text after the first startTag up to the next endTag; empty when either is missing. With
// skip > 1 the text is first shortened skip - 1 times through the next endTag.
QString GetStrPart(const QString& startTag, const QString& endTag, const QString& text, int skip);
// Field n (from 1; 0 counts as 1) of text split at delimiter: the whole text when it holds no
// delimiter, the last field when n is past the end. The delimiter "0" never splits.
QString Segment(const QString& text, const QString& delimiter, int n);

// A field that must be an integer is none; decoding stopped where it met it.
class TScopeDecodeFault : public TDravikException {
public:
    using TDravikException::TDravikException;
};

// Resets the settings (ResetForDecode) and fills them from both texts. Raises TScopeDecodeFault at
// the first faulty field; the settings decoded before it keep their new values.
void DecodeTags(const QString& command, const QString& special, TDecodedSettings& settings);

struct TScopeScript {
    QString Command;
    QString Special;
    bool operator==(const TScopeScript&) const = default;
};

// Command and Special as the editor writes them: UseColors and UseScaling stand for the colour and
// scaling boxes, a non-empty curve source for a checked slot.
TScopeScript WriteScript(const TDecodedSettings& settings);

// The keyword of a function as the "[FX:" tag spells it ("RMS"); empty for TScopeFnc::None.
QString FunctionKeyword(TScopeFnc function);

}  // namespace dv::scope
