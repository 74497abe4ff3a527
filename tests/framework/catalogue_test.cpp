#include "framework/catalogue.h"
#include "framework/dvmiscfunctions.h"
#include "framework/registry.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <QSet>

namespace dv {
namespace {

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
        if (auto* sig = dynamic_cast<TDVThreadRunEdit*>(command.get())) {
            EXPECT_EQ(sig->SignatureText(), QString::fromLatin1(row.signature));
        }
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
    try {
        TDVShowLaborCommand().Run(params);
        ADD_FAILURE() << "ran without a host";
    } catch (const TDravikException& e) {
        EXPECT_TRUE(e.Message().contains("TestEnvironment")) << e.what();
    }
}

}  // namespace
}  // namespace dv
