// The tag language: the two text routines, decoding of every tag and function row, the writer,
// faults that stop decoding where they happen, the result text, and a call's arguments as the
// editor works on them.
#include "scope/scopetags.h"

#include "framework/exceptions.h"
#include "scope/gui_scope.h"
#include "scope/scopeedit.h"
#include "scope/scopeformat.h"
#include "tests/support/testhost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace dv::scope {
namespace {

TEST(ScopeTextRoutines, SegmentAndGetStrPartFollowTheirRules)
{
    struct Row {
        QString text, delimiter;
        int n;
        QString expected;
    };
    const Row rows[] = {
        {"a:b:c", ":", 2, "b"},
        {"a:b:c", ":", 0, "a"},             // 0 counts as 1
        {"a:b:c", ":", 9, "c"},             // past the end: the last field
        {"abc", ":", 3, "abc"},             // no delimiter: the whole text
        {"10:20", "0", 1, "10:20"},         // "0" never splits
        {"a::c", ":", 2, ""},
    };
    for (const Row& r : rows) EXPECT_EQ(Segment(r.text, r.delimiter, r.n), r.expected) << r.text.toStdString() << " " << r.n;

    EXPECT_EQ(GetStrPart("[OUT:", "]", "x,[OUT:Res],y", 0), "Res");
    EXPECT_EQ(GetStrPart("[OUT:", "]", "x,[OUT:Res", 0), "");  // unterminated
    EXPECT_EQ(GetStrPart("[OUT:", "]", "x,[CLR]", 0), "");
    // Skip 2 drops the text through the first "]" before searching.
    EXPECT_EQ(GetStrPart("[", "]", "[a],[b]", 2), "b");
    EXPECT_EQ(GetStrPart("[", "]", "[a", 2), "");
}

TDecodedSettings Decode(const QString& command, const QString& special = {})
{
    TDecodedSettings s;
    DecodeTags(command, special, s);
    return s;
}

// Writer-made strings of every function row and every tag read back into the same settings,
// and the writer gives the same strings again.
TEST(ScopeTags, WriterMadeStringsSurviveDecodeAndWrite)
{
    const QString commands[] = {
        "Scope([CLR],1:[ARRAY:A,FREQ:1000],[FX:OFFSET:1],[OUT:R]);",
        "Scope([HIDE],[CLR],1:[ARRAY:A,FREQ:1000],[FX:RMS:2:OFS:0.5:2],[OUT:R]);",
        "Scope([KEEP],2:[FILE:\"/d/x.txt\",SEP:59],[FX:MID:2],[OUT:R],[CLIP:0.1:0.9]);",
        "Scope([FX:DIST:3],[OUT:R],[TX:s],[TY:V]);",
        "Scope([FX:SINAD:1:48000:1000:100:2],[OUT:R]);",
        "Scope([FX:TIMEDIFF:1:0.5:1.5:2:1:4],[OUT:R],[WAIT]);",
        "Scope([FX:PEAK:4:3:2:0.1:0.01],[OUT:R],[WAIT:W]);",
        "Scope([FX:PHASESHIFT:1:2:5],[OUT:R]);",
        "Scope([FX:QUERY:1:2:0.25],[OUT:R]);",
        "Scope([FX:DIFFCUR:1:2:],[OUT:D]);",
        "Scope([FX:CURVEPATCH:2:Korr],[OUT:]);",
        "Scope([FX:ENVELOPE:1],[FILE:Huell],[OUT:R]);",
        "Scope([FX:LOWPASS:1000:50:4:2],[OUT:F]);",
        "Scope([FX:BANDPASS:1000:50:100:2:3],[OUT:F]);",
        "Scope([FX:HIGHPASS:1000:50:4:1],[OUT:F]);",
        "Scope([FX:FFT:1000:1][OUT:S]);",
        "Scope([FX:FREQ:1:0:0:0:0],[OUT:R]);",
        "Scope([FX:IMPULSCOUNT:1:1:1:1:1],[OUT:R]);",
        "Scope([FX:DUTYCYCLE:1:2:2:3:0],[OUT:R]);",
        "Scope([AUTO],[PREFIX],1:[X:a,Y:b],2:[ADX_DATA:],3:[IMAGE-G-C:12,FREQ:25],4:[ARRAY:Q,FREQ:,NAME:U1],[OUT:]);",
    };
    for (const QString& command : commands) {
        const TScopeScript written = WriteScript(Decode(command));
        EXPECT_EQ(written.Command, command);
        EXPECT_EQ(written.Special, "");
    }
    const QString command = "Scope([SETSCALE],[SETCOLOR],[OUT:]);";
    const QString special = "[SETCOL:00FFFF:00FF00:FFFF00:FF00FF:000000:101010:FF0000][SETSCALE:3:4:0:0:543:135]";
    const TScopeScript written = WriteScript(Decode(command, special));
    EXPECT_EQ(written.Command, command);
    EXPECT_EQ(written.Special, special);
}

TEST(ScopeTags, EveryFunctionFieldLandsInItsSetting)
{
    struct Row {
        QString fx;
        TScopeFnc function;
        QString channel;
        std::array<QString, 5> args;
        QString order;
    };
    const Row rows[] = {
        {"OFFSET:3", TScopeFnc::Offset, "3", {}, ""},
        {"RMS:2:OFS:0.5:", TScopeFnc::Rms, "2", {"1"}, ""},  // empty mode gives "1"
        {"MID:4", TScopeFnc::Mid, "4", {}, ""},
        {"DIST:2", TScopeFnc::Dist, "2", {}, ""},
        {"TIMEDIFF:1:a:b:2:1:7", TScopeFnc::TimeDiff, "1", {"a", "b", "2", "1", "7"}, ""},
        {"TIMEDIFF:1:a:b:2:1", TScopeFnc::TimeDiff, "1", {"a", "b", "2", "1", "0"}, ""},  // five ":"
        {"PEAK:2:3:2:ex:ey", TScopeFnc::Peak, "2", {"3", "2", "ex", "ey"}, ""},
        {"PHASESHIFT:2:3:", TScopeFnc::PhaseShift, "1", {"2", "3", "1"}, ""},  // channel stays "1"
        {"QUERY:3:1:ref", TScopeFnc::Query, "3", {"1", "ref"}, ""},
        {"DIFFCUR:2:sc:p2", TScopeFnc::DiffCurve, "2", {"sc"}, ""},  // p2 never read
        {"CURVEPATCH:1:C:\\korr.txt", TScopeFnc::CurvePatch, "1", {"C"}, ""},  // cut at the drive colon
        {"LOWPASS:r:c:o:4", TScopeFnc::LowPass, "4", {"r", "c"}, "o"},
        {"BANDPASS:r:l:h:o:3", TScopeFnc::BandPass, "3", {"r", "l", "h"}, "o"},
        {"HIGHPASS:r:c:o:2", TScopeFnc::HighPass, "2", {"r", "c"}, "o"},
        {"FFT:r:2", TScopeFnc::Fft, "2", {"r"}, ""},
        {"FREQ:1:a:b:1:0", TScopeFnc::Freq, "1", {"a", "b", "1", "0", "0"}, ""},
        {"IMPULSCOUNT:2:a:b:3:1", TScopeFnc::ImpulsCount, "2", {"a", "b", "3", "1", "0"}, ""},
        {"DUTYCYCLE:3:a:b:0:1", TScopeFnc::DutyCycle, "3", {"a", "b", "0", "1", "0"}, ""},
        {"UNKNOWN:3", TScopeFnc::None, "1", {}, ""},
        // The keywords are tested in a fixed order: "FREQ:" inside a TIMEDIFF tag never wins.
        {"TIMEDIFF:2:FREQ:b:0:0", TScopeFnc::TimeDiff, "2", {"FREQ", "b", "0", "0", "0"}, ""},
        {"PHASESHIFT:1:2:3,PEAK:1", TScopeFnc::PhaseShift, "1", {"1", "2", "3,PEAK"}, ""},
    };
    for (const Row& r : rows) {
        const TDecodedSettings s = Decode("[FX:" + r.fx + "]");
        SCOPED_TRACE(r.fx.toStdString());
        EXPECT_EQ(s.FxFunction, r.function);
        EXPECT_EQ(s.FxChannel, r.channel);
        EXPECT_EQ(s.FxArg, r.args);
        EXPECT_EQ(s.FxOrder, r.order);
    }
    const TDecodedSettings rms = Decode("[FX:RMS:2:OFS:off:2]");
    EXPECT_EQ(rms.FxRmsOffset, "off");
    const TDecodedSettings sinad = Decode("[FX:SINAD:2:48000:1000:50:3]");
    EXPECT_EQ(sinad.FxSinadArg, (std::array<QString, 3>{"48000", "1000", "50"}));
    EXPECT_EQ(sinad.FxSinadWindow, 3);
    EXPECT_EQ(Decode("[FX:ENVELOPE:2],[FILE:env.hkv]").FxArg[0], "env.hkv");
}

TEST(ScopeTags, TagsAreFoundAnywhereAndReadOnlyWhereAllowed)
{
    const TDecodedSettings s = Decode("junk [OUT:R] 2:[] [WAIT:W] x [CLR][HIDE] 1:[ARRAY:A,FREQ:10] [TY:mV]");
    EXPECT_TRUE(s.ClearData);
    EXPECT_TRUE(s.HideScope);
    EXPECT_FALSE(s.KeepScope);
    EXPECT_EQ(s.CurveSource[0], "ARRAY:A,FREQ:10");
    EXPECT_EQ(s.CurveSource[1], "");  // nothing between "2:[" and "]"
    EXPECT_EQ(s.ResultVar, "");       // "[OUT:" without "[FX:"
    EXPECT_TRUE(s.WaitEnabled);
    EXPECT_EQ(s.WaitVar, "W");
    EXPECT_EQ(s.UnitTextY, "mV");

    const TDecodedSettings clip = Decode("[FX:MID:1],[CLIP:0.25]");
    EXPECT_EQ(clip.ClipStart, "0.25");
    EXPECT_EQ(clip.ClipStop, "0.25");  // one field: Segment gives it for both
}

TEST(ScopeTags, SpecialStringColoursAndZeroPoint)
{
    const TDecodedSettings colors = Decode("", "[SETCOL:0000ff:00FF00:1:2:3:4:ABCDEF]");
    EXPECT_TRUE(colors.UseColors);
    EXPECT_EQ(colors.ColorValues, (std::array<int, 7>{255, 0xFF00, 1, 2, 3, 4, 0xABCDEF}));

    struct Row {
        QString special;
        double zx, zy;
    };
    const Row rows[] = {
        {"[SETSCALE:1:2:0:0:543:270]", 0.5, 0.5},
        {"[SETSCALE:1:2:0:0:1086:54]", 1.0, 0.1},
        {"[SETSCALE:1:2:0:0::]", 0.0, 0.5},    // empty fields: the defaults
        {"[SETSCALE:1:2:0:0:108.6:]", 0.1, 0.5},
    };
    for (const Row& r : rows) {
        TDecodedSettings s;
        s.ZeroPosX = 7;
        s.ZeroPosY = 7;
        DecodeTags("", r.special, s);
        EXPECT_TRUE(s.UseScaling);
        EXPECT_DOUBLE_EQ(s.ZeroPosX, r.zx) << r.special.toStdString();
        EXPECT_DOUBLE_EQ(s.ZeroPosY, r.zy) << r.special.toStdString();
    }
    // Settings that are not reset keep the last tag's values.
    TDecodedSettings kept = Decode("", "[SETCOL:000001:2:3:4:5:6:7]");
    DecodeTags("[FX:SINAD:1:8000:50:10:1]", "", kept);
    DecodeTags("[CLR]", "", kept);
    EXPECT_EQ(kept.ColorValues[0], 1);
    EXPECT_FALSE(kept.UseColors);
    EXPECT_EQ(kept.FxSinadArg[0], "8000");
    EXPECT_EQ(kept.FxSinadWindow, 1);
}

TEST(ScopeTags, AFaultStopsDecodingWhereItHappened)
{
    struct Row {
        QString command, special;
    };
    const Row faulty[] = {
        {"[CLR],1:[ARRAY:A,FREQ:1],[FX:MID:x],[OUT:R],[WAIT]", ""},  // non-numeric channel
        {"[CLR],1:[ARRAY:A,FREQ:1],[FX:SINAD:1:1:1:1:Hann],[OUT:R],[WAIT]", ""},
        {"[CLR],1:[ARRAY:A,FREQ:1],[FX:LOWPASS:1:1:1:],[OUT:R],[WAIT]", ""},  // empty channel
        {"[CLR],1:[ARRAY:A,FREQ:1],[FX:MID:1:],[OUT:R],[WAIT]", "[SETCOL:00FF00:GG0000]"},
        {"[CLR],1:[ARRAY:A,FREQ:1],[FX:MID:1:],[OUT:R],[WAIT]", "[SETSCALE:a:2:0:0:1:1]"},
    };
    for (const Row& r : faulty) {
        TDecodedSettings s;
        EXPECT_THROW(DecodeTags(r.command, r.special, s), TScopeDecodeFault) << r.command.toStdString();
        EXPECT_TRUE(s.ClearData);
        EXPECT_EQ(s.CurveSource[0], "ARRAY:A,FREQ:1");
        if (r.special.isEmpty()) {
            EXPECT_EQ(s.ResultVar, "");  // after the fault: still reset
            EXPECT_FALSE(s.WaitEnabled);
        } else {
            EXPECT_EQ(s.ResultVar, "R");
            EXPECT_TRUE(s.WaitEnabled);
            EXPECT_FALSE(s.UseColors);
            EXPECT_FALSE(s.UseScaling);
        }
    }
    TDecodedSettings s;
    EXPECT_THAT([&] { DecodeTags("[FX:OFFSET:eins]", "", s); },
                testing::ThrowsMessage<TScopeDecodeFault>(testing::StrEq("Scope-Plugin: Fehler bei der Befehlsumsetzung !")));
}

TEST(ScopeTags, MalformedTextsNeverCrash)
{
    const QString texts[] = {"[FX:", "[FX:RMS", "1:[", "[SETCOL:", "]]]][[[[", "[FX:TIMEDIFF::::::::::::]", QString(300, ':'),
                             "[FX:PEAK:1]", "[WAIT:", "[TX:[TY:]"};
    for (const QString& t : texts) {
        TDecodedSettings s;
        try {
            DecodeTags(t, t, s);
        } catch (const TScopeDecodeFault&) {
            // the one fault decoding may raise
        }
        const TScopeScript written = WriteScript(s);
        EXPECT_TRUE(written.Command.startsWith("Scope(") && written.Command.endsWith(");")) << t.toStdString();
    }
}

// SI prefixes and the two number formats, against hand-worked values.
TEST(ScopeFormat, ResultTextsInPrefixAndGeneralFormat)
{
    struct Row {
        double value;
        QString unit;
        bool prefix;
        QString expected;
    };
    const Row rows[] = {
        {0.0123, "V", true, "12.300 mV"},
        {1234567, "Hz", true, "1.235 MHz"},
        {-0.0000025, "s", true, "-2.500 µs"},
        {999.9996, "V", true, "1000.000 V"},  // the prefix is chosen before rounding
        {1, "%", true, "1.000 %"},
        {0, "V", true, "0 V"},  // zero is never scaled
        {0.0123, "V", false, "0.0123 V"},
        {1.41421356, "V", false, "1.41421 V"},
        {123456.7, "dB", false, "123457 dB"},
        {1234567, "Hz", false, "1.23457E+06 Hz"},
        {0.000012345, "s", false, "0.000012345 s"},  // fixed down to 1e-5
        {0.0000012345, "s", false, "1.2345E-06 s"},
        {-2.5, "", false, "-2.5 "},
    };
    for (const Row& r : rows) EXPECT_EQ(ResultText(r.value, r.unit, r.prefix), r.expected) << r.value;
}

TEST(ScopeEditArguments, LiteralsAreEditedAsTheirTextExpressionsAsWritten)
{
    struct TRow {
        const char* argument;
        const char* text;
    };
    const TRow rows[] = {
        {R"("[CLR],[OUT:R]")", "[CLR],[OUT:R]"},
        {R"(  "1:[FILE:""a b.txt"",SEP:59]" )", R"(1:[FILE:"a b.txt",SEP:59])"},
        {R"("")", ""},
        // An expression: the text between its outer quotes, quotes inside left as written.
        {R"("[CLR],1:[" + Quelle + "],[OUT:M]")", R"([CLR],1:[" + Quelle + "],[OUT:M])"},
        // No quotes around it (a variable): the text itself.
        {"Befehl", "Befehl"},
        {"", ""},
    };
    for (const TRow& r : rows) {
        const QString argument = QString::fromUtf8(r.argument), text = QString::fromUtf8(r.text);
        EXPECT_EQ(ArgumentText(argument), text) << r.argument;
        // Unchanged text gives the argument back.
        if (argument.trimmed().startsWith('"')) {
            EXPECT_EQ(ArgumentOf(text, argument), argument.trimmed()) << r.argument;
        }
    }
    // What the editor wrote for a variable or a new call is a literal.
    EXPECT_EQ(ArgumentOf(R"(1:[FILE:"x",SEP:59])", "Befehl"), R"("1:[FILE:""x"",SEP:59]")");
    EXPECT_EQ(ArgumentOf("", ""), R"("")");
}

TEST(ScopeEditArguments, CommandLosesOnlyTheWritersFrame)
{
    EXPECT_EQ(CommandTags("Scope([CLR],[OUT:R]);"), "[CLR],[OUT:R]");
    EXPECT_EQ(CommandTags("Scope([FX:FFT:100:1][OUT:S]);"), "[FX:FFT:100:1][OUT:S]");
    EXPECT_EQ(CommandTags("[CLR],[OUT:R]"), "[CLR],[OUT:R]");
}

TEST(ScopeEditArguments, WithoutAGuiEditingFailsClearlyAndLeavesTheList)
{
    test::TTestHost host;
    TDVCmdScope cmd(&host);
    TParamList params;
    params.AddString("Command", "\"[CLR],[OUT:R]\"");
    params.AddString("Special", "\"\"");
    EXPECT_THAT([&] { cmd.Edit(params); }, testing::ThrowsMessage<TDravikException>(testing::HasSubstr("TFormScope")));
    EXPECT_EQ(params.GetString("Command"), "\"[CLR],[OUT:R]\"");
    EXPECT_EQ(params.GetString("Special"), "\"\"");
}

}  // namespace
}  // namespace dv::scope
