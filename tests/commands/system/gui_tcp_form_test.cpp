#include "commands/system/gui_tcp_form.h"
#include "framework/forms/dvform.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace dv {
namespace {

QWidget* Modal() { return QApplication::activeModalWidget(); }

QLineEdit* Edit(const QString& param)
{
    QLineEdit* edit = Modal() ? Modal()->findChild<QLineEdit*>("DVEdit_" + param) : nullptr;
    EXPECT_NE(edit, nullptr) << param.toStdString();
    return edit;
}

const QStringList kParams{"Host", "Port", "Send", "Sentinel", "Result"};

TEST(TcpFormTest, ANewCallOffersTheLineFeedSentinelAndStoresEveryParameter)
{
    test::TTestHost host;
    TDVCmdTCP command(&host);
    // As the host inserts a new call: defaults first, then the editor on the defaulted list.
    command.SetDefaults();
    TParamList params;
    command.AddDefaults(params);
    QString sentinelShown;
    QString title;
    QStringList labels;
    QTimer::singleShot(0, [&] {
        title = Modal()->windowTitle();
        sentinelShown = Edit("Sentinel")->text();
        for (const QString& p : kParams) {
            for (QLabel* label : Modal()->findChildren<QLabel*>()) {
                if (label->buddy() == Edit(p)) labels << label->text();
            }
        }
        QTest::keyClicks(Edit("Host"), "127.0.0.1");
        QTest::keyClicks(Edit("Port"), "5000");
        QTest::keyClicks(Edit("Send"), "\"PING\"");
        QTest::keyClicks(Edit("Result"), "Antwort");
        QTest::mouseClick(Modal()->findChild<QPushButton*>("BT_OK"), Qt::LeftButton);
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(title, "TCP");
    EXPECT_EQ(sentinelShown, "[10]");
    EXPECT_EQ(labels, (QStringList{"Host", "Port", "Zu sendender Text", "Text, der das Ende der Antwort signalisiert",
                                   "Ergebnis-Variable"}));
    EXPECT_EQ(params.Names(), kParams);
    QStringList texts;
    for (const QString& p : kParams) texts << params.GetString(p);
    EXPECT_EQ(texts, (QStringList{"127.0.0.1", "5000", "\"PING\"", "[10]", "Antwort"}));
    EXPECT_EQ(host.attached.size(), 5u);
}

}  // namespace
}  // namespace dv
