// Scope calls end to end: a script line through the stand-alone host to the script variable, with
// curves from files the test writes and results checked against hand-worked values.
#include "analysis/curvestore.h"
#include "framework/headless.h"
#include "image/currentimage.h"
#include "scope/envelopefile.h"
#include "scope/gui_scope.h"
#include "scope/scopedialogs.h"
#include "scope/scopemodel.h"
#include "scope/scopesettings.h"
#include "tests/host/scriptrun.h"
#include "tests/scope/testio.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <numbers>
#include <thread>

namespace dv::scope {
namespace {

using host::test::RunScriptText;
using host::test::TScriptOutcome;

constexpr double kPi = std::numbers::pi;

class ScopeRun : public testio::TLoggedTest {
protected:
    // A FILE: source of n samples of f at rate.
    QString Source(const QString& name, int n, double rate, const std::function<double(double)>& f)
    {
        return FileSource(testio::WriteSignal(dir.filePath(name), n, rate, f));
    }
    QString FileSource(const QString& path) { return "FILE:" + path + ",SEP:59"; }

    // Runs the lines after a declaration of R (Number), S (Array of Number) and W (String).
    TScriptOutcome Run(const QString& lines)
    {
        warnings.clear();
        return RunScriptText("var R : Number;\nvar S : Array of Number;\nvar W : String;\n" + lines);
    }
    // The value R holds after the Scope call "[CLR],[HIDE],tags,[OUT:R]", printed by Log.
    double Result(const QString& tags)
    {
        const TScriptOutcome out = Run("Scope(\"[CLR],[HIDE]," + tags + ",[OUT:R]\", \"\");\nLog(R);");
        EXPECT_EQ(out.exitCode, 0) << tags.toStdString() << "\n" << out.errors.join('\n').toStdString();
        return out.output.isEmpty() ? std::nan("") : out.output.last().toDouble();
    }
};

TEST_F(ScopeRun, ScalarFunctionsWriteTheirResultIntoTheVariable)
{
    // 5 whole periods of 50 Hz at 10 kHz, amplitude 2, offset 0.5.
    const QString sine = Source("sine.txt", 1000, 10000, [](double t) { return 2 * std::sin(2 * kPi * 50 * t) + 0.5; });
    // The same about 0.5, starting off its zero crossing: the offset is the mean over whole periods.
    const QString shifted = Source("shifted.txt", 1000, 10000, [](double t) { return std::sin(2 * kPi * 50 * t + 0.3) + 0.5; });
    // Curve b lags curve a by a quarter period; both cross upwards after the first sample.
    const QString a = Source("a.txt", 1000, 10000, [](double t) { return std::sin(2 * kPi * 50 * t - 0.3); });
    const QString b = Source("b.txt", 1000, 10000, [](double t) { return std::sin(2 * kPi * 50 * t - 0.3 - kPi / 2); });
    // Pulses: 3 of every 10 samples high, at 1 kHz: 100 Hz, 30 % duty cycle, 3 ms high.
    const QString pulses = Source("pulse.txt", 1000, 1000, [](double t) {
        return std::lround(t * 1000) % 10 >= 2 && std::lround(t * 1000) % 10 < 5 ? 1.0 : 0.0;
    });
    // A curve 0, 2, 4, ... over x 0, 1, 2, ...: the x where y is 3, the y where x is 2.5.
    const QString ramp = Source("ramp.txt", 10, 1, [](double t) { return 2 * t; });
    struct Row {
        QString tags;
        double expected;
        double tolerance;
    };
    const Row rows[] = {
        {"1:[" + sine + "],[FX:RMS:1:OFS:0.5:1]", std::sqrt(2.0), 1e-9},
        {"1:[" + sine + "],[FX:MID:1]", 0.5, 1e-9},
        {"1:[" + shifted + "],[FX:OFFSET:1]", 0.5, 1e-3},
        {"2:[" + pulses + "],[FX:FREQ:2:0.5:0.5:0:0]", 100, 1e-9},
        {"2:[" + pulses + "],[FX:DUTYCYCLE:2:0.5:0.5:0:1]", 30, 1e-9},
        {"2:[" + pulses + "],[FX:TIMEDIFF:2:0.5:0.5:0:1:0]", 0.003, 1e-12},
        {"2:[" + pulses + "],[FX:IMPULSCOUNT:2:0.5:0.5:0:0]", 100, 0},
        {"1:[" + pulses + "],[FX:PEAK:1:1:1::]", 1, 0},
        // Shifted to 0 .. 4: the trough sample is exactly 0 and skipped, its neighbour is the minimum.
        {"1:[" + sine + ",OFX:0:OFY:1.5],[FX:PEAK:1:3:1::]", 4 - 2 * (1 - std::cos(2 * kPi / 200)), 1e-9},
        {"1:[" + a + "],2:[" + b + "],[FX:PHASESHIFT:1:2:2]", 90, 1e-6},
        {"1:[" + sine + ",FAKX:10000:FAKY:0],2:[" + ramp + "],[FX:QUERY:2:1:3]", 1.5, 1e-12},
        {"2:[" + ramp + "],[FX:QUERY:2:2:2.5]", 5, 1e-12},
    };
    for (const Row& r : rows) EXPECT_NEAR(Result(r.tags), r.expected, r.tolerance) << r.tags.toStdString();
}

TEST_F(ScopeRun, SpectrumFunctions)
{
    // Coherent: 64 Hz at 1024 Hz over 1024 samples, with 10 % third harmonic.
    const QString distorted = Source("dist.txt", 1024, 1024, [](double t) {
        return std::sin(2 * kPi * 64 * t) + 0.1 * std::sin(2 * kPi * 192 * t);
    });
    // Harmonic over total power: 0.01 / 1.01.
    EXPECT_NEAR(Result("1:[" + distorted + "],[FX:DIST:1]"), 100 * std::sqrt(0.01 / 1.01), 1e-3);
    // Signal over noise and distortion: total 1.01 against 0.01, rounded to two decimals.
    EXPECT_NEAR(Result("1:[" + distorted + "],[FX:SINAD:1:1024:64:4:0]"), 20.04, 1e-9);

    const QString sine = Source("fft.txt", 1024, 1024, [](double t) { return 2 * std::sin(2 * kPi * 64 * t); });
    const TScriptOutcome out = Run("Scope(\"[CLR],[HIDE],1:[" + sine + "],[FX:FFT:1024:1][OUT:S]\", \"\");\nLog(S[64]);\nLog(S[63]);");
    ASSERT_EQ(out.exitCode, 0) << out.errors.join('\n').toStdString();
    EXPECT_NEAR(out.output[0].toDouble(), 2.0, 1e-9);
    EXPECT_NEAR(out.output[1].toDouble(), 0.0, 1e-9);
    EXPECT_EQ(ScopeModel().Spectrum.size(), 513u);
}

TEST_F(ScopeRun, ArrayResultsStartAtElementOne)
{
    // The difference curve of 0, 1, 3, 6 is 1, 2, 3 at the sample indices 0, 1, 2: element 0 is
    // never written, so S gets 2 and 3.
    const QString steps = Source("steps.txt", 4, 1, [](double t) { return t * (t + 1) / 2; });
    const TScriptOutcome diff = Run("S[1] := -1;\nScope(\"[CLR],[HIDE],1:[" + steps + "],[FX:DIFFCUR:1:0:],[OUT:S]\", \"\");\nLog(S);");
    ASSERT_EQ(diff.exitCode, 0) << diff.errors.join('\n').toStdString();
    EXPECT_TRUE(diff.output[0].startsWith("{2}{3}")) << diff.output[0].toStdString();

    // Without a result variable nothing is written and the run goes on.
    const TScriptOutcome none = Run("Scope(\"[CLR],[HIDE],1:[" + steps + "],[FX:DIFFCUR:1:2:]\", \"\");\nLog(\"weiter\");");
    EXPECT_EQ(none.exitCode, 0);
    EXPECT_EQ(none.output, QStringList{"weiter"});
}

TEST_F(ScopeRun, ArraySourceThroughTheFiltersAgainstScipy)
{
    // A unit step from rest through 2nd-order Butterworth filters at 1 kHz (scipy.signal.butter +
    // sosfilt, printed by make_scope_refs.py). S{1} is the filter's second output sample.
    struct Row {
        QString fx;
        std::array<double, 8> expected;
    };
    const Row rows[] = {
        {"LOWPASS:1000:100:2:3",
         {0.0674552738890719, 0.27946588451591375, 0.5613995078216196, 0.7961258233903614, 0.948030775260817,
          1.0247597753060032, 1.0497529194461852, 1.0466457420566073}},
        {"HIGHPASS:1000:100:2:3",
         {0.6389455251590224, 0.09135675228285811, -0.1593387472473785, -0.21983329474212854, -0.18548988019699786,
          -0.12126378109932945, -0.06203161848480887, -0.02084304784014057}},
        {"BANDPASS:1000:100:200:2:3",
         {0.06745527388907191, 0.19848503723207986, 0.17514433542044208, -0.06580326834384198, -0.28534558930961185,
          -0.2836697521724008, -0.09867409517834341, 0.0894797862746382}},
    };
    for (const Row& r : rows) {
        const TScriptOutcome out = Run("var A : Array of Number;\nvar I : Number;\nfor I := 1 to 50 do A[I] := 1 end for\n"
                                       "Scope(\"[CLR],[HIDE],3:[ARRAY:A,FREQ:1000],[FX:" + r.fx + "],[OUT:S]\", \"\");\nLog(S);");
        ASSERT_EQ(out.exitCode, 0) << out.errors.join('\n').toStdString();
        const QStringList values = out.output[0].mid(1, out.output[0].size() - 2).split("}{");
        ASSERT_EQ(values.size(), 49) << r.fx.toStdString();
        for (int i = 1; i < 8; ++i) EXPECT_NEAR(values[i - 1].toDouble(), r.expected[static_cast<std::size_t>(i)], 1e-9) << r.fx.toStdString() << " " << i;
    }
}

TEST_F(ScopeRun, EnvelopeVerdictAndCurvePatch)
{
    analysis::TCurveStore envelope;
    envelope.Assign(analysis::kUpperEnvelope, {-1, 0, 0.1, 0.2}, {3, 3, 3, 3});
    envelope.Assign(analysis::kLowerEnvelope, {-1, 0, 0.1, 0.2}, {-3, -3, -3, -3});
    const QString hkv = dir.filePath("env.HKV");
    SaveHK(envelope, hkv, '.');
    const QString sine = Source("sine.txt", 1000, 10000, [](double t) { return 2 * std::sin(2 * kPi * 50 * t); });
    EXPECT_EQ(Result("1:[" + sine + "],[FX:ENVELOPE:1],[FILE:" + hkv + "]"), 1);
    EXPECT_EQ(Result("1:[" + sine + ",FAKX:1:FAKY:2],[FX:ENVELOPE:1],[FILE:" + hkv + "]"), 0);

    // Rows 0;0 and 10;100: a value of 5 loses 5 * 10 / 100 * 100 / 100 = 0.5.
    const QString table = dir.filePath("korr.txt");
    ASSERT_TRUE(testio::WriteFile(table, "0;0\n10;100\n"));
    const QString five = Source("five.txt", 10, 1, [](double) { return 5.0; });
    const TScriptOutcome out = Run("W := \"" + table + "\";\nR := 7;\n" +
                                   "Scope(\"[CLR],[HIDE],1:[" + five + "],[FX:CURVEPATCH:1:W],[OUT:R]\", \"\");\nLog(R);\n" +
                                   "Scope(\"[HIDE],[FX:MID:1],[OUT:R]\", \"\");\nLog(R);");
    ASSERT_EQ(out.exitCode, 0) << out.errors.join('\n').toStdString();
    EXPECT_EQ(out.output, (QStringList{"7", "4.5"}));  // the correction writes no result
}

TEST_F(ScopeRun, ModelFollowsTheTags)
{
    const QString sine = Source("sine.txt", 100, 100, [](double t) { return t; });
    const TScriptOutcome out = Run("W := \"ms\";\nScope(\"[CLR],[HIDE],1:[" + sine +
                                   ",NAME:U1],[FX:MID:1],[OUT:R],[CLIP:0.2:W],[TX:W],[TY:mV],[PREFIX]\", "
                                   "\"[SETCOL:0000FF:00FF00:FFFF00:FF00FF:000000:101010:FF0000][SETSCALE:9:18:0:0:543:135]\");");
    ASSERT_EQ(out.exitCode, 0) << out.errors.join('\n').toStdString();
    const TScopeModel& m = ScopeModel();
    EXPECT_FALSE(m.Visible);
    EXPECT_EQ(m.UnitX, "ms");
    EXPECT_EQ(m.UnitY, "mV");
    EXPECT_EQ(m.CurveNames[0], "U1");
    EXPECT_EQ(m.Colors[0], 255);
    EXPECT_EQ(m.Intensity, 255);
    EXPECT_EQ(m.ZeroX, std::lround((kPlotWidth - 40) * 0.5 + 40));
    EXPECT_EQ(m.ZeroY, std::lround((kPlotHeight - 30) * 0.25));
    ASSERT_EQ(m.Lines.size(), 2u);  // "ms" reads as 0
    EXPECT_EQ(m.Lines[0].color, 65535);
    EXPECT_DOUBLE_EQ(m.Lines[0].x, 0.2);
    EXPECT_EQ(m.FunctionLabel, "MITTELWERT");
    EXPECT_EQ(ScopeSettings().ClipStop, "ms");  // resolved fields keep their values
    EXPECT_EQ(ScopeSettings().UnitTextX, "ms");
    EXPECT_TRUE(m.ResultShown);
    EXPECT_EQ(analysis::ScopeStore().CurveValuesCount(1), 100);

    // Neither HIDE nor KEEP: shown; no function: the result labels are cleared.
    ASSERT_EQ(Run("Scope(\"[PREFIX]\", \"\");").exitCode, 0);
    EXPECT_TRUE(m.Visible);
    EXPECT_TRUE(m.PrefixButton);
    EXPECT_FALSE(m.ResultShown);
    EXPECT_EQ(m.FunctionLabel, "");
}

TEST_F(ScopeRun, PointSourceAppendsUntilCleared)
{
    const TScriptOutcome out = Run(
        "var X : Number;\nvar A : Array of Number;\nA[1] := 1; A[2] := 2;\n"
        "for X := 1 to 3 do Scope(\"[HIDE],1:[X:X,Y:X]\", \"\") end for\n"
        "Scope(\"[CLR],[HIDE],2:[X:A,Y:A]\", \"\");\nScope(\"[HIDE],2:[X:A,Y:A,OFX:1:OFY:]\", \"\");");
    ASSERT_EQ(out.exitCode, 0) << out.errors.join('\n').toStdString();
    const analysis::TCurveStore& store = analysis::ScopeStore();
    EXPECT_EQ(store.CurveValuesCount(1), 0);  // cleared by the second [CLR]
    ASSERT_EQ(store.CurveValuesCount(2), 4);
    EXPECT_EQ(store.GetValue(2, 3).x, 3);
    EXPECT_EQ(store.GetValue(2, 3).y, 2);
}

// Faults: a decoding fault stops the test; a drawing fault asks, and the headless answer decides.
TEST_F(ScopeRun, FaultsStopTheTestUnlessIgnored)
{
    const TScriptOutcome decode = Run("Scope(\"[FX:MID:x]\", \"\");\nLog(\"danach\");");
    EXPECT_EQ(decode.exitCode, 1);
    EXPECT_TRUE(Logged().contains("Scope-Plugin: Fehler bei der Befehlsumsetzung !"));

    const TScriptOutcome adx = Run("Scope(\"[HIDE],1:[ADX_DATA:]\", \"\");\nLog(\"danach\");");
    EXPECT_EQ(adx.exitCode, 1);
    EXPECT_TRUE(Logged().contains("Scope-Plugin: Keine Adx-Scopedaten vorhanden !"));
    EXPECT_EQ(warnings.size(), 1);  // one dialog, answered with the default Abbrechen
    EXPECT_TRUE(adx.output.isEmpty());

    SetHeadlessAnswers({"Scope=Ignorieren"});
    const TScriptOutcome ignored = Run("Scope(\"[HIDE],1:[IMAGE-R-L:3,FREQ:1]\", \"\");\nLog(\"danach\");");
    SetHeadlessAnswers({});
    EXPECT_EQ(ignored.exitCode, 0);
    EXPECT_EQ(ignored.output, QStringList{"danach"});
    EXPECT_TRUE(Logged().contains("Bildposition außerhalb des Bildes."));
}

TEST_F(ScopeRun, ImageRowsAndColumnsOfTheCurrentImage)
{
    QImage image(4, 3, QImage::Format_RGB888);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 4; ++x) image.setPixel(x, y, qRgb(10 * x + y, 100 + x, 200 + y));
    }
    CurrentImage::replace(image);
    ASSERT_EQ(Run("Scope(\"[CLR],[HIDE],1:[IMAGE-R-L:2,FREQ:2],2:[IMAGE-B-C:1,FREQ:]\", \"\");").exitCode, 0);
    const analysis::TCurveStore& store = analysis::ScopeStore();
    ASSERT_EQ(store.CurveValuesCount(1), 4);  // row 2, red: 10 x + 2 at x / 2
    EXPECT_EQ(store.GetValue(1, 3).y, 32);
    EXPECT_EQ(store.GetValue(1, 3).x, 1.5);
    ASSERT_EQ(store.CurveValuesCount(2), 3);  // column 1, blue: 200 + y at y
    EXPECT_EQ(store.GetValue(2, 2).y, 202);
    EXPECT_EQ(store.GetValue(2, 2).x, 2);
    const TScriptOutcome outside = Run("Scope(\"[HIDE],1:[IMAGE-G-C:4,FREQ:1]\", \"\");");
    EXPECT_EQ(outside.exitCode, 1);
    EXPECT_TRUE(Logged().contains("Bildposition außerhalb des Bildes."));
    CurrentImage::replace({});
}

TEST_F(ScopeRun, HeadlessWaitTakesWeiterOrGoesOnAtOnce)
{
    SetHeadlessAnswers({"Scope=Weiter"});
    const TScriptOutcome answered = Run("Scope(\"[HIDE],[WAIT]\", \"\");\nLog(\"danach\");");
    SetHeadlessAnswers({});
    EXPECT_EQ(answered.output, QStringList{"danach"});
    EXPECT_TRUE(Logged().contains("Scope: Weiter"));
    const TScriptOutcome unanswered = Run("Scope(\"[WAIT]\", \"\");\nLog(\"danach\");");
    EXPECT_EQ(unanswered.output, QStringList{"danach"});
    EXPECT_TRUE(Logged().contains("wird nicht gewartet"));
}

// Dialogs of a window that waits for its "Weiter" button.
class TWaitingDialogs final : public IScopeDialogs {
public:
    TErrorAnswer ShowExecutionError(const QString&) override { return TErrorAnswer::Cancel; }
    void ShowDecodeError(const QString&) override {}
    void ShowCancelError(const QString&) override {}
    void ShowInformation(const QString&) override {}
    bool BeginWait() override
    {
        ++waits;
        return true;
    }
    void EndWait() override { ++endedByStop; }
    // True once a wait has begun; false after 10 s without one (the run did not wait).
    bool WaitBegins() const
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (waits == 0) {
            if (std::chrono::steady_clock::now() > deadline) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }
    std::atomic<int> waits{0};
    std::atomic<int> endedByStop{0};
};

using TClock = std::chrono::steady_clock;

double MsSince(TClock::time_point t) { return std::chrono::duration<double, std::milli>(TClock::now() - t).count(); }

TEST_F(ScopeRun, AWaitEndsOnWeiterOrStopAndAZeroVariableSkipsIt)
{
    TWaitingDialogs dialogs;
    SetScopeDialogs(&dialogs);
    TScriptOutcome zero = Run("W := \"0\";\nScope(\"[WAIT:W]\", \"\");\nLog(\"danach\");");
    EXPECT_EQ(dialogs.waits, 0);
    EXPECT_EQ(zero.output, QStringList{"danach"});

    // "Weiter" and the stop each end the wait within 100 ms, measured to the end of the script.
    std::atomic<TClock::time_point> pressedAt{};
    std::thread weiter([&] {
        if (!dialogs.WaitBegins()) return;
        pressedAt = TClock::now();
        Scope().Continue();
    });
    const TScriptOutcome pressed = Run("W := \"1\";\nScope(\"[WAIT:W]\", \"\");\nLog(\"danach\");");
    const double afterWeiter = MsSince(pressedAt);
    weiter.join();
    ASSERT_EQ(dialogs.waits, 1);
    EXPECT_LT(afterWeiter, 100);
    EXPECT_EQ(pressed.output, QStringList{"danach"});
    EXPECT_FALSE(ScopeModel().BlinkTimerActive);
    EXPECT_EQ(dialogs.endedByStop, 0);

    dialogs.waits = 0;
    std::atomic<TClock::time_point> stoppedAt{};
    std::thread stopper;
    const TScriptOutcome stopped = host::test::RunScriptText("Scope(\"[WAIT]\", \"\");\nLog(\"danach\");", {}, [&](host::THost& h) {
        stopper = std::thread([&dialogs, &h, &stoppedAt] {
            if (!dialogs.WaitBegins()) return;
            stoppedAt = TClock::now();
            h.GetRunControl().SignalStop();
        });
    });
    const double afterStop = MsSince(stoppedAt);
    stopper.join();
    SetScopeDialogs(nullptr);
    ASSERT_EQ(dialogs.waits, 1);
    EXPECT_LT(afterStop, 100);
    EXPECT_TRUE(stopped.output.isEmpty());
    EXPECT_NE(stopped.exitCode, 0);
    // The stopped wait leaves no "Weiter" to press.
    EXPECT_EQ(dialogs.endedByStop, 1);
    EXPECT_FALSE(ScopeModel().WeiterEnabled);
    EXPECT_FALSE(ScopeModel().BlinkTimerActive);
}

// The same answers through the real dvrun binary, without a display.
TEST_F(ScopeRun, DvrunTakesItsAnswersAndNeverWaitsHeadless)
{
    const QString script = dir.filePath("antwort.dvs");
    ASSERT_TRUE(testio::WriteFile(script, "Scope(\"[HIDE],1:[ADX_DATA:],[WAIT]\", \"\");\nLog(\"danach\");\n"));
    struct Row {
        QStringList answers;
        int exitCode;
        bool reachesTheEnd;
    };
    const Row rows[] = {
        {{}, 1, false},
        {{"--answer", "Scope=Abbrechen"}, 1, false},
        {{"--answer", "Scope=Ignorieren", "--answer", "Scope=Weiter"}, 0, true},
        {{"--answer", "Scope=Ignorieren"}, 0, true},  // the wait asks again: "Ignorieren" is no "Weiter"
    };
    for (const Row& r : rows) {
        const testio::TDvrun run = testio::Dvrun(r.answers + QStringList{script});
        EXPECT_EQ(run.exitCode, r.exitCode) << run.out.toStdString();
        EXPECT_EQ(run.out.contains("\ndanach") || run.out.startsWith("danach"), r.reachesTheEnd) << run.out.toStdString();
        EXPECT_TRUE(run.out.contains("Scope-Plugin: Keine Adx-Scopedaten vorhanden !")) << run.out.toStdString();
    }
}

}  // namespace
}  // namespace dv::scope
