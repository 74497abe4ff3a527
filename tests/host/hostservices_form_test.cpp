// The variable picker: a dialog's edit box offers the script's variables when a GUI exists.
#include "host/hostservices.h"

#include <QCompleter>
#include <QLineEdit>
#include <QStringListModel>

#include <gtest/gtest.h>

namespace dv::host {
namespace {

TEST(VariablePicker, EditBoxesOfferTheScriptsGlobals)
{
    THost host;
    host.Program().globals.Declare({QStringLiteral("Spannung"), g_NumberType});
    host.Program().globals.Declare({QStringLiteral("Kurve"), g_NumberArrayType});
    QLineEdit edit;
    host.AttachVariableEditor(&edit);
    ASSERT_NE(edit.completer(), nullptr);
    const auto* model = qobject_cast<QStringListModel*>(edit.completer()->model());
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->stringList(), QStringList({"PROJEKTPFAD", "Spannung", "Kurve"}));
    EXPECT_EQ(edit.completer()->caseSensitivity(), Qt::CaseInsensitive);
}

}  // namespace
}  // namespace dv::host
