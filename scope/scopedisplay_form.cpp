#include "scope/scopedisplay_form.h"

#include "analysis/curvestore.h"
#include "framework/translate.h"
#include "scope/curvefile.h"
#include "scope/scopemodel.h"

#include <QComboBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace dv::scope {

namespace {

constexpr int kBottomMargin = 30;
constexpr int kSpectrumWidth = kPlotWidth / 2;
constexpr int kSpectrumHeight = kPlotHeight / 2;
// Colours of the handles that the "[SETCOL:" fields do not reach: upper and lower envelope and
// the further curve.
constexpr int kUpperEnvelopeColor = 0x0000FF;  // red
constexpr int kLowerEnvelopeColor = 0xFF8000;  // light blue
constexpr int kExtraCurveColor = 0xFFFFFF;
constexpr int kCrossColor = 0x0000FF;
const QColor kGridColor(90, 90, 90);
const QColor kAxisColor(160, 160, 160);
const QColor kCursorColor(255, 255, 255);

QString UnitOrDefault(const QString& unit, const char* fallback) { return unit.isEmpty() ? QString::fromUtf8(fallback) : unit; }

}  // namespace

QColor ColorOf(int n) { return QColor(n & 0xFF, (n >> 8) & 0xFF, (n >> 16) & 0xFF); }

QColor HandleColor(const TScopeModel& model, int handle)
{
    switch (handle) {
    case analysis::kUpperEnvelope: return ColorOf(kUpperEnvelopeColor);
    case analysis::kLowerEnvelope: return ColorOf(kLowerEnvelopeColor);
    case analysis::kExtraCurve: return ColorOf(kExtraCurveColor);
    default: return ColorOf(model.Colors[static_cast<std::size_t>(std::clamp(handle, 1, 4) - 1)]);
    }
}

void DrawDecimated(QPainter& p, const std::vector<TColumnSpan>& spans)
{
    const TColumnSpan* previous = nullptr;
    for (const TColumnSpan& s : spans) {
        if (previous) p.drawLine(QPointF(previous->xLast, previous->yLast), QPointF(s.xFirst, s.yFirst));
        if (s.bottom - s.top >= 1) p.drawLine(QPointF(s.column + 0.5, s.top), QPointF(s.column + 0.5, s.bottom));
        previous = &s;
    }
    if (spans.size() == 1) p.drawPoint(QPointF(spans[0].xFirst, spans[0].yFirst));
}

TOsci::TOsci(TKind kind, QWidget* parent) : QWidget(parent), kind_(kind)
{
    setObjectName(kind == TKind::Main ? QStringLiteral("Osci") : QStringLiteral("Osci_FFT"));
    setFixedSize(sizeHint());
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QSize TOsci::sizeHint() const
{
    return kind_ == TKind::Main ? QSize(kPlotWidth, kPlotHeight) : QSize(kSpectrumWidth, kSpectrumHeight);
}

QRect TOsci::PlotRect() const { return QRect(kPlotLeft, 0, width() - kPlotLeft, height() - kBottomMargin); }

TViewMapping TOsci::Mapping() const
{
    const TScopeModel& m = ScopeModel();
    TViewMapping map;
    if (kind_ == TKind::Main) {
        map.zeroX = m.ZeroX;
        map.zeroY = m.ZeroY;
        map.xStep = XDivisionSteps()[static_cast<std::size_t>(std::clamp<int>(m.XDivStep, 0, XDivisionSteps().size() - 1))];
        map.yStep = YDivisionSteps()[static_cast<std::size_t>(std::clamp<int>(m.YDivStep, 0, YDivisionSteps().size() - 1))];
        map.pixelsPerDivision = kPixelsPerDivision;
        return map;
    }
    // The spectrum is always shown whole: lines 0 .. n at their frequencies, on a scale of its own
    // that reaches half of any sample rate. Without a spectrum: 1 kHz per division.
    std::vector<double> freq(m.Spectrum.size());
    for (std::size_t i = 0; i < freq.size(); ++i) freq[i] = static_cast<double>(i) * m.SpectrumSpacing;
    const QRect r = PlotRect();
    map.pixelsPerDivision = kPixelsPerDivision / 2.0;
    const std::span<const double> steps = FrequencyDivisionSteps();
    const TAutoScale a = AutoScale({{freq, m.Spectrum}}, r.left(), r.width(), r.height(), map.pixelsPerDivision, steps);
    map.zeroX = a.valid ? a.zeroX : r.left();
    map.zeroY = a.valid ? a.zeroY : r.height() / 2.0;
    map.xStep = a.valid ? steps[static_cast<std::size_t>(a.xStep)] : 1000.0;
    map.yStep = YDivisionSteps()[static_cast<std::size_t>(a.yStep)];
    return map;
}

void TOsci::SetCursors(std::optional<double> cursor1, std::optional<double> cursor2)
{
    cursor1_ = cursor1;
    cursor2_ = cursor2;
    update();
    emit CursorsMoved();
}

void TOsci::Render(QPainter& p) const
{
    const TScopeModel& m = ScopeModel();
    const TViewMapping map = Mapping();
    p.fillRect(QRect(QPoint(0, 0), size()), ColorOf(m.Colors[kind_ == TKind::Main ? 4 : 5]));
    p.save();
    p.setClipRect(PlotRect());
    DrawGraticule(p, map);
    if (kind_ == TKind::Main) {
        DrawCurves(p, map);
        DrawMarks(p, map);
    } else {
        DrawSpectrum(p, map);
    }
    p.restore();
    DrawLabels(p);
}

QImage TOsci::Picture() const
{
    QImage image(size(), QImage::Format_RGB32);
    QPainter p(&image);
    Render(p);
    return image;
}

void TOsci::DrawGraticule(QPainter& p, const TViewMapping& map) const
{
    const QRect r = PlotRect();
    const double step = map.pixelsPerDivision;
    p.setPen(QPen(kGridColor, 1, Qt::DotLine));
    const double firstX = map.zeroX - std::floor((map.zeroX - r.left()) / step) * step;
    for (double x = firstX; x <= r.right(); x += step) p.drawLine(QPointF(x, r.top()), QPointF(x, r.bottom()));
    const double firstY = map.zeroY - std::floor((map.zeroY - r.top()) / step) * step;
    for (double y = firstY; y <= r.bottom(); y += step) p.drawLine(QPointF(r.left(), y), QPointF(r.right(), y));
    // The zero point: both axes through it and a mark at each edge.
    p.setPen(QPen(kAxisColor, 1));
    p.drawLine(QPointF(map.zeroX, r.top()), QPointF(map.zeroX, r.bottom()));
    p.drawLine(QPointF(r.left(), map.zeroY), QPointF(r.right(), map.zeroY));
    p.setBrush(kAxisColor);
    p.drawPolygon(QPolygonF({QPointF(r.left(), map.zeroY - 5), QPointF(r.left() + 8, map.zeroY), QPointF(r.left(), map.zeroY + 5)}));
    p.drawPolygon(QPolygonF({QPointF(map.zeroX - 5, r.bottom()), QPointF(map.zeroX, r.bottom() - 8), QPointF(map.zeroX + 5, r.bottom())}));
    p.setBrush(Qt::NoBrush);
}

void TOsci::DrawCurves(QPainter& p, const TViewMapping& map) const
{
    const TScopeModel& m = ScopeModel();
    const analysis::TCurveStore& store = analysis::ScopeStore();
    const QRect r = PlotRect();
    for (int handle = 1; handle <= analysis::kCurveHandles; ++handle) {
        if (store.CurveValuesCount(handle) == 0) continue;
        QColor c = HandleColor(m, handle);
        c.setAlpha(std::clamp(m.Intensity, 40, 255));  // the beam intensity, never quite dark
        p.setPen(QPen(c, 1));
        DrawDecimated(p, DecimateMinMax(store.X(handle), store.Y(handle), map, r.left(), r.width()));
    }
}

void TOsci::DrawMarks(QPainter& p, const TViewMapping& map) const
{
    const TScopeModel& m = ScopeModel();
    const analysis::TCurveStore& store = analysis::ScopeStore();
    const QRect r = PlotRect();
    // Filled one pixel wide so that the mark lies exactly in the column of its X (an X on a column
    // boundary that rounding put a hair left of it still counts as that column).
    for (const TScopeLine& line : m.Lines) {
        const double x = std::floor(map.PixelX(line.x) + 1e-9);
        if (std::fabs(x) < 1e6) p.fillRect(QRectF(x, r.top(), 1, r.height()), ColorOf(line.color));
    }
    p.setPen(QPen(ColorOf(kCrossColor), 1));
    for (const analysis::TMarkerLine& marker : store.MarkerLines()) {
        if (marker.vertical) p.drawLine(QPointF(map.PixelX(marker.position), r.top()), QPointF(map.PixelX(marker.position), r.bottom()));
        else p.drawLine(QPointF(r.left(), map.PixelY(marker.position)), QPointF(r.right(), map.PixelY(marker.position)));
    }
    const double size = store.CrossSize() + 2;
    for (const analysis::TPoint& c : store.Crosses()) {
        const QPointF at(map.PixelX(c.x), map.PixelY(c.y));
        p.drawLine(at + QPointF(-size, -size), at + QPointF(size, size));
        p.drawLine(at + QPointF(-size, size), at + QPointF(size, -size));
    }
    p.setPen(QPen(kCursorColor, 1, Qt::DashLine));
    for (const std::optional<double>& cursor : {cursor1_, cursor2_}) {
        if (cursor) p.drawLine(QPointF(*cursor, r.top()), QPointF(*cursor, r.bottom()));
    }
}

void TOsci::DrawSpectrum(QPainter& p, const TViewMapping& map) const
{
    const TScopeModel& m = ScopeModel();
    p.setPen(QPen(ColorOf(m.Colors[0]), 1));
    for (std::size_t i = 0; i < m.Spectrum.size(); ++i) {
        const double x = map.PixelX(static_cast<double>(i) * m.SpectrumSpacing);
        p.drawLine(QPointF(x, map.PixelY(0)), QPointF(x, map.PixelY(m.Spectrum[i])));
    }
}

void TOsci::DrawLabels(QPainter& p) const
{
    const TScopeModel& m = ScopeModel();
    const TViewMapping map = Mapping();
    const QRect r = PlotRect();
    p.setPen(kAxisColor);
    const QString unitX = kind_ == TKind::Main ? UnitOrDefault(m.UnitX, "s") : QStringLiteral("Hz");
    const QString unitY = kind_ == TKind::Main ? UnitOrDefault(m.UnitY, "V") : UnitOrDefault(m.UnitY, "V");
    QString text = QStringLiteral("X: %1   Y: %2").arg(DivisionText(map.xStep, unitX), DivisionText(map.yStep, unitY));
    if (kind_ == TKind::Main) {
        for (std::size_t i = 0; i < m.CurveNames.size(); ++i) {
            if (!m.CurveNames[i].isEmpty()) text += QStringLiteral("   %1: %2").arg(i + 1).arg(m.CurveNames[i]);
        }
    }
    p.drawText(QRect(r.left(), r.bottom() + 1, r.width(), kBottomMargin - 1), Qt::AlignVCenter | Qt::AlignLeft, text);
}

void TOsci::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    Render(p);
}

void TOsci::mousePressEvent(QMouseEvent* event)
{
    const QPointF at = event->position();
    if (!PlotRect().contains(at.toPoint())) return;
    if (!running_) {
        const TViewMapping map = Mapping();
        emit EnvelopeClick(map.ValueX(at.x()), map.ValueY(at.y()), event->button() == Qt::LeftButton);
        return;
    }
    if (event->button() == Qt::LeftButton) SetCursors(at.x(), cursor2_);
    else if (event->button() == Qt::RightButton) SetCursors(cursor1_, at.x());
}

TScopeDisplay::TScopeDisplay(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("ScopeDisplay"));
    main_ = new TOsci(TOsci::TKind::Main, this);
    spectrum_ = new TOsci(TOsci::TKind::Spectrum, this);
    xDiv_ = new QComboBox(this);
    xDiv_->setObjectName(QStringLiteral("CB_XDiv"));
    yDiv_ = new QComboBox(this);
    yDiv_->setObjectName(QStringLiteral("CB_YDiv"));
    storeCurve_ = new QComboBox(this);
    storeCurve_->setObjectName(QStringLiteral("CB_StoreCurve"));
    for (int handle = 1; handle <= analysis::kCurveHandles; ++handle) storeCurve_->addItem(_("Kurve") + ' ' + QString::number(handle));
    readout_ = new QLabel(this);
    readout_->setObjectName(QStringLiteral("LB_Cursor"));
    auto button = [this](const char* name, const char* caption) {
        auto* b = new QPushButton(_(caption), this);
        b->setObjectName(QString::fromLatin1(name));
        return b;
    };
    QPushButton* autoScale = button("BT_Autoscale", "Autoscale");
    QPushButton* print = button("BT_Print", "Drucken");
    QPushButton* store = button("BT_StoreCurve", "Kurve speichern");

    auto* bar = new QHBoxLayout;
    bar->addWidget(new QLabel(_("X:"), this));
    bar->addWidget(xDiv_);
    bar->addWidget(new QLabel(_("Y:"), this));
    bar->addWidget(yDiv_);
    bar->addWidget(autoScale);
    bar->addWidget(readout_, 1);
    bar->addWidget(storeCurve_);
    bar->addWidget(store);
    bar->addWidget(print);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(main_);
    layout->addLayout(bar);
    layout->addWidget(spectrum_);

    connect(xDiv_, &QComboBox::currentIndexChanged, this, &TScopeDisplay::OnDivisionChanged);
    connect(yDiv_, &QComboBox::currentIndexChanged, this, &TScopeDisplay::OnDivisionChanged);
    connect(autoScale, &QPushButton::clicked, this, &TScopeDisplay::AutoScaleNow);
    connect(print, &QPushButton::clicked, this, &TScopeDisplay::PrintDialog);
    connect(store, &QPushButton::clicked, this, &TScopeDisplay::StoreCurveDialog);
    connect(main_, &TOsci::CursorsMoved, this, &TScopeDisplay::UpdateReadout);
    Refresh();
}

void TScopeDisplay::Refresh()
{
    TScopeModel& m = ScopeModel();
    refreshing_ = true;
    auto fill = [](QComboBox* box, std::span<const double> steps, const QString& unit, int current) {
        box->clear();
        for (double step : steps) box->addItem(DivisionText(step, unit));
        box->setCurrentIndex(current);
    };
    fill(xDiv_, XDivisionSteps(), UnitOrDefault(m.UnitX, "s"), m.XDivStep);
    fill(yDiv_, YDivisionSteps(), UnitOrDefault(m.UnitY, "V"), m.YDivStep);
    refreshing_ = false;
    if (m.AutoScaleRuns != autoScaleRunsSeen_) {
        autoScaleRunsSeen_ = m.AutoScaleRuns;
        AutoScaleNow();
    }
    UpdateReadout();
    main_->update();
    spectrum_->update();
}

void TScopeDisplay::OnDivisionChanged()
{
    if (refreshing_ || xDiv_->currentIndex() < 0 || yDiv_->currentIndex() < 0) return;
    TScopeModel& m = ScopeModel();
    m.XDivStep = xDiv_->currentIndex();
    m.YDivStep = yDiv_->currentIndex();
    UpdateReadout();
    main_->update();
}

void TScopeDisplay::AutoScaleNow()
{
    const analysis::TCurveStore& store = analysis::ScopeStore();
    std::vector<TCurveView> curves;
    for (int handle = 1; handle <= analysis::kCurveHandles; ++handle) curves.push_back({store.X(handle), store.Y(handle)});
    const TAutoScale a = AutoScale(curves, kPlotLeft, kPlotAreaWidth, kPlotAreaHeight, kPixelsPerDivision);
    if (!a.valid) return;
    TScopeModel& m = ScopeModel();
    m.ZeroX = static_cast<int>(std::lround(a.zeroX));
    m.ZeroY = static_cast<int>(std::lround(a.zeroY));
    refreshing_ = true;
    xDiv_->setCurrentIndex(a.xStep);
    yDiv_->setCurrentIndex(a.yStep);
    refreshing_ = false;
    OnDivisionChanged();
}

void TScopeDisplay::UpdateReadout()
{
    const std::optional<double> c1 = main_->Cursor(1);
    const std::optional<double> c2 = main_->Cursor(2);
    if (!c1 || !c2) {
        readout_->clear();
        return;
    }
    readout_->setText(CursorReadout(main_->Mapping(), *c1, *c2, UnitOrDefault(ScopeModel().UnitX, "s")));
}

QImage TScopeDisplay::Picture() const
{
    const QImage top = main_->Picture();
    const QImage bottom = spectrum_->Picture();
    QImage image(top.width(), top.height() + bottom.height(), QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter p(&image);
    p.drawImage(0, 0, top);
    p.drawImage(0, top.height(), bottom);
    return image;
}

bool TScopeDisplay::PrintToPdf(const QString& path) const
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printer.setPageOrientation(QPageLayout::Landscape);
    QPainter p;
    if (!p.begin(&printer)) return false;
    const QRect page = p.viewport();
    const double scale = std::min(page.width() / double(main_->width()), page.height() / double(main_->height()));
    p.scale(scale, scale);
    main_->Render(p);
    return p.end();
}

void TScopeDisplay::PrintDialog()
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageOrientation(QPageLayout::Landscape);
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() != QDialog::Accepted) return;
    QPainter p(&printer);
    const QRect page = p.viewport();
    const double scale = std::min(page.width() / double(main_->width()), page.height() / double(main_->height()));
    p.scale(scale, scale);
    main_->Render(p);
}

bool TScopeDisplay::StoreCurve(int handle, const QString& path) const
{
    const analysis::TCurveStore& store = analysis::ScopeStore();
    if (handle < 1 || handle > analysis::kCurveHandles || store.CurveValuesCount(handle) == 0) return false;
    TCurvePoints points;
    points.x.assign(store.X(handle).begin(), store.X(handle).end());
    points.y.assign(store.Y(handle).begin(), store.Y(handle).end());
    try {
        WriteCurveFile(path, points, ';');
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

void TScopeDisplay::StoreCurveDialog()
{
    const QString path = QFileDialog::getSaveFileName(this, _("Kurve speichern"), {}, _("Kurvendatei (*.txt *.csv)"));
    if (path.isEmpty()) return;
    StoreCurve(storeCurve_->currentIndex() + 1, path);
}

}  // namespace dv::scope
