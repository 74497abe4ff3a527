#include "commands/text/gui_numberconvert.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/intconvert.h"
#include "framework/olderline.h"
#include "framework/services.h"
#include "framework/translate.h"
#include "framework/typeconversion.h"

#include <QRandomGenerator>

#include <array>
#include <bit>
#include <cmath>
#include <limits>

namespace dv {

namespace {

using enum TNumberOperation;

// clang-format off
constexpr std::array<TNumberOperationRow, 13> kOperations{{
    {ccBinToInt,        "ccBinToInt",        "BinToInt",          "Binär zu Integer",   false, false},
    {ccIntToBin,        "ccIntToBin",        "IntToBin",          "Integer zu Binär",   true,  true},
    {ccIntToHex,        "ccIntToHex",        "IntToHex",          "Integer zu Hex",     true,  true},
    {ccHexToInt,        "ccHexToInt",        "HexToInt",          "Hex zu Integer",     false, false},
    {ccRandom,          "ccRandom",          "RND",               "Zufallszahl von IN", false, false},
    {ccOrd,             "ccOrd",             "ORD",               "String zu Ord",      false, false},
    {ccASCII,           "ccASCII",           "ASCII",             "ASCII zu String",    true,  false},
    {ccMaxArrayEntry,   "ccMaxArrayEntry",   "MaxArrayEntry",     "Max Array Index",    false, false},
    {ccHigh,            "ccHigh",            "HIGH",              "High Byte",          false, false},
    {ccLow,             "ccLow",             "LOW",               "Low Byte",           false, false},
    {ccRound,           "ccRound",           "ROUND",             "Runden",             false, true},
    {cc4ByteHexToFloat, "cc4ByteHexToFloat", "4BYTEHEX_TO_FLOAT", "4ByteHex zu Float",  false, false},
    {ccSumOfArray,      "ccSumOfArray",      "SUM_OF_ARRAY",      "∑ Real Array",       false, false},
}};
// clang-format on
static_assert(kOperations.size() + 1 == static_cast<std::size_t>(ccUnknown));

TValuePtr Number(long double x) { return std::make_unique<TNumberValue>(x); }

[[noreturn]] void InvalidCast() { throw TDVRuntimeException(_("Ungültige Typumwandlung")); }

// The Windows-1252 text of an unsigned 32-bit value in hexadecimal, at least digits wide.
QString IntToHex(std::int32_t value, int digits)
{
    return QStringLiteral("%1").arg(static_cast<std::uint32_t>(value), digits, 16, QChar('0')).toUpper();
}

long double HexToInt(const QString& input)
{
    const QString text = input.startsWith('$') ? input : '$' + input;
    try {
        return StrToInt(text);
    } catch (const TDVRuntimeException&) {
        // Scripts test for this value to recognise text that is no hexadecimal number.
        return std::numeric_limits<double>::max();
    }
}

long double RandomFrom(const QString& input)
{
    const std::int64_t n = RoundHalfEven(DVStrToFloat(input));
    const std::int64_t drawn = n > 0 ? QRandomGenerator::global()->bounded(static_cast<qint64>(n)) : 0;
    return static_cast<long double>(drawn + 1);
}

long double RoundToDigits(const QString& input, int digits)
{
    // The factor is a single on purpose: results must stay what scripts have always received, with
    // the small errors of large digit counts.
    const auto factor = static_cast<float>(std::pow(10.0L, digits));
    const std::int64_t scaled = RoundHalfEven(DVStrToFloat(input) * factor);
    return static_cast<long double>(scaled) / factor;
}

// The text is a float's big-endian hexadecimal form; short texts are padded with zeros at the end.
long double HexBytesToFloat(const QString& input)
{
    QString text = input;
    while (text.size() < 8) text += '0';
    std::uint32_t bits = 0;
    for (int at = 0; at < 8; at += 2) {
        const auto byte = static_cast<std::uint32_t>(StrToInt('$' + text.mid(at, 2)));
        bits = (bits << 8) | (byte & 0xFF);
    }
    return std::bit_cast<float>(bits);
}

long double SumOfArray(const TValue& value)
{
    const auto* array = dynamic_cast<const TArrayValue*>(&value);
    if (!array) InvalidCast();
    long double sum = 0;
    for (int i = 1; i <= array->GetSize(); ++i) {
        if (array->GetKindAt(i) != TValueKind::Number) InvalidCast();
        sum += array->GetNumber(i);
    }
    return sum;
}

}  // namespace

std::span<const TNumberOperationRow> NumberOperations() { return kOperations; }

const TNumberOperationRow& OperationRow(int operation)
{
    return kOperations[static_cast<std::size_t>(InInterval(1, 13, operation) - 1)];
}

int SetOperation(const QString& keyword)
{
    for (const TNumberOperationRow& row : kOperations) {
        if (keyword == QLatin1String(row.keyword)) return static_cast<int>(row.value);
    }
    return static_cast<int>(ccBinToInt);
}

QString GetOperationString(int operation) { return QLatin1String(OperationRow(operation).keyword); }

TDVCmdNumberConversion::TDVCmdNumberConversion(TDVParser* parser)
    : TDVFieldsCommand("TDVCmdNumberConversion", parser)
{
}

void TDVCmdNumberConversion::SetParams(const TParamList& params)
{
    fields_.operation = SetOperation(params.GetString(QStringLiteral("Operation")));
    fields_.input = params.GetString(QStringLiteral("Input"));
    fields_.output = params.GetString(QStringLiteral("Output"));
    fields_.digits = static_cast<std::uint8_t>(StrToIntDef(params.GetString(QStringLiteral("Stellen")), 0));
}

void TDVCmdNumberConversion::ReadParams(TParamList& params)
{
    params.AddString(QStringLiteral("Operation"), GetOperationString(fields_.operation));
    params.AddString(QStringLiteral("Input"), fields_.input);
    params.AddString(QStringLiteral("Output"), fields_.output);
    params.AddString(QStringLiteral("Stellen"), QString::number(fields_.digits));
}

// keyword(IN:input,OUT:output):digits;
bool TDVCmdNumberConversion::DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*)
{
    const QString line = script.trimmed();
    TFields f;
    if (line.contains('(')) {
        const QString name = line.left(line.indexOf('('));
        f.operation = static_cast<int>(ccUnknown);
        for (const TNumberOperationRow& row : kOperations) {
            if (name == QLatin1String(row.olderKeyword)) {
                f.operation = static_cast<int>(row.value);
                break;
            }
        }
    }
    f.input = GetStrPart(QStringLiteral("IN:"), QStringLiteral(",OUT"), line);
    f.output = GetStrPart(QStringLiteral(",OUT:"), QStringLiteral(")"), line);
    f.digits = static_cast<std::uint8_t>(StrToIntDef(GetStrPart(QStringLiteral("):"), QStringLiteral(";"), line), 0));
    fields_ = f;
    ReadParams(params);
    return true;
}

QStringList TDVCmdNumberConversion::OlderNames() const
{
    QStringList names;
    for (const TNumberOperationRow& row : kOperations) names << QLatin1String(row.olderKeyword);
    return names;
}

// "HexToInt(IN:FF,OUT:X):0;": an older keyword, never NumberConvert, then the markers. The input
// is literal text and may hold quotes of its own, so the markers are looked for in the whole line.
// An assignment to a variable named like a keyword (High := 5) is no older line.
bool TDVCmdNumberConversion::IsOlderLine(const QString& line) const
{
    return BeginsWithCall(line, OlderNames()) && line.contains(QLatin1String("OUT:"));
}

// The array operations read their input through GetValue; the others take its characters.
bool TDVCmdNumberConversion::EvaluatesText(const TParamList& params, const QString& name) const
{
    const auto operation = static_cast<TNumberOperation>(SetOperation(params.GetString(QStringLiteral("Operation"))));
    return name == QLatin1String("Input") && (operation == ccMaxArrayEntry || operation == ccSumOfArray);
}

QString TDVCmdNumberConversion::GetDescription(const QString&, const TParamList& params)
{
    return Format(_("Zahlenkonverter %s: %s nach %s"),
                  {params.GetString(QStringLiteral("Operation")), params.GetString(QStringLiteral("Input")),
                   params.GetString(QStringLiteral("Output"))});
}

TValuePtr TDVCmdNumberConversion::Convert(const TFields& f, const TParamList& params)
{
    if (f.input.isEmpty()) throw TDVRuntimeException(_("Es wurde eine leere Eingabe übergeben."));
    const QString& in = f.input;
    switch (static_cast<TNumberOperation>(f.operation)) {
    case ccBinToInt: return Number(static_cast<long double>(BinToInt(in)));
    case ccIntToBin:
        return std::make_unique<TStringValue>(IntToBin(static_cast<std::uint32_t>(StrToIntDef(in, 0)), f.digits));
    case ccIntToHex: return std::make_unique<TStringValue>(IntToHex(StrToIntDef(in, 0), f.digits));
    case ccHexToInt: return Number(HexToInt(in));
    case ccRandom: return Number(RandomFrom(in));
    case ccOrd: return Number(Ord1252(in.front()));
    case ccASCII: return std::make_unique<TStringValue>(QString(Chr1252(StrToInt(in))));
    case ccMaxArrayEntry: {
        const TValuePtr value = params.GetValue(QStringLiteral("Input"));
        const auto* array = dynamic_cast<const TArrayValue*>(value.get());
        return array ? Number(array->GetSize()) : std::make_unique<TNumberValue>();
    }
    case ccHigh: return Number((StrToInt(in) & 0xFFFF) >> 8);
    case ccLow: return Number(StrToInt(in) & 0xFF);
    case ccRound: return Number(RoundToDigits(in, f.digits));
    case cc4ByteHexToFloat: return Number(HexBytesToFloat(in));
    case ccSumOfArray: return Number(SumOfArray(*params.GetValue(QStringLiteral("Input"))));
    case ccUnknown: break;
    }
    return nullptr;
}

void TDVCmdNumberConversion::Run(TParamList& params)
{
    SetParams(params);
    // An operation outside 1..13 computes nothing and writes nothing.
    if (TValuePtr result = Convert(fields_, params)) VarAccess().SetVariable(fields_.output, std::move(result));
}

}  // namespace dv
