#include "framework/catalogue.h"
#include "framework/signature.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

TEST(SignatureTest, EveryCatalogueLiteralParses)
{
    for (const TCatalogueRow& row : Catalogue()) {
        if (*row.signature == '\0') continue;
        try {
            const TDVSignature sig = ParseSignature(QString::fromLatin1(row.signature));
            EXPECT_EQ(sig.name, QString::fromLatin1(row.procedure));
        } catch (const TDVSyntaxError& e) {
            ADD_FAILURE() << row.procedure << ": " << e.what() << " at column " << e.Column();
        }
    }
}

TEST(SignatureTest, LiteralsKeepTheirIrregularSpelling)
{
    const std::pair<const char*, const char*> rows[] = {
        {"StringBearbeitung", "Separator : string = ;Search : string = ; Input"},
        {"StringBearbeitung", "Count : Boolean = );"},
        {"OpenSaveDlg", "Extension : string =  );"},
        {"MeldungsBox", "YPos : Number)"},
        {"StrToArray", "(str : string; var arr : array of misc);"},
        {"NumberConvert", "Input : misc;"},
        {"TextOut", "Text : Misc; Font : string = \"\";"},
        {"IniFile", "Ident : string = \"\" ; Value"},
        {"TCP", "Sentinel: String = [10];"},
        {"SysUtils", "Target : string =);"},
    };
    for (const auto& [procedure, fragment] : rows) {
        EXPECT_TRUE(QString(FindProcedure(procedure)->signature).contains(fragment)) << procedure << ": " << fragment;
    }
    EXPECT_FALSE(QString(FindProcedure("MeldungsBox")->signature).endsWith(';'));
}

TEST(SignatureTest, IrregularDefaultsAreRead)
{
    struct Row {
        const char* procedure;
        const char* param;
        bool isVar;
        bool hasDefault;
        const char* defaultText;
        TDVType type;
    };
    const Row rows[] = {
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
    for (const Row& r : rows) {
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
    struct Row {
        const char* text;
        int column;
    };
    const Row rows[] = {
        {"procedure (A : Number);", 11},
        {"procedure P(A Number);", 15},
        {"procedure P(A : Zahl);", 17},
        {"procedure P(A : Number", 23},
        {"funktion P;", 1},
    };
    for (const Row& r : rows) {
        try {
            ParseSignature(r.text);
            ADD_FAILURE() << "accepted " << r.text;
        } catch (const TDVSyntaxError& e) {
            EXPECT_EQ(e.Line(), 1) << r.text;
            EXPECT_EQ(e.Column(), r.column) << r.text << ": " << e.what();
        }
    }
}

}  // namespace
}  // namespace dv
