#pragma once
// Pieces the image dialogs share: the preview of a picture, and the choose button's file dialog.
#include <QImage>
#include <QLabel>
#include <QString>

class QWidget;

namespace dv {

// Shows a picture scaled down to fit; a label when there is none.
class TImagePreview : public QLabel {
    Q_OBJECT
public:
    TImagePreview(const QString& objectName, QWidget* parent);
    void ShowImage(const QImage& image);
};

enum class TBitmapChoice { Open, Save };
// The file dialog of a choose button (bitmap files, starting in the PROJEKTPFAD folder when that
// variable exists); the chosen path, or empty when the user cancelled.
QString ChooseBitmapFile(QWidget* parent, TBitmapChoice choice);

}  // namespace dv
