// Test main of the dialog tests: a QApplication (offscreen platform) and the registered dialogs.
#include "commands/dialogs/operatordialogs_form.h"
#include "framework/forms/guiforms.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    QApplication app(argc, argv);
    dv::RegisterForms();
    // An offscreen application gets no operator dialogs of its own; the tests answer them here.
    dv::TOperatorDialogs operatorDialogs;
    dv::SetOperatorDialogs(&operatorDialogs);
    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    dv::SetOperatorDialogs(nullptr);
    return result;
}
