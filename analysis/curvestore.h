#pragma once
// The data side of the scope's display control: per-handle point lists, crosses, marker lines and
// the clip marks that bound a measurement. GUI-free; the scope window only draws it.
#include <QString>

#include <optional>

#include <span>
#include <vector>

namespace dv::analysis {

struct TPoint {
    double x = 0;  // time
    double y = 0;  // value
};

// Handles 1..4 are the measured curves (curve c is handle c), 5 the upper and 6 the lower
// envelope, 7 a further curve cleared with the others.
inline constexpr int kCurveHandles = 7;
inline constexpr int kUpperEnvelope = 5;
inline constexpr int kLowerEnvelope = 6;
inline constexpr int kExtraCurve = 7;

struct TMarkerLine {
    bool vertical = true;  // a time marker; false: a value marker
    double position = 0;
};

class TCurveStore {
public:
    // Points are kept as two arrays per handle so that measurements stream over plain doubles.
    int CurveValuesCount(int handle) const;
    TPoint GetValue(int handle, int index) const;
    void SetValue(int handle, int index, TPoint value);
    void Append(int handle, double x, double y);
    void RemoveAt(int handle, int index);
    void Clear(int handle);
    void ClearAll();
    void Assign(int handle, std::vector<double> x, std::vector<double> y);
    std::span<const double> X(int handle) const;
    std::span<const double> Y(int handle) const;
    std::span<double> MutableY(int handle);

    void ClearCrosses() { crosses_.clear(); }
    // Note the order: value first, time second.
    void SetCross(double y, double x) { crosses_.push_back({x, y}); }
    void FSetCrossSize(int size) { crossSize_ = size; }
    const std::vector<TPoint>& Crosses() const { return crosses_; }
    int CrossSize() const { return crossSize_; }

    void AddMarkerLine(TMarkerLine line) { markers_.push_back(line); }
    void ClearMarkerLines() { markers_.clear(); }
    const std::vector<TMarkerLine>& MarkerLines() const { return markers_; }

    // The clip marks of the scope call ("[CLIP:" start and stop texts), read with StrToFloatP.
    void SetClip(const QString& start, const QString& stop);
    const QString& ClipStart() const { return clipStart_; }
    const QString& ClipStop() const { return clipStop_; }
    // The 0-based sample range of a curve that a measurement uses: From is the first sample whose
    // X reaches the clip start (0 when none does, or when that is the last sample); To is the first
    // sample whose X reaches the clip stop (the last sample when none does, or when that index is
    // not below the last). Both scans start at index 0.
    void GetCurveZoomParams(int curve, int& from, int& to) const;

private:
    struct Curve {
        std::vector<double> x;
        std::vector<double> y;
    };
    const Curve& At(int handle) const;
    Curve& At(int handle);

    Curve curves_[kCurveHandles];
    std::vector<TPoint> crosses_;
    int crossSize_ = 3;
    std::vector<TMarkerLine> markers_;
    QString clipStart_;
    QString clipStop_;
};

// The scope window is one instance per library: its curves and settings are process-wide.
TCurveStore& ScopeStore();

// Setting texts of the scope that measurements read with StrToFloatP.
struct TScopeSettings {
    QString _Abtastrate;  // sample rate, Hz
    QString _Bandbreite;  // notch width for SINAD, Hz
    QString _Nutzsignal;  // frequency of the useful signal, Hz; may be empty
    unsigned char _FFTWindow = 0;
};
TScopeSettings& ScopeSettings();

// The measurement range of the curve functions (sample indices), reloaded by every function.
extern int RangeFrom;
extern int RangeTo;

// Reads a user-typed number: "," is the decimal separator unless the text holds a "."; nothing
// when the text holds no finite number ("inf" and "nan" are words, not numbers).
std::optional<double> ReadFloatP(const QString& s);

// ReadFloatP, with 0 for an unreadable text, never an error.
double StrToFloatP(const QString& s);

}  // namespace dv::analysis
