// The catalogue of commands, the signatures its rows carry, and the command base class that binds a
// signature's parameters by default.
#include "framework/catalogue.h"
#include "framework/dvmiscfunctions.h"
#include "framework/registry.h"
#include "framework/runedit.h"
#include "framework/signature.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <QSet>

namespace dv {
namespace {

// The script signature of every procedure, written out here character for character with its
// irregularities (empty defaults, "= ;Search", "=  );", MeldungsBox without ";").
const std::pair<const char*, const char*> kSignatures[] = {
    {"ArrayToStr", "procedure ArrayToStr(var Str : string; Arr : array of misc);"},
    {"StrToArray", "procedure StrToArray(str : string; var arr : array of misc);"},
    {"StringBearbeitung", "procedure StringBearbeitung(Separator : string = ;Search : string = ; Input : string; var Output : string; UpperCase : Boolean; StrLen : Boolean; Fragment : Boolean; Cut : Boolean; Pos : Number = ; Length : Number = 0; FragPos : string; Segment : Boolean; Part : Number; Convert : Number; Round : Boolean; Trim : Boolean; TrimMode : Number; ReplaceWith : string = ; ReplacePos : Number = 0; Replace : Boolean; Count : Boolean = );"},
    {"NumberConvert", "procedure NumberConvert(Operation : string; Input : misc; var Output : Number; Stellen : Number);"},
    {"TextOut", "procedure TextOut(Text : Misc; Font : string = \"\"; FontSize : Number = 10; FontColor : Number = 0; FontStyle : String = \"\"; FormFeed : Boolean = False);"},
    {"StatusText", "procedure StatusText(Text : string);"},
    {"OpenSaveDlg", "procedure OpenSaveDlg(OpenDlg : Boolean; var FileName : string = ; InitDir : string = ; Caption : string = ; Extension : string =  );"},
    {"MeldungsBox", "procedure MeldungsBox(Position : Boolean; Text : string; Type : String; Buttons : string; XPos : Number; YPos : Number)"},
    {"Exec", "procedure Exec(ExePath : string; Params : string = ; WorkDir : string = ; var Return : Number = ; TimeOut : Number = 0; Hide : Boolean = False; Delay : Number = 0; Minimized : Boolean = False; Kill : Boolean = False);"},
    {"SysUtils", "procedure SysUtils(Command : String; FileName : string; var Result : Misc = ; Target : string =);"},
    {"IniFile", "procedure IniFile(FileName : string; Section : string; Ident : string = \"\" ; Value : string = \"\"; var Result : Misc = ; Mode : Number);"},
    {"CallNamedPipe", "procedure CallNamedPipe(Name: String; Call: String; var Result: String);"},
    {"TCP", "procedure TCP(Host: String; Port: Number; Send: String; Sentinel: String = [10]; var Result: String);"},
    {"FormShow", "procedure FormShow(File: String; Fullscreen: Boolean = false);"},
    {"FormResult", "procedure FormResult(Close: Boolean = true; Timeout: Number = -1; var Result: String = ; Unpack: Boolean = false);"},
    {"ImageEval", "procedure ImageEval(var Result: Number; File: String; Rect: Array of Number = []; Displacement: Number = 0; Coverage: Boolean = false; Compare: Boolean = false; CompareMax: Boolean = false);"},
    {"ImageCapture", "procedure ImageCapture(Device: String; Exposure: Number; WhiteBalance: Number);"},
    {"ImageSave", "procedure ImageSave(File: String);"},
    {"ImageLoad", "procedure ImageLoad(File: String);"},
    {"ImageChange", "procedure ImageChange(Brightness: Number = 21.4; Rect: Array of Number = []; GreyScale: Boolean = false);"},
    {"Scope", "procedure Scope(Command: String; Special: String);"},
    {"ShowLabor", "procedure ShowLabor;"},
    {"HideLabor", "procedure HideLabor;"},
};

// Each row, and each command built from the registry, carries the signature written above.
TEST(CatalogueTest, EverySignatureIsTheWrittenLiteral)
{
    test::TTestHost host;
    for (const auto& [procedure, signature] : kSignatures) {
        const TCatalogueRow* row = FindProcedure(procedure);
        ASSERT_NE(row, nullptr) << procedure;
        EXPECT_STREQ(row->signature, signature);
        const auto built = CreateCommand(row->commandClass, &host);
        auto* command = dynamic_cast<TDVThreadRunEdit*>(built.get());
        if (IsAvailable(*row)) {
            ASSERT_NE(command, nullptr) << procedure;
            EXPECT_EQ(command->SignatureText(), QString::fromLatin1(signature));
        }
    }
    int procedures = 0;
    for (const TCatalogueRow& row : Catalogue()) procedures += *row.signature ? 1 : 0;
    EXPECT_EQ(procedures, static_cast<int>(std::size(kSignatures)));
}

TEST(CatalogueTest, NamesAreUniqueAndEveryBuiltRowConstructs)
{
    QSet<QString> procedures, classes;
    test::TTestHost host;
    for (const TCatalogueRow& row : Catalogue()) {
        EXPECT_FALSE(procedures.contains(row.procedure)) << row.procedure;
        EXPECT_FALSE(classes.contains(row.commandClass)) << row.commandClass;
        procedures << row.procedure;
        classes << row.commandClass;
        auto command = CreateCommand(row.commandClass, &host);
        EXPECT_EQ(command != nullptr, IsAvailable(row)) << row.commandClass;
        if (command) {
            EXPECT_EQ(command->FormClass(), QString::fromLatin1(row.dialogClass)) << row.commandClass;
        }
    }
    EXPECT_EQ(procedures.size(), 27);
    EXPECT_EQ(QString(kPackageDescription), "Dravik Befehlsbibliothek");
}

TEST(CatalogueTest, EveryBuiltClassIsACatalogueRow)
{
    for (const TCommandClass& c : CommandClasses()) EXPECT_NE(FindCommandClass(c.commandClass), nullptr) << c.commandClass;
}

// The subsystem of every row as the library's subsystems are laid out: the HTML forms are dialogs,
// image capture and change belong to the image commands, the laboratory view is the host's.
TEST(CatalogueTest, EveryRowBelongsToItsSubsystem)
{
    using enum TSubsystem;
    const std::pair<const char*, TSubsystem> groups[] = {
        {"ArrayToStr", Text}, {"StrToArray", Text}, {"StringBearbeitung", Text}, {"NumberConvert", Text},
        {"(loop)", Structure}, {"(case)", Structure}, {"(if-then-else)", Structure}, {"(comment)", Structure},
        {"Exec", System}, {"SysUtils", System}, {"IniFile", System}, {"CallNamedPipe", System}, {"TCP", System},
        {"MeldungsBox", Dialogs}, {"TextOut", Dialogs}, {"StatusText", Dialogs}, {"OpenSaveDlg", Dialogs},
        {"FormShow", Dialogs}, {"FormResult", Dialogs},
        {"Scope", Scope},
        {"ImageEval", Image}, {"ImageLoad", Image}, {"ImageSave", Image}, {"ImageCapture", Image}, {"ImageChange", Image},
        {"ShowLabor", Host}, {"HideLabor", Host},
    };
    ASSERT_EQ(std::size(groups), Catalogue().size());
    for (const auto& [procedure, group] : groups) {
        const TCatalogueRow* row = FindProcedure(procedure);
        ASSERT_NE(row, nullptr) << procedure;
        EXPECT_EQ(row->group, group) << procedure;
    }
}

TEST(CatalogueTest, LookupIgnoresCaseOfProcedures)
{
    ASSERT_NE(FindProcedure("tcp"), nullptr);
    EXPECT_STREQ(FindProcedure("tcp")->commandClass, "TDVCmdTCP");
    EXPECT_EQ(FindProcedure("NoSuchCommand"), nullptr);
    EXPECT_EQ(CreateCommand("TDVCmdNoSuch", nullptr), nullptr);
}

TEST(LaborCommandTest, SignatureIsBuiltByToProcDef)
{
    EXPECT_EQ(ToProcDef("ShowLabor"), "procedure ShowLabor;");
    EXPECT_EQ(TDVShowLaborCommand().SignatureText(), "procedure ShowLabor;");
    EXPECT_EQ(TDVHideLaborCommand().SignatureText(), "procedure HideLabor;");
    EXPECT_STREQ(FindProcedure("ShowLabor")->signature, "procedure ShowLabor;");
}

TEST(LaborCommandTest, ShowAndHideIgnoreParametersAndWriteNoVariable)
{
    test::TTestHost host;
    host.Declare("X", g_NumberType);
    TParamList params;
    params.AddString("X", "X");
    params.AddString("Text", "egal");
    TDVShowLaborCommand().Run(params);
    TDVHideLaborCommand().Run(params);
    EXPECT_EQ(host.laborVisible, std::vector<bool>({true, false}));
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
    EXPECT_EQ(params.Count(), 2);
}

TEST(LaborCommandTest, WithoutAHostTheRunFailsClearly)
{
    TParamList params;
    const QString failure = test::RaisedMessage<TDravikException>([&] { TDVShowLaborCommand().Run(params); }).value_or("ran");
    EXPECT_TRUE(failure.contains("TestEnvironment")) << failure.toStdString();
}

TEST(SignatureTest, IrregularDefaultsAreRead)
{
    const struct { const char *procedure, *param; bool isVar, hasDefault; const char* defaultText; TDVType type; } rows[] = {
        {"StringBearbeitung", "Separator", false, true, "", g_StringType},  // "= ;Search"
        {"StringBearbeitung", "Search", false, true, "", g_StringType},
        {"StringBearbeitung", "Input", false, false, "", g_StringType},
        {"StringBearbeitung", "Count", false, true, "", g_BooleanType},     // "= );"
        {"OpenSaveDlg", "Extension", false, true, "", g_StringType},        // "=  );"
        {"OpenSaveDlg", "FileName", true, true, "", g_StringType},
        {"IniFile", "Ident", false, true, "\"\"", g_StringType},            // "= \"\" ;"
        {"IniFile", "Result", true, true, "", g_MiscType},
        {"TCP", "Sentinel", false, true, "[10]", g_StringType},
        {"TextOut", "FontSize", false, true, "10", g_NumberType},
        {"FormResult", "Timeout", false, true, "-1", g_NumberType},
        {"ImageChange", "Brightness", false, true, "21.4", g_NumberType},
        {"ImageEval", "Rect", false, true, "[]", g_NumberArrayType},
        {"ArrayToStr", "Arr", false, false, "", g_MiscArrayType},
        {"StrToArray", "arr", true, false, "", g_MiscArrayType},
        {"MeldungsBox", "YPos", false, false, "", g_NumberType},             // no closing ";"
    };
    for (const auto& r : rows) {
        const TDVSignature sig = ParseSignature(QString::fromLatin1(FindProcedure(r.procedure)->signature));
        const TDVParamDecl* p = sig.Find(r.param);
        ASSERT_NE(p, nullptr) << r.procedure << "." << r.param;
        EXPECT_EQ(p->name, QString::fromLatin1(r.param)) << r.procedure;
        EXPECT_EQ(p->isVar, r.isVar) << r.param;
        EXPECT_EQ(p->hasDefault, r.hasDefault) << r.param;
        EXPECT_EQ(p->defaultText, QString::fromLatin1(r.defaultText)) << r.param;
        EXPECT_EQ(p->type, r.type) << r.param;
    }
}

TEST(SignatureTest, ParameterNamesKeepTheirSpellingAndOrder)
{
    EXPECT_EQ(ParseSignature(FindProcedure("StrToArray")->signature).ParamNames(), QStringList({"str", "arr"}));
    EXPECT_EQ(ParseSignature(FindProcedure("ArrayToStr")->signature).ParamNames(), QStringList({"Str", "Arr"}));
    EXPECT_EQ(ParseSignature(FindProcedure("StringBearbeitung")->signature).params.size(), 21u);
    EXPECT_TRUE(ParseSignature("procedure ShowLabor;").params.empty());
}

TEST(SignatureTest, GroupedNamesShareTheirDeclaration)
{
    const TDVSignature sig = ParseSignature("procedure Messe(Kanal, Bereich : Number; var Wert : Number = 0);");
    ASSERT_EQ(sig.params.size(), 3u);
    EXPECT_EQ(sig.params[1].name, "Bereich");
    EXPECT_EQ(sig.params[1].type, g_NumberType);
    EXPECT_TRUE(sig.params[2].isVar);
    EXPECT_EQ(sig.params[2].defaultText, "0");
}

TEST(SignatureTest, MalformedHeadingsNameThePlace)
{
    const std::pair<const char*, int> rows[] = {
        {"procedure (A : Number);", 11},
        {"procedure P(A Number);", 15},
        {"procedure P(A : Zahl);", 17},
        {"procedure P(A : Number", 23},
        {"funktion P;", 1},
    };
    for (const auto& [text, column] : rows) {
        try {
            ParseSignature(text);
            ADD_FAILURE() << "accepted " << text;
        } catch (const TDVSyntaxError& e) {
            EXPECT_EQ(e.Line(), 1) << text;
            EXPECT_EQ(e.Column(), column) << text << ": " << e.what();
        }
    }
}

// A command whose parameters the signature alone describes.
class TDVCmdPlain : public TDVThreadRunEdit {
public:
    TDVCmdPlain() : TDVThreadRunEdit("procedure Plain(A: String; B: Number = 3; var C: String);", "TFormPlain", nullptr) {}
};

TEST(RunEditTest, EditWithoutAGuiFailsClearlyAndLeavesTheList)
{
    TDVCmdPlain command;
    TParamList params;
    params.AddString("A", "x");
    const QString failure = test::RaisedMessage<TDravikException>([&] { command.Edit(params); }).value_or("Edit ran without a GUI");
    EXPECT_TRUE(failure.contains("TFormPlain")) << failure.toStdString();
    EXPECT_EQ(params.GetString("A"), "x");
    EXPECT_EQ(params.Count(), 1);
}

TEST(RunEditTest, DefaultBindingCopiesOneFieldPerParameterInSignatureOrder)
{
    TDVCmdPlain command;
    TParamList in;
    in.AddString("C", "Ziel");
    in.AddString("A", "x");
    in.AddString("Fremd", "y");
    command.SetParams(in);
    TParamList out;
    command.ReadParams(out);
    EXPECT_EQ(out.Names(), QStringList({"A", "B", "C"}));
    EXPECT_EQ(out.GetString("A"), "x");
    EXPECT_EQ(out.GetString("B"), "");
    EXPECT_EQ(out.GetString("C"), "Ziel");
}

TEST(RunEditTest, DefaultsAndParameterCheck)
{
    TDVCmdPlain command;
    TParamList params;
    params.AddString("A", "x");
    EXPECT_FALSE(command.CheckParams(params));  // C has no default
    params.AddString("C", "Ziel");
    EXPECT_TRUE(command.CheckParams(params));
    command.AddDefaults(params);
    EXPECT_EQ(params.GetString("B"), "3");
    EXPECT_EQ(command.GetID(), "Plain");
    EXPECT_FALSE(command.DecodeScript("Plain(1, 2);", params, nullptr));
}

}  // namespace
}  // namespace dv
