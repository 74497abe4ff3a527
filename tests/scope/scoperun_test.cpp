// Scope calls whose run goes wrong or whose result is shown: faults reach the scope's error dialog
// (headless: the log and StopTest), and each function shows its label, channel and unit.
#include "analysis/curvestore.h"
#include "framework/headless.h"
#include "scope/envelopefile.h"
#include "scope/gui_scope.h"
#include "scope/scopemodel.h"
#include "tests/host/scriptrun.h"
#include "tests/scope/testio.h"
#include "tests/support/testhost.h"

#include <sys/stat.h>

#include <stdexcept>

namespace dv::scope {
namespace {

using host::test::RunScriptText;
using host::test::TScriptOutcome;

using ScopeCall = testio::TLoggedTest;

// A host whose variable access fails as no script error does.
class TFailingHost final : public test::TTestHost {
public:
    QString ResolveText(const QString& text) override
    {
        if (text == QLatin1String("kaputt")) throw std::length_error("vector::_M_realloc_insert");
        return TTestHost::ResolveText(text);
    }
};

TEST_F(ScopeCall, AnyOtherFaultOfTheRunIsAnExecutionFault)
{
    TFailingHost host;
    Scope().Command = "[HIDE],[TX:kaputt]";
    Scope().Special.clear();
    Scope().Start();
    EXPECT_EQ(host.stopCalls, 1);
    EXPECT_EQ(Logged(), "Scope-Plugin: Fehler bei der Befehlsausführung !\nvector::_M_realloc_insert (Abbrechen)");
}

TEST_F(ScopeCall, AFileSourceThatIsNoFileIsReportedAtOnce)
{
    const QString fifo = dir.filePath("pipe");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    for (const QString& path : {fifo, dir.path(), QString("/dev/zero")}) {
        warnings.clear();
        const TScriptOutcome out = RunScriptText("Scope(\"[HIDE],1:[FILE:" + path + ",SEP:59]\", \"\");\nLog(\"danach\");");
        EXPECT_EQ(out.exitCode, 1) << path.toStdString();
        EXPECT_TRUE(out.output.isEmpty());
        EXPECT_TRUE(Logged().contains("Scope-Plugin: Fehler bei der Kurvendarstellung !\nDie Kurvendatei " + path +
                                      " ist keine gewöhnliche Datei"))
            << Logged().toStdString();
    }
}

// Channels are the curves 1 to 4, checked before anything narrows them; an envelope or the further
// curve is no channel.
TEST_F(ScopeCall, ChannelsOutsideTheFourCurvesAreRefused)
{
    struct Row {
        const char* fx;
        const char* channel;
    };
    const Row rows[] = {
        {"MID:0", "0"},          {"MID:5", "5"},          {"MID:7", "7"},          {"MID:9", "9"},
        {"PEAK:300:1:1::", "300"},  // would be curve 44 once cut to a byte
        {"PEAK:-255:1:1::", "-255"}, {"PHASESHIFT:1:6:1", "6"}, {"PHASESHIFT:261:2:1", "261"},
        {"LOWPASS:1000:100:2:5", "5"}, {"ENVELOPE:6],[FILE:x.HKV", "6"},
    };
    for (const Row& r : rows) {
        warnings.clear();
        const TScriptOutcome out =
            RunScriptText(QString("var R : Number;\nScope(\"[HIDE],[FX:%1],[OUT:R]\", \"\");\nLog(\"danach\");").arg(r.fx));
        EXPECT_EQ(out.exitCode, 1) << r.fx;
        EXPECT_TRUE(out.output.isEmpty()) << r.fx;
        EXPECT_EQ(Logged(), QString("Scope-Plugin: Fehler bei der Befehlsausführung !\nUngültige Kurvennummer %1 (Abbrechen)").arg(r.channel))
            << r.fx;
    }
}

// A point source names variables or gives numbers; a misspelt name is no silent 0.
TEST_F(ScopeCall, APointSourceNamingNoVariableIsAFault)
{
    const TScriptOutcome typo = RunScriptText("var X : Number;\nScope(\"[CLR],[HIDE],1:[X:X,Y:Tippfehler]\", \"\");\nLog(\"danach\");");
    EXPECT_EQ(typo.exitCode, 1);
    EXPECT_TRUE(typo.output.isEmpty());
    EXPECT_TRUE(Logged().contains("Scope-Plugin: Fehler bei der Kurvendarstellung !\nDie Variable \"Tippfehler\" ist nicht deklariert."))
        << Logged().toStdString();
    EXPECT_EQ(analysis::ScopeStore().CurveValuesCount(1), 0);

    const TScriptOutcome numbers = RunScriptText("var X : Number;\nX := 2;\nScope(\"[CLR],[HIDE],1:[X:X,Y: -1.5e3 ]\", \"\");");
    ASSERT_EQ(numbers.exitCode, 0) << numbers.errors.join('\n').toStdString();
    ASSERT_EQ(analysis::ScopeStore().CurveValuesCount(1), 1);
    EXPECT_EQ(analysis::ScopeStore().GetValue(1, 0).x, 2);
    EXPECT_EQ(analysis::ScopeStore().GetValue(1, 0).y, -1500);
}

// Local extrema of PEAK:1:1:2:epsx:epsy on bumps of 2e-6 at x = 1, 2e-5 at x = 4 and 9 at x = 7:
// epsx is the window half-width (not a number: the largest value, so only the highest point
// counts), epsy how far a peak must stand above its window's lowest point (not a number: 1e-5).
TEST_F(ScopeCall, PeakToleranceDefaults)
{
    struct Row {
        const char* eps;
        double time;
    };
    const Row rows[] = {
        {"x:", 7},  {":", 7},  {"1:", 4},  {"1:0", 1},  {"1:1e-4", 7},
        {"1:0,0001", 7},  // a typed number with a decimal comma
        {"1:1e-6", 1},   {"1,5:1e-6", 1},
    };
    for (const Row& r : rows) {
        const TScriptOutcome out = RunScriptText(
            QString("var R : Number;\nvar A : Array of Number;\nvar I : Number;\nfor I := 1 to 10 do A[I] := 0 end for\n"
                    "A[2] := 0.000002; A[5] := 0.00002; A[8] := 9;\n"
                    "Scope(\"[CLR],[HIDE],1:[ARRAY:A,FREQ:1],[FX:PEAK:1:1:2:%1],[OUT:R]\", \"\");\nLog(R);")
                .arg(r.eps));
        ASSERT_EQ(out.exitCode, 0) << r.eps << out.errors.join('\n').toStdString();
        EXPECT_EQ(out.output, QStringList{QString::number(r.time)}) << r.eps;
    }
    // Min-max ignores the local flag: the span, not a time (zero samples are skipped).
    const TScriptOutcome span = RunScriptText(
        "var R : Number;\nvar A : Array of Number;\nA[1] := 1; A[2] := 4; A[3] := 2; A[4] := 3;\n"
        "Scope(\"[CLR],[HIDE],1:[ARRAY:A,FREQ:1],[FX:PEAK:1:3:2:1:0],[OUT:R]\", \"\");\nLog(R);");
    EXPECT_EQ(span.output, QStringList{"3"});
}

// The envelope comparison's file: missing, the dialog offers only Cancel and the test ends whatever
// was answered; unreadable, Cancel ends the test and Ignore goes on with the verdict 0.
TEST_F(ScopeCall, EnvelopeFileFaultsInARun)
{
    const QString missing = dir.filePath("fehlt.HKV"), folder = dir.path();
    const QString gone = "Scope-Plugin: Fehler beim Laden der Hüllkurvendatei !\n" + missing + " existiert im agegebenen Pfad nicht ! (Abbrechen)";
    const QString unreadable = "Scope-Plugin: Fehler beim Laden der Hüllkurvendatei" + folder + " !\nDie Datei " + folder + " kann nicht gelesen werden (";
    struct Row {
        QString file;
        QStringList answers;
        int exitCode;
        QString log;
    };
    const Row rows[] = {
        {missing, {}, 1, gone},
        {missing, {"Scope=Ignorieren"}, 1, gone},
        {folder, {}, 1, unreadable + "Abbrechen)"},
        {folder, {"Scope=Ignorieren"}, 0, unreadable + "Ignorieren)"},
    };
    for (const Row& r : rows) {
        warnings.clear();
        SetHeadlessAnswers(r.answers);
        const TScriptOutcome out = RunScriptText("var R : Number;\nvar A : Array of Number;\nA[1] := 1; A[2] := 2; A[3] := 3;\nR := 7;\n"
                                                 "Scope(\"[CLR],[HIDE],1:[ARRAY:A,FREQ:10],[FX:ENVELOPE:1],[FILE:" + r.file +
                                                 "],[OUT:R]\", \"\");\nLog(R);");
        SetHeadlessAnswers({});
        EXPECT_EQ(out.exitCode, r.exitCode) << r.log.toStdString();
        EXPECT_EQ(out.output, r.exitCode == 0 ? QStringList{"0"} : QStringList{}) << r.log.toStdString();
        EXPECT_EQ(Logged(), r.log);
    }
}

// "[SETSCALE:": steps as decoded integers, the zero point rounded with halves to even.
TEST_F(ScopeCall, ScaleStepsAndZeroPoint)
{
    test::TTestHost host;
    struct Row {
        const char* special;
        int xStep, yStep, zeroY;
    };
    const Row rows[] = {
        {"[SETSCALE:$12:9:0:0.01:0:270]", 18, 9, 270},  // 270.5
        {"[SETSCALE:18:$9:0:0.05:0:270]", 18, 9, 272},  // 272.5
        {"[SETSCALE: 3:4:0:0:0:135]", 3, 4, 135},
    };
    for (const Row& r : rows) {
        Scope().Command = "[HIDE]";
        Scope().Special = r.special;
        Scope().Start();
        EXPECT_EQ(host.stopCalls, 0) << r.special;
        EXPECT_EQ(ScopeModel().XDivStep, r.xStep) << r.special;
        EXPECT_EQ(ScopeModel().YDivStep, r.yStep) << r.special;
        EXPECT_EQ(ScopeModel().ZeroY, r.zeroY) << r.special;
    }
}

// Every function's label, channel label and unit as the result area shows them.
TEST_F(ScopeCall, EachFunctionShowsItsLabelChannelAndUnit)
{
    test::TTestHost hkvHost;
    analysis::TCurveStore envelope;
    envelope.Assign(analysis::kUpperEnvelope, {0, 1, 2}, {5, 5, 5});
    envelope.Assign(analysis::kLowerEnvelope, {0, 1, 2}, {-5, -5, -5});
    const QString hkv = dir.filePath("h.HKV");
    SaveHK(envelope, hkv, '.');
    struct Row {
        QString tags;
        const char* label;
        const char* channel;
        const char* text;  // the whole result text; ending in "*": its number part is not compared
    };
    const Row rows[] = {
        {"[FX:OFFSET:1]", "OFFSET", "1", "* V"},
        {"[FX:OFFSET:1],[TX:s],[TY:mA]", "OFFSET", "1", "* mA"},
        {"[FX:RMS:1:OFS:0:1]", "EFFEKTIVWERT", "1", "* V"},
        {"[FX:MID:3],[TY:mV]", "MITTELWERT", "3", "* mV"},
        {"[FX:DIST:1],[TY:mV]", "KLIRRFAKTOR", "1", "* %"},
        {"[FX:SINAD:1:10000:50:10:0]", "SINAD", "1", "* dB"},
        {"[FX:TIMEDIFF:2:0.5:0.5:0:1:0],[TX:ms]", "ZEITDIFFERENZ", "2", "0.003 ms"},
        {"[FX:TIMEDIFF:2:0.5:0.5:0:1:0]", "ZEITDIFFERENZ", "2", "0.003 "},
        {"[FX:FREQ:2:0.5:0.5:0:0],[TX:s]", "FREQUENZ", "2", "100 Hz"},
        {"[FX:FREQ:2:0.5:0.5:0:0],[TX:ms]", "FREQUENZ", "2", "100 (1/ms)"},
        {"[FX:FREQ:2:0.5:0.5:0:0]", "FREQUENZ", "2", "100 (1/)"},
        {"[FX:IMPULSCOUNT:2:0.5:0.5:0:0],[TX:s]", "IMPULSCOUNT", "2", "100 s"},
        {"[FX:DUTYCYCLE:2:0.5:0.5:0:1]", "DUTYCYCLE", "2", "30 %"},
        {"[FX:DUTYCYCLE:2:0.5:0.5:0:1],[TX:s]", "DUTYCYCLE", "2", "30 s"},  // "%" only without an X unit
        {"[FX:PEAK:2:1:1::]", "PEAK MAX", "2", "1 "},                      // the Y unit, no "V" default
        {"[FX:PEAK:2:1:1::],[TY:mV]", "PEAK MAX", "2", "1 mV"},
        {"[FX:PEAK:2:2:1::]", "PEAK MIN", "2", "1 "},  // zero samples are skipped
        {"[FX:PEAK:2:9:1::]", "PEAK MIN", "2", "1 "},
        {"[FX:PEAK:1:3:1::]", "PEAK MIN-MAX", "1", "* "},
        {"[FX:PHASESHIFT:1:3:1]", "Phasenverschiebung", "1 / 3", "0 °"},
        {"[FX:QUERY:2:1:0.5],[TX:ms],[TY:mV]", "Abfrage X-WERT", "2", "* ms"},
        {"[FX:QUERY:2:2:0.0025],[TX:ms],[TY:mV]", "Abfrage Y-WERT", "2", "1 mV"},
        {"[FX:DIFFCUR:2:1:],[OUT:D]", "DIFFERENZKURVE", "2", "im Array:"},
        {"[FX:CURVEPATCH:1:keine.txt]", "KURVENKORREKTUR", "1", ""},
        {"[FX:ENVELOPE:1],[FILE:" + hkv + "]", "Hüllkurvenvergleich", "1", "1 "},
        {"[FX:LOWPASS:10000:100:2:3],[OUT:D]", "LOWPASS", "3", ""},
        {"[FX:BANDPASS:10000:40:60:2:3],[OUT:D]", "BANDPASS", "3", ""},
        {"[FX:HIGHPASS:10000:100:2:3],[OUT:D]", "HIGHPASS", "3", ""},
        {"[FX:FFT:10000:1][OUT:D]", "FFT", "1", ""},
    };
    // A 50 Hz sine at 10 kHz in curves 1 and 3; pulses at 1 kHz, 3 of every 10 samples high, in 2.
    const QString prelude =
        "var R : Number;\nvar I : Number;\nvar Sinus : Array of Number;\nvar Pulse : Array of Number;\nvar D : Array of Number;\n"
        "for I := 1 to 1000 do\nSinus[I] := Sin(2 * Pi * 50 * (I - 1) / 10000);\n"
        "if ((I - 1) mod 10 >= 2) and ((I - 1) mod 10 < 5) then Pulse[I] := 1 else Pulse[I] := 0 end if\nend for\n";
    for (const Row& r : rows) {
        const TScriptOutcome out = RunScriptText(
            prelude + "Scope(\"[CLR],[HIDE],1:[ARRAY:Sinus,FREQ:10000],2:[ARRAY:Pulse,FREQ:1000],3:[ARRAY:Sinus,FREQ:10000]," + r.tags + "\", \"\");");
        const std::string row = r.tags.toStdString();
        ASSERT_EQ(out.exitCode, 0) << row << out.errors.join('\n').toStdString();
        const TScopeModel& m = ScopeModel();
        EXPECT_EQ(m.FunctionLabel, QString(r.label)) << row;
        EXPECT_EQ(m.ChannelLabel, QString(r.channel)) << row;
        const QString text = r.text;
        if (text.startsWith('*')) {
            EXPECT_EQ(m.ResultText.mid(m.ResultText.indexOf(' ')), text.mid(1)) << row << " " << m.ResultText.toStdString();
        } else {
            EXPECT_EQ(m.ResultText, text) << row;
        }
    }
}

}  // namespace
}  // namespace dv::scope
