#include "analysis/curvestore.h"

#include "framework/exceptions.h"
#include "framework/translate.h"

namespace dv::analysis {

int RangeFrom = 0;
int RangeTo = 0;

TCurveStore& ScopeStore()
{
    static TCurveStore store;
    return store;
}

TScopeSettings& ScopeSettings()
{
    static TScopeSettings settings;
    return settings;
}

const TCurveStore::Curve& TCurveStore::At(int handle) const
{
    if (handle < 1 || handle > kCurveHandles) {
        throw TDravikException(Format(_("Ungültige Kurvennummer %d"), {QString::number(handle)}));
    }
    return curves_[handle - 1];
}

TCurveStore::Curve& TCurveStore::At(int handle)
{
    return const_cast<Curve&>(static_cast<const TCurveStore*>(this)->At(handle));
}

int TCurveStore::CurveValuesCount(int handle) const { return static_cast<int>(At(handle).y.size()); }

TPoint TCurveStore::GetValue(int handle, int index) const
{
    const Curve& c = At(handle);
    if (index < 0 || static_cast<std::size_t>(index) >= c.y.size()) return {};
    return {c.x[static_cast<std::size_t>(index)], c.y[static_cast<std::size_t>(index)]};
}

void TCurveStore::SetValue(int handle, int index, TPoint value)
{
    Curve& c = At(handle);
    if (index < 0 || static_cast<std::size_t>(index) >= c.y.size()) return;
    c.x[static_cast<std::size_t>(index)] = value.x;
    c.y[static_cast<std::size_t>(index)] = value.y;
}

void TCurveStore::Append(int handle, double x, double y)
{
    Curve& c = At(handle);
    c.x.push_back(x);
    c.y.push_back(y);
}

void TCurveStore::RemoveAt(int handle, int index)
{
    Curve& c = At(handle);
    if (index < 0 || static_cast<std::size_t>(index) >= c.y.size()) return;
    c.x.erase(c.x.begin() + index);
    c.y.erase(c.y.begin() + index);
}

void TCurveStore::Clear(int handle)
{
    Curve& c = At(handle);
    c.x.clear();
    c.y.clear();
}

void TCurveStore::ClearAll()
{
    for (int h = 1; h <= kCurveHandles; ++h) Clear(h);
}

void TCurveStore::Assign(int handle, std::vector<double> x, std::vector<double> y)
{
    if (x.size() != y.size()) throw TDravikException(_("Zeit- und Wertereihe sind verschieden lang"));
    Curve& c = At(handle);
    c.x = std::move(x);
    c.y = std::move(y);
}

std::span<const double> TCurveStore::X(int handle) const { return At(handle).x; }

std::span<const double> TCurveStore::Y(int handle) const { return At(handle).y; }

std::span<double> TCurveStore::MutableY(int handle) { return At(handle).y; }

void TCurveStore::SetClip(const QString& start, const QString& stop)
{
    clipStart_ = start;
    clipStop_ = stop;
}

void TCurveStore::GetCurveZoomParams(int curve, int& from, int& to) const
{
    const Curve& c = At(curve);
    const int last = static_cast<int>(c.x.size()) - 1;
    auto firstAtOrBeyond = [&c](double mark) {
        for (std::size_t i = 0; i < c.x.size(); ++i) {
            if (c.x[i] >= mark) return static_cast<int>(i);
        }
        return -1;
    };
    from = 0;
    if (!clipStart_.isEmpty()) {
        const int i = firstAtOrBeyond(StrToFloatP(clipStart_));
        from = (i < 0 || i == last) ? 0 : i;
    }
    to = last;
    if (!clipStop_.isEmpty()) {
        const int i = firstAtOrBeyond(StrToFloatP(clipStop_));
        to = (i < 0 || i >= last) ? last : i;
    }
}

}  // namespace dv::analysis
