#include "host/builtins.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/translate.h"
#include "framework/typeconversion.h"

#include <QDateTime>
#include <QHash>

#include <climits>
#include <cmath>
#include <numbers>

namespace dv::host {

namespace {

using K = TValueKind;
using TArgs = const TBuiltinArgs&;

// The text of the arguments in a message: "Sqrt(-1)", "Power(0; -1)".
QString CallText(const char* name, std::initializer_list<long double> args)
{
    QStringList texts;
    for (long double x : args) texts << DVFloatToStr(x);
    return QString::fromLatin1(name) + '(' + texts.join(QStringLiteral("; ")) + ')';
}

[[noreturn]] void Undefined(const char* name, std::initializer_list<long double> args)
{
    throw TDVRuntimeException(Format(_("%s ist nicht definiert"), {CallText(name, args)}));
}

// A result that is no finite number fails, naming the function and its arguments.
TVal Finite(const char* name, std::initializer_list<long double> args, long double result)
{
    if (std::isnan(result)) Undefined(name, args);
    if (std::isinf(result)) throw TDVRuntimeException(Format(_("%s ist zu groß"), {CallText(name, args)}));
    return TVal::Number(result);
}

// A number argument that must be whole (an index, a count, a code).
long double Whole(const char* name, long double x)
{
    if (!std::isfinite(x) || x != std::floor(x)) {
        throw TDVRuntimeException(Format(_("%s: %s ist keine ganze Zahl"), {QString::fromLatin1(name), DVFloatToStr(x)}));
    }
    return x;
}

// Half-way cases go to the even neighbour: 0.5 -> 0, 1.5 -> 2, 2.5 -> 2, -2.5 -> -2.
long double RoundHalfEven(long double x)
{
    const long double below = std::floor(x);
    const long double rest = x - below;
    if (rest < 0.5L) return below;
    if (rest > 0.5L) return below + 1;
    return std::fmod(below, 2.0L) == 0 ? below : below + 1;
}

// Random: 0 <= x < 1 with 64 random bits; Random(N), N >= 1: a whole number 0 .. N-1, unbiased.
TVal Random(TExec& ex, TArgs a)
{
    if (!ex.random) throw TDVRuntimeException(_("Random ist nur während eines Testlaufs verfügbar"));
    std::mt19937_64& engine = *ex.random;
    const long double n = a[0].kind == K::Number ? Whole("Random", a[0].number) : 0;
    if (n == 0) return TVal::Number(std::ldexp(static_cast<long double>(engine()), -64));
    if (n < 0 || n > 9007199254740992.0L) Undefined("Random", {n});
    const auto range = static_cast<std::uint64_t>(n);
    const std::uint64_t unbiased = UINT64_MAX - UINT64_MAX % range;
    std::uint64_t r;
    do {
        r = engine();
    } while (r >= unbiased);
    return TVal::Number(static_cast<long double>(r % range));
}

TVal Length(TExec&, TArgs a)
{
    if (a[0].kind == K::String) return TVal::Number(a[0].text.size());
    if (a[0].kind == K::Array) return TVal::Number(a[0].array->GetSize());
    throw TDVRuntimeException(Format(_("Length erwartet einen Text oder ein Array, nicht %s"), {KindName(a[0].kind)}));
}

// Copy(S, Index, Count): up to Count characters from Index (1-based); an Index below 1 counts as 1,
// one past the end or a Count below 1 gives "".
TVal Copy(TExec&, TArgs a)
{
    const QString& s = a[0].text;
    const long double index = std::max(Whole("Copy", a[1].number), 1.0L);
    const long double count = Whole("Copy", a[2].number);
    if (index > s.size() || count < 1) return TVal::String({});
    const auto from = static_cast<qsizetype>(index) - 1;
    return TVal::String(s.mid(from, static_cast<qsizetype>(std::min<long double>(count, s.size() - from))));
}

TVal Pos(TExec&, TArgs a)
{
    if (a[0].text.isEmpty()) return TVal::Number(0);
    return TVal::Number(a[1].text.indexOf(a[0].text) + 1);
}

// Spaces and control characters off both ends.
TVal Trim(TExec&, TArgs a)
{
    const QString& s = a[0].text;
    qsizetype first = 0, end = s.size();
    while (first < end && s[first].unicode() <= ' ') ++first;
    while (end > first && s[end - 1].unicode() <= ' ') --end;
    return TVal::String(s.mid(first, end - first));
}

TVal Chr(TExec&, TArgs a)
{
    const long double code = Whole("Chr", a[0].number);
    if (code < 0 || code > 255) Undefined("Chr", {code});
    return TVal::String(QString(Chr1252(static_cast<int>(code))));
}

TVal Ord(TExec&, TArgs a)
{
    if (a[0].text.isEmpty()) throw TDVRuntimeException(_("Ord erwartet ein Zeichen, nicht einen leeren Text"));
    return TVal::Number(Ord1252(a[0].text[0]));
}

TVal Now(TExec&, TArgs) { return TVal::Number(static_cast<long double>(QDateTime::currentMSecsSinceEpoch()) / 1000); }

TVal TimeText(TExec&, TArgs)
{
    return TVal::String(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")));
}

// A function of one number whose result must be finite.
template <long double (*F)(long double)>
TVal Unary(const char* name, TArgs a)
{
    return Finite(name, {a[0].number}, F(a[0].number));
}

long double Square(long double x) { return x * x; }
long double TruncOf(long double x) { return std::trunc(x); }
long double FracOf(long double x) { return x - std::trunc(x); }
long double Abs(long double x) { return std::fabs(x); }
long double Sin(long double x) { return std::sin(x); }
long double Cos(long double x) { return std::cos(x); }
long double Tan(long double x) { return std::tan(x); }
long double ArcTan(long double x) { return std::atan(x); }
long double Exp(long double x) { return std::exp(x); }

struct TRow {
    const char* heading;  // name and parameters, as a procedure heading writes them
    K result;             // Misc: a procedure
    TVal (*run)(TExec&, TArgs);
};

#define DV_UNARY(name, f) \
    TRow { #name "(X : Number)", K::Number, [](TExec&, TArgs a) { return Unary<f>(#name, a); } }

const TRow kRows[] = {
    DV_UNARY(Abs, Abs),
    DV_UNARY(Sqr, Square),
    {"Sqrt(X : Number)", K::Number,
     [](TExec&, TArgs a) {
         if (a[0].number < 0) Undefined("Sqrt", {a[0].number});
         return Finite("Sqrt", {a[0].number}, std::sqrt(a[0].number));
     }},
    DV_UNARY(Sin, Sin),
    DV_UNARY(Cos, Cos),
    DV_UNARY(Tan, Tan),
    DV_UNARY(ArcTan, ArcTan),
    {"ArcTan2(Y : Number; X : Number)", K::Number,
     [](TExec&, TArgs a) { return Finite("ArcTan2", {a[0].number, a[1].number}, std::atan2(a[0].number, a[1].number)); }},
    DV_UNARY(Exp, Exp),
    {"Ln(X : Number)", K::Number,
     [](TExec&, TArgs a) {
         if (a[0].number <= 0) Undefined("Ln", {a[0].number});
         return Finite("Ln", {a[0].number}, std::log(a[0].number));
     }},
    {"Log10(X : Number)", K::Number,
     [](TExec&, TArgs a) {
         if (a[0].number <= 0) Undefined("Log10", {a[0].number});
         return Finite("Log10", {a[0].number}, std::log10(a[0].number));
     }},
    {"Power(Base : Number; Exponent : Number)", K::Number,
     [](TExec&, TArgs a) {
         const long double base = a[0].number, exponent = a[1].number;
         if (base == 0 && exponent < 0) Undefined("Power", {base, exponent});
         return Finite("Power", {base, exponent}, std::pow(base, exponent));
     }},
    {"Round(X : Number)", K::Number, [](TExec&, TArgs a) { return Finite("Round", {a[0].number}, RoundHalfEven(a[0].number)); }},
    DV_UNARY(Trunc, TruncOf),
    DV_UNARY(Frac, FracOf),
    {"Min(A : Number; B : Number)", K::Number, [](TExec&, TArgs a) { return TVal::Number(std::min(a[0].number, a[1].number)); }},
    {"Max(A : Number; B : Number)", K::Number, [](TExec&, TArgs a) { return TVal::Number(std::max(a[0].number, a[1].number)); }},
    {"Pi", K::Number, [](TExec&, TArgs) { return TVal::Number(std::numbers::pi_v<long double>); }},
    {"Random(N : Number = 0)", K::Number, Random},
    {"Length(X : Misc)", K::Number, Length},
    {"Copy(S : String; Index : Number; Count : Number)", K::String, Copy},
    {"Pos(Sub : String; S : String)", K::Number, Pos},
    {"UpperCase(S : String)", K::String, [](TExec&, TArgs a) { return TVal::String(a[0].text.toUpper()); }},
    {"LowerCase(S : String)", K::String, [](TExec&, TArgs a) { return TVal::String(a[0].text.toLower()); }},
    {"Trim(S : String)", K::String, Trim},
    {"Chr(Code : Number)", K::String, Chr},
    {"Ord(C : String)", K::Number, Ord},
    {"SetLength(var A : Array of Misc; N : Number)", K::Misc, nullptr},
    {"Sleep(Milliseconds : Number)", K::Misc, nullptr},
    {"Now", K::Number, Now},
    {"TimeText", K::String, TimeText},
};

#undef DV_UNARY

struct TTable {
    std::vector<TBuiltin> builtins;
    QHash<QString, const TBuiltin*> index;  // lower-case name

    TTable()
    {
        builtins.reserve(std::size(kRows));
        for (const TRow& row : kRows) {
            TBuiltin b;
            b.signature = ParseSignature(QStringLiteral("procedure ") + QString::fromLatin1(row.heading) + ';');
            b.result = row.result;
            b.run = row.run;
            builtins.push_back(std::move(b));
        }
        for (const TBuiltin& b : builtins) index.insert(b.signature.name.toLower(), &b);
    }
};

const TTable& Table()
{
    static const TTable table;
    return table;
}

QString Heading(const TBuiltin& b)
{
    QStringList params;
    for (const TDVParamDecl& p : b.signature.params) {
        QString text = (p.isVar ? QStringLiteral("var ") : QString()) + p.name + QStringLiteral(" : ") + TypeName(p.type);
        if (p.hasDefault) text += QStringLiteral(" = ") + p.defaultText;
        params << text;
    }
    QString heading = (b.IsFunction() ? QStringLiteral("function ") : QStringLiteral("procedure ")) + b.signature.name;
    if (!params.isEmpty()) heading += '(' + params.join(QStringLiteral("; ")) + ')';
    if (b.IsFunction()) heading += QStringLiteral(" : ") + KindName(b.result);
    return heading + ';';
}

}  // namespace

const TBuiltin* FindBuiltin(const QString& name) { return Table().index.value(name.toLower()); }

QString BuiltinListing()
{
    QString out = QStringLiteral("Log\tprocedure Log(Text : Misc);\n"
                                 "Check\tprocedure Check(Condition : Boolean; Text : String = \"\");\n");
    for (const TBuiltin& b : Table().builtins) out += b.signature.name + '\t' + Heading(b) + '\n';
    return out;
}

void TBuiltinCall::Eval(TExec& ex, TVal& out) const
{
    TBuiltinArgs args;
    for (std::size_t i = 0; i < args_.size(); ++i) {
        args[i].kind = K::Misc;
        if (!args_[i]) continue;
        args_[i]->Eval(ex, args[i]);
        args[i] = Coerce(std::move(args[i]), builtin_.signature.params[i].type);
    }
    out = builtin_.run(ex, args);
}

void TSleepCall::Exec(TExec& ex) const
{
    ex.line = Line();
    const long double ms = milliseconds_->Num(ex);
    if (!(ms >= 0) || !std::isfinite(ms)) Undefined("Sleep", {ms});
    // Waits of more than INT_MAX ms go in parts.
    for (long double left = std::ceil(ms); left > 0; left -= INT_MAX) {
        const int part = static_cast<int>(std::min<long double>(left, INT_MAX));
        if (ex.runControl ? ex.runControl->WaitForStop(part) : false) throw TRunStopped{};
    }
}

void TSetLengthCall::Exec(TExec& ex) const
{
    ex.line = Line();
    TVariable& var = array_->Var(ex);
    if (var.value.kind != K::Array) {
        throw TDVRuntimeException(Format(_("Die Variable \"%s\" ist kein Array."), {var.GetName()}));
    }
    const long double length = Whole("SetLength", length_->Num(ex));
    if (length < 0) Undefined("SetLength", {length});
    TArrayValue& array = *var.value.array;
    if (length >= array.GetSize()) {
        GrowArray(ex, var.GetName(), array, length);
        return;
    }
    array.Resize(static_cast<int>(length));
}

TStmtPtr MakeBuiltinStatement(int line, const TBuiltin& builtin, std::vector<TBoundArg> args)
{
    if (builtin.signature.name == QLatin1String("Sleep")) return std::make_unique<TSleepCall>(line, std::move(args[0].value));
    return std::make_unique<TSetLengthCall>(line, std::move(args[0].ref), std::move(args[1].value));
}

}  // namespace dv::host
