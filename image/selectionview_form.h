#pragma once
// A picture on which an area is drawn with the mouse: the frame follows the mouse and reports
// the area in the picture's pixels; set from outside it moves to that area. A click draws nothing.
#include <QImage>
#include <QLabel>
#include <QRect>

class QRubberBand;

namespace dv {

// Between the picture's pixels and the view's, which shows it scaled by factor.
QRect ViewToImage(const QRect& view, double factor);
QRect ImageToView(const QRect& image, double factor);
// The factor that fits a picture of that size into bounds, never enlarging.
double FitFactor(const QSize& picture, const QSize& bounds);

class TSelectionView : public QLabel {
    Q_OBJECT
public:
    TSelectionView(const QString& objectName, const QString& frameName, QWidget* parent);
    void ShowImage(const QImage& image);
    // Shows the frame over that area of the picture; an empty area hides it.
    void SetSelection(const QRect& imageArea);
    double Factor() const { return factor_; }

signals:
    // The user drew an area (picture pixels).
    void SelectionDrawn(const QRect& imageArea);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QRubberBand* frame_;
    QRect selection_;  // the area shown, picture pixels
    QPoint anchor_;
    double factor_ = 1.0;
    bool drawing_ = false;
};

}  // namespace dv
