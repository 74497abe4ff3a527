#include "image/gui_imagesave_form.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/translate.h"

#include <QBoxLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace dv {

TFormImageSave::TFormImageSave(TDVCmdImageSave& command)
    : TImageFileForm(command, QStringLiteral("TFormImageSave"), _("Bild Speichern"), 113, QStringLiteral("ButtonSelect"),
                     _("Aus&wählen"), TBitmapChoice::Save),
      command_(command)
{
    auto* test = new QPushButton(_("Test"), this);
    test->setObjectName(QStringLiteral("BT_Test"));
    test->setAutoDefault(false);
    ButtonRow()->insertWidget(0, test);
    connect(test, &QPushButton::clicked, this, [this] { Test(); });
}

void TFormImageSave::Test()
{
    // The edit holds the file as a script writes it: a quoted text.
    TParamList params;
    params.AddString(QStringLiteral("File"), StripQuotes(FileEdit()->text()));
    QString outcome = Format(_("Ergebnis = %s"), {_("gespeichert")});
    try {
        command_.Run(params);
    } catch (const TDravikException& e) {
        outcome = e.Message();
    }
    QMessageBox box(QMessageBox::Information, windowTitle(), outcome, QMessageBox::Ok, this);
    box.setObjectName(QStringLiteral("MSG_TestResult"));
    box.exec();
}

}  // namespace dv
