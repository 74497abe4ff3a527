#include "framework/scanner.h"

#include <gtest/gtest.h>

#include <vector>

namespace dv {
namespace {

std::vector<TTokenType> Types(const QString& text)
{
    TScanner s(text);
    std::vector<TTokenType> types;
    while (s.HasMoreTokens()) types.push_back(s.GetNextToken().type);
    return types;
}

using T = TTokenType;

TEST(ScannerTest, TokenKinds)
{
    struct Row { const char* text; std::vector<TTokenType> types; };
    const std::vector<Row> rows = {
        {"for I := 1 to N - 1 do", {T::kwFor, T::Identifier, T::Assignment, T::Number, T::kwTo, T::Identifier, T::Minus, T::Number, T::kwDo}},
        {"WHILE x <> 0 Do", {T::kwWhile, T::Identifier, T::NotEqual, T::Number, T::kwDo}},
        {"a <= b >= c < d > e = f", {T::Identifier, T::LessEqual, T::Identifier, T::GreaterEqual, T::Identifier, T::Less,
                                     T::Identifier, T::Greater, T::Identifier, T::Equal, T::Identifier}},
        {"x := {72}{65} + [1, $FF]", {T::Identifier, T::Assignment, T::ArrayText, T::Plus, T::LBracket, T::Number, T::Comma, T::Number, T::RBracket}},
        {"93: until x; // Kommentar", {T::kwUntil, T::Identifier, T::Semicolon}},
        {"(* mehr\nzeilig *) end case", {T::kwEnd, T::kwCase}},
        {"1e-5 2.5 3.", {T::Number, T::Number, T::Number, T::Dot}},
    };
    for (const Row& r : rows) EXPECT_EQ(Types(r.text), r.types) << r.text;
}

TEST(ScannerTest, StringsAndPositions)
{
    TScanner s("x := \"Er sagte \"\"Hallo\"\"\";\n  y");
    s.GetNextToken();
    s.GetNextToken();
    const TToken str = s.GetNextToken();
    EXPECT_EQ(str.type, T::String);
    EXPECT_EQ(str.text, "Er sagte \"Hallo\"");
    s.GetNextToken();
    const TToken y = s.GetNextToken();
    EXPECT_EQ(y.line, 2);
    EXPECT_EQ(y.column, 3);
}

TEST(ScannerTest, MarkersAreDroppedOnlyAtLineStartAndWhenAsked)
{
    EXPECT_EQ(Types("911: x := 1"), (std::vector<TTokenType>{T::Identifier, T::Assignment, T::Number}));
    EXPECT_EQ(Types("x := 93: y"), (std::vector<TTokenType>{T::Identifier, T::Assignment, T::Number, T::Colon, T::Identifier}));
    TScanner keep("93: x", false);
    EXPECT_EQ(keep.GetNextToken().type, T::Number);
}

TEST(ScannerTest, LookAheadDoesNotConsumeAndRequireChecks)
{
    TScanner s("while a do");
    EXPECT_EQ(s.LookAhead().type, T::kwWhile);
    EXPECT_EQ(s.Require(T::kwWhile).text, "while");
    s.SetScript("for x", 0);
    EXPECT_EQ(s.Require(T::kwFor).type, T::kwFor);
    try {
        s.Require(T::Assignment);
        ADD_FAILURE() << "Require accepted an identifier";
    } catch (const TDVSyntaxError& e) {
        EXPECT_EQ(e.Column(), 5);
        EXPECT_TRUE(e.Message().contains(":=")) << e.what();
    }
}

TEST(ScannerTest, UnterminatedTextsAreSyntaxErrors)
{
    for (const char* bad : {"\"offen", "(* offen", "{72", "x ? y"}) {
        EXPECT_THROW(Types(bad), TDVSyntaxError) << bad;
    }
}

TEST(ScannerTest, LastTokenFollowsWhatWasConsumed)
{
    TScanner scanner("a := 1\nb");
    EXPECT_EQ(scanner.LastToken().type, T::EndOfText);
    scanner.LookAhead();
    EXPECT_EQ(scanner.LastToken().type, T::EndOfText);
    scanner.GetNextToken();
    scanner.GetNextToken();
    EXPECT_EQ(scanner.Require(T::Number).line, 1);
    EXPECT_EQ(scanner.LastToken().text, "1");
    EXPECT_EQ(scanner.LookAhead().line, 2);
}

}  // namespace
}  // namespace dv
