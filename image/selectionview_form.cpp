#include "image/selectionview_form.h"

#include <QMouseEvent>
#include <QPixmap>
#include <QRubberBand>

#include <algorithm>
#include <cmath>

namespace dv {

namespace {
constexpr QSize kViewBounds(480, 360);
// The least width and height, in view pixels, of a drag that draws an area.
constexpr int kLeastDrag = 2;

// The rectangle between two corners the mouse gave, its size their distance.
QRect Span(QPoint a, QPoint b)
{
    return QRect(std::min(a.x(), b.x()), std::min(a.y(), b.y()), std::abs(a.x() - b.x()), std::abs(a.y() - b.y()));
}
}  // namespace

QRect ViewToImage(const QRect& view, double factor)
{
    const auto scale = [factor](int v) { return static_cast<int>(std::lround(v / factor)); };
    return QRect(scale(view.x()), scale(view.y()), scale(view.width()), scale(view.height()));
}

QRect ImageToView(const QRect& image, double factor)
{
    const auto scale = [factor](int v) { return static_cast<int>(std::lround(v * factor)); };
    return QRect(scale(image.x()), scale(image.y()), scale(image.width()), scale(image.height()));
}

double FitFactor(const QSize& picture, const QSize& bounds)
{
    if (picture.isEmpty()) return 1.0;
    return std::min({1.0, static_cast<double>(bounds.width()) / picture.width(),
                     static_cast<double>(bounds.height()) / picture.height()});
}

TSelectionView::TSelectionView(const QString& objectName, const QString& frameName, QWidget* parent)
    : QLabel(parent), frame_(new QRubberBand(QRubberBand::Rectangle, this))
{
    setObjectName(objectName);
    frame_->setObjectName(frameName);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setMinimumSize(kViewBounds);
}

void TSelectionView::ShowImage(const QImage& image)
{
    factor_ = FitFactor(image.size(), kViewBounds);
    setPixmap(image.isNull() ? QPixmap() : QPixmap::fromImage(image.scaled(image.size() * factor_, Qt::KeepAspectRatio,
                                                                           Qt::SmoothTransformation)));
}

void TSelectionView::SetSelection(const QRect& imageArea)
{
    selection_ = imageArea;
    if (imageArea.isEmpty()) {
        frame_->hide();
        return;
    }
    frame_->setGeometry(ImageToView(imageArea, factor_));
    frame_->show();
}

void TSelectionView::mousePressEvent(QMouseEvent* event)
{
    anchor_ = event->position().toPoint();
    drawing_ = true;
    frame_->setGeometry(QRect(anchor_, QSize()));
    frame_->show();
}

void TSelectionView::mouseMoveEvent(QMouseEvent* event)
{
    if (drawing_) frame_->setGeometry(Span(anchor_, event->position().toPoint()));
}

void TSelectionView::mouseReleaseEvent(QMouseEvent* event)
{
    if (!drawing_) return;
    drawing_ = false;
    const QRect view = Span(anchor_, event->position().toPoint());
    // A click, or a drag by a shaking hand, draws no area: the one before stays, frame and all.
    if (view.width() < kLeastDrag || view.height() < kLeastDrag) {
        SetSelection(selection_);
        return;
    }
    frame_->setGeometry(view);
    selection_ = ViewToImage(view, factor_);
    emit SelectionDrawn(selection_);
}

}  // namespace dv
