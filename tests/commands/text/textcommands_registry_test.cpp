// The text commands and TextOut as the host sees them: built, constructible, their parameter lists
// named and ordered exactly as their signatures.
#include "framework/catalogue.h"
#include "framework/registry.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

TEST(TextCommandsRegistryTest, AvailableAndListsFollowSignatures)
{
    test::TTestHost host;
    for (const char* procedure : {"ArrayToStr", "StrToArray", "StringBearbeitung", "NumberConvert", "TextOut"}) {
        const TCatalogueRow* row = FindProcedure(procedure);
        ASSERT_NE(row, nullptr) << procedure;
        EXPECT_TRUE(IsAvailable(*row)) << procedure;
        auto command = CreateCommand(row->commandClass, &host);
        auto* func = dynamic_cast<TDVFuncRunEdit*>(command.get());
        ASSERT_NE(func, nullptr) << procedure;
        EXPECT_EQ(func->SignatureText(), QString::fromUtf8(row->signature));
        EXPECT_EQ(func->FormClass(), QString::fromUtf8(row->dialogClass));
        func->SetDefaults();
        TParamList params;
        func->ReadParams(params);
        EXPECT_EQ(params.Names(), func->Signature().ParamNames()) << procedure;
        EXPECT_FALSE(func->OlderNames().isEmpty()) << procedure;
    }
}

}  // namespace
}  // namespace dv
