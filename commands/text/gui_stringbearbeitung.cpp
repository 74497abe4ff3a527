#include "commands/text/gui_stringbearbeitung.h"

#include "framework/dvtools.h"
#include "framework/intconvert.h"
#include "framework/olderline.h"
#include "framework/services.h"
#include "framework/translate.h"

#include <array>

namespace dv {

namespace {

constexpr std::array<TFragPositionRow, 3> kFragPositions{{
    {TFragPosition::fpLeft, "Left", "LEFT:", "Links", "RB_Left"},
    {TFragPosition::fpRight, "Right", "RIGHT:", "Rechts", "RB_Right"},
    {TFragPosition::fpCenter, "Center", "MID:", "Mittig", "RB_Mid"},
}};
static_assert(kFragPositions.size() == static_cast<std::size_t>(TFragPosition::Count));

constexpr std::array<TTrimModeRow, 3> kTrimModes{{
    {TTrimMode::Both, 1, "L + R", "RB_Trim"},
    {TTrimMode::Left, 2, "L", "RB_TrimLeft"},
    {TTrimMode::Right, 3, "R", "RB_Trimright"},
}};
static_assert(kTrimModes.size() + 1 == static_cast<std::size_t>(TTrimMode::Count));  // None has no row

using TFields = TDVCmdStringConversion::TFields;

// Switches that a "FormatStr(" line turns on by the mere presence of their marker.
struct TMarkerFlag {
    const char* marker;
    bool TFields::*flag;
};
constexpr std::array<TMarkerFlag, 4> kMarkerFlags{{
    {"LENGHT", &TFields::strLen},  // the older form spells it so; "LENGTH" never meant this switch
    {"MATH", &TFields::convert},
    {"UPPERCASE,", &TFields::upperCase},
    {"ROUND,", &TFields::round},
}};

QString BoolText(bool b) { return b ? QStringLiteral("True") : QStringLiteral("False"); }

// The runtime's Copy and Delete on 1-based positions.
QString Copy(const QString& s, qsizetype from, qsizetype n)
{
    if (from < 1) from = 1;
    if (n <= 0 || from > s.size()) return {};
    return s.mid(from - 1, n);
}

void Delete(QString& s, qsizetype from, qsizetype n)
{
    if (from < 1 || from > s.size() || n <= 0) return;
    s.remove(from - 1, n);
}

// The runtime's trim: blanks are every character up to and including the space.
QString TrimLeft(const QString& s)
{
    qsizetype i = 0;
    while (i < s.size() && s[i] <= QChar(' ')) ++i;
    return s.mid(i);
}

QString TrimRight(const QString& s)
{
    qsizetype n = s.size();
    while (n > 0 && s[n - 1] <= QChar(' ')) --n;
    return s.left(n);
}

QString Trimmed(const QString& s, int mode)
{
    switch (mode) {
    case 1: return TrimRight(TrimLeft(s));
    case 2: return TrimLeft(s);
    case 3: return TrimRight(s);
    default: return s;
    }
}

// Step 6: the fragment of s at the anchor; a deleted fragment is also gone from s.
QString Fragment(QString& s, const TFields& f, qsizetype start, qsizetype len)
{
    switch (f.fragPos) {
    case TFragPosition::fpRight:
        if (f.cut) return Copy(s, s.size() - len + 1, s.size());
        Delete(s, s.size() - len + 1, s.size());
        return s;
    case TFragPosition::fpCenter:
        if (f.cut) return Copy(s, start, len);
        Delete(s, start, len);
        return s;
    case TFragPosition::fpLeft:
    case TFragPosition::Count: break;
    }
    if (f.cut) return Copy(s, 1, len);
    Delete(s, 1, len);
    return s;
}

}  // namespace

std::span<const TFragPositionRow> FragPositions() { return kFragPositions; }

std::span<const TTrimModeRow> TrimModes() { return kTrimModes; }

TFragPosition ParamToPosition(const QString& text)
{
    const QString upper = text.toUpper();
    if (upper == QLatin1String("CENTER")) return TFragPosition::fpCenter;
    if (upper == QLatin1String("RIGHT")) return TFragPosition::fpRight;
    return TFragPosition::fpLeft;
}

QString GetPositionParam(TFragPosition position)
{
    for (const TFragPositionRow& row : kFragPositions) {
        if (row.value == position) return '"' + QLatin1String(row.keyword) + '"';
    }
    return QStringLiteral("\"Left\"");
}

TDVCmdStringConversion::TDVCmdStringConversion(TDVParser* parser)
    : TDVFieldsCommand("TDVCmdStringConversion", parser)
{
}

void TDVCmdStringConversion::SetDefaults() { fields_ = TFields{}; }

void TDVCmdStringConversion::SetParams(const TParamList& params)
{
    TFields& f = fields_;
    f.separator = params.GetString(QStringLiteral("Separator"));
    f.search = params.GetString(QStringLiteral("Search"));
    f.searchFlag = !f.search.isEmpty();
    f.input = params.GetString(QStringLiteral("Input"));
    f.output = params.GetString(QStringLiteral("Output"));
    f.upperCase = StrToBoolEx(params.GetString(QStringLiteral("UpperCase")), false);
    f.strLen = StrToBoolEx(params.GetString(QStringLiteral("StrLen")), false);
    f.fragment = StrToBoolEx(params.GetString(QStringLiteral("Fragment")), false);
    f.cut = StrToBoolEx(params.GetString(QStringLiteral("Cut")), false);
    f.pos = params.GetString(QStringLiteral("Pos"));
    f.length = params.GetString(QStringLiteral("Length"));
    f.fragPos = ParamToPosition(StripQuotes(params.GetString(QStringLiteral("FragPos"))));
    f.segment = StrToBoolEx(params.GetString(QStringLiteral("Segment")), false);
    f.part = GetDefStr(params.GetString(QStringLiteral("Part")), QStringLiteral("0"));
    f.convert = StrToBoolEx(params.GetString(QStringLiteral("Convert")), false);
    f.round = StrToBoolEx(params.GetString(QStringLiteral("Round")), false);
    f.trim = StrToBoolEx(params.GetString(QStringLiteral("Trim")), false);
    f.trimMode = StrToIntDef(params.GetString(QStringLiteral("TrimMode")), 0);
    f.replaceWith = params.GetString(QStringLiteral("ReplaceWith"));
    f.replacePos = params.GetString(QStringLiteral("ReplacePos"));
    f.replace = StrToBoolEx(params.GetString(QStringLiteral("Replace")), false);
    f.count = params.GetString(QStringLiteral("Count"));
    f.countFlag = !f.count.isEmpty();
}

void TDVCmdStringConversion::ReadParams(TParamList& params)
{
    const TFields& f = fields_;
    params.AddString(QStringLiteral("Separator"), f.separator);
    params.AddString(QStringLiteral("Search"), f.searchFlag ? f.search : QString());
    params.AddString(QStringLiteral("Input"), f.input);
    params.AddString(QStringLiteral("Output"), f.output);
    params.AddString(QStringLiteral("UpperCase"), BoolText(f.upperCase));
    params.AddString(QStringLiteral("StrLen"), BoolText(f.strLen));
    params.AddString(QStringLiteral("Fragment"), BoolText(f.fragment));
    // The one numeric boolean of this command: older scripts carry it so.
    params.AddString(QStringLiteral("Cut"), f.cut ? QStringLiteral("-1") : QStringLiteral("0"));
    params.AddString(QStringLiteral("Pos"), f.pos);
    params.AddString(QStringLiteral("Length"), f.length);
    params.AddString(QStringLiteral("FragPos"), GetPositionParam(f.fragPos));
    params.AddString(QStringLiteral("Segment"), BoolText(f.segment));
    params.AddString(QStringLiteral("Part"), f.part);
    params.AddString(QStringLiteral("Convert"), BoolText(f.convert));
    params.AddString(QStringLiteral("Round"), BoolText(f.round));
    params.AddString(QStringLiteral("Trim"), BoolText(f.trim));
    params.AddString(QStringLiteral("TrimMode"), QString::number(f.trimMode));
    params.AddString(QStringLiteral("ReplaceWith"), f.replaceWith);
    params.AddString(QStringLiteral("ReplacePos"), f.replacePos);
    params.AddString(QStringLiteral("Replace"), BoolText(f.replace));
    params.AddString(QStringLiteral("Count"), f.count);
}

bool TDVCmdStringConversion::IsOlderLine(const QString& line) const { return BeginsWithCall(line, OlderNames()); }

bool TDVCmdStringConversion::DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*)
{
    TFields f;
    f.cut = false;
    f.pos.clear();
    f.length.clear();
    fields_ = f;
    if (!script.contains(QLatin1String("FormatStr("))) return false;

    auto part = [&script](const char* start, const char* stop) {
        return GetStrPart(QLatin1String(start), QLatin1String(stop), script);
    };
    auto has = [&script](const char* marker) { return script.contains(QLatin1String(marker)); };

    f.input = part("IN:", ",");
    f.output = part("OUT:", ")");
    if (has("POS:(")) {
        f.search = part("POS:(", "),");
        f.searchFlag = true;
    } else {
        f.search = part("POS:", ",");
        f.searchFlag = !f.search.isEmpty();
    }
    for (const TMarkerFlag& m : kMarkerFlags) f.*m.flag = has(m.marker);
    f.fragment = has("CUT:") || has("DEL:");
    if (f.fragment) {
        f.cut = has("CUT:");
        for (const TFragPositionRow& row : kFragPositions) {
            if (has(row.olderKeyword)) f.fragPos = row.value;
        }
        f.pos = part("P1:", ":");
        f.length = part(":L:", ",");
    }
    if (has("SEG:SEP:")) {
        f.segment = true;
        f.separator = part("SEP:", ":");
        f.part = GetDefStr(part("PART:", ","), QStringLiteral("0"));
    }
    if (has("CHARCOUNT:")) {
        f.count = part("CHARCOUNT:", ",");
        f.countFlag = true;
    }
    const QString trim = part("TRIM:", ",");
    if (!trim.isEmpty()) {
        f.trim = true;
        f.trimMode = StrToIntDef(trim, 0);
    }
    const QString replace = part("REPLACE:", ",");
    if (!replace.isEmpty()) {
        f.replace = true;
        const qsizetype at = replace.indexOf('@');
        f.replacePos = at < 0 ? QString() : replace.left(at);
        f.replaceWith = replace.mid(at + 1);
    }
    fields_ = f;
    ReadParams(params);
    return true;
}

QString TDVCmdStringConversion::GetDescription(const QString&, const TParamList& params)
{
    return Format(_("String-Bearbeitung von %s nach %s"),
                  {params.GetString(QStringLiteral("Input")), params.GetString(QStringLiteral("Output"))});
}

TStringResult TDVCmdStringConversion::Process(const TFields& f)
{
    const int pos = StrToIntDef(f.pos, 0);
    const int len = StrToIntDef(f.length, 0);
    TStringResult r;

    QString s = f.input;
    if (f.upperCase) {
        s = s.toUpper();
        r.kind = TOutputKind::String;
    }
    r.text = s;
    qsizetype found = 0;
    if (f.searchFlag) {
        found = s.indexOf(f.search) + 1;
        r.text = QString::number(found);
        r.kind = TOutputKind::Number;
    }
    if (f.strLen) {
        r.text = QString::number(s.size());
        r.kind = TOutputKind::Number;
    }
    if (f.fragment) {
        r.text = Fragment(s, f, f.searchFlag ? found : pos, len);
        r.kind = TOutputKind::String;
    }
    if (f.segment) {
        if (f.strLen) r.text = s;
        r.text = Segment(r.text, f.separator, StrToInt(f.part));
        r.kind = TOutputKind::String;
    }
    if (f.convert) r.kind = TOutputKind::Number;
    if (f.round) {
        r.text = QString::number(RoundHalfEven(DVStrToFloat(r.text)));
        r.kind = TOutputKind::Number;
    }
    if (f.trim) {
        r.text = Trimmed(r.text, f.trimMode);
        r.kind = TOutputKind::String;
    }
    if (f.replace) {
        const qsizetype at = StrToInt(f.replacePos);
        r.text = Copy(r.text, 1, at - 1) + f.replaceWith + Copy(r.text, at + f.replaceWith.size(), r.text.size());
        r.kind = TOutputKind::String;
    }
    if (f.countFlag) {
        r.text = QString::number(CountOfChar(f.count, r.text));
        r.kind = TOutputKind::Number;
    }
    return r;
}

void TDVCmdStringConversion::Start()
{
    if (fields_.input.isEmpty() || fields_.output.isEmpty()) return;
    const TStringResult r = Process(fields_);
    // Kind 3 (no step chose one) is written as a number too; a text that is none fails here.
    TValuePtr value;
    if (r.kind == TOutputKind::String) {
        value = std::make_unique<TStringValue>(r.text);
    } else {
        value = std::make_unique<TNumberValue>(r.text);
    }
    VarAccess().SetVariable(fields_.output, std::move(value));
}

void TDVCmdStringConversion::Run(TParamList& params)
{
    SetParams(params);
    Start();
}

// The editor's test writes no variable, so it needs no Output name.
QString TDVCmdStringConversion::OnEditorTest() { return Process(fields_).text; }

}  // namespace dv
