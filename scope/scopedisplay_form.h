#pragma once
// The scope display control: draws the scope model and the curve store (graticule, zero point,
// the seven curve handles, crosses, vertical lines, measuring cursors) and, as TScopeDisplay, adds
// the division selectors, autoscale, the cursor readout, printing and storing a curve to a file.
// The second, smaller scope of the window shows the spectrum of the last FFT.
#include "scope/scopeview.h"

#include <QImage>
#include <QWidget>

#include <optional>

class QComboBox;
class QLabel;
class QPainter;
class QPushButton;

namespace dv::scope {

struct TScopeModel;

// A colour number of the window system (red in the low byte) as a QColor.
QColor ColorOf(int colorNumber);
// The colour a curve handle (1..7) is drawn in.
QColor HandleColor(const TScopeModel& model, int handle);

class TOsci : public QWidget {
    Q_OBJECT
public:
    enum class TKind { Main, Spectrum };
    explicit TOsci(TKind kind, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    // Draws the scope into any paint device of the widget's size (screen, image, printer).
    void Render(QPainter& painter) const;
    // The widget drawn into an image of its size.
    QImage Picture() const;
    TViewMapping Mapping() const;

    // Running: clicks place the measuring cursors; otherwise (envelope editing) they are reported
    // through EnvelopeClick.
    void SetRunning(bool running) { running_ = running; }
    bool Running() const { return running_; }
    // Cursor positions in pixel columns; unset cursors are not drawn.
    void SetCursors(std::optional<double> cursor1, std::optional<double> cursor2);
    std::optional<double> Cursor(int which) const { return which == 1 ? cursor1_ : cursor2_; }

signals:
    void CursorsMoved();
    // A click in envelope mode, in axis units: add (left button) or delete (right button).
    void EnvelopeClick(double x, double y, bool add);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void DrawGraticule(QPainter& p, const TViewMapping& map) const;
    void DrawCurves(QPainter& p, const TViewMapping& map) const;
    void DrawMarks(QPainter& p, const TViewMapping& map) const;
    void DrawSpectrum(QPainter& p, const TViewMapping& map) const;
    void DrawLabels(QPainter& p) const;
    QRect PlotRect() const;

    TKind kind_;
    bool running_ = true;
    std::optional<double> cursor1_;
    std::optional<double> cursor2_;
};

// Draws the spans of DecimateMinMax: one vertical stroke per column and the strokes joining them.
void DrawDecimated(QPainter& painter, const std::vector<TColumnSpan>& spans);

// The main scope with its selectors and buttons.
class TScopeDisplay : public QWidget {
    Q_OBJECT
public:
    explicit TScopeDisplay(QWidget* parent = nullptr);

    TOsci& Main() const { return *main_; }
    TOsci& Spectrum() const { return *spectrum_; }
    // Model -> selectors and labels, then a repaint; autoscales once for every new autoscale run.
    void Refresh();
    void AutoScaleNow();
    // Both scopes one above the other in one image.
    QImage Picture() const;
    // The main scope on a printer set up for PDF output; false when it cannot be written.
    bool PrintToPdf(const QString& path) const;
    // Writes curve handle 1..7 in the form the "FILE:" source reads (separator ";"); false when
    // the curve has no points or the file cannot be written.
    bool StoreCurve(int handle, const QString& path) const;

private:
    void UpdateReadout();
    void OnDivisionChanged();
    void PrintDialog();
    void StoreCurveDialog();

    TOsci* main_;
    TOsci* spectrum_;
    QComboBox* xDiv_;
    QComboBox* yDiv_;
    QComboBox* storeCurve_;
    QLabel* readout_;
    int autoScaleRunsSeen_ = 0;
    bool refreshing_ = false;
};

}  // namespace dv::scope
