#pragma once
// Shared by the spectrum and filter tests: the cases make_spectrum_refs.py writes ("case NAME key=value
// ..." lines, numbers, "end"), test tones, and a fixture resetting the curve store and the FFT engine.
#include "analysis/_fft.h"
#include "analysis/curvestore.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

namespace dv::analysis::test {

struct TSpectrumCase {
    std::string header;  // the "case" line, for messages
    std::string name;
    std::map<std::string, std::string> params;
    std::vector<double> values;
    std::vector<double> input;  // the values of the latest "input" case before this one

    double Number(const std::string& key) const { return std::stod(params.at(key)); }
    int Int(const std::string& key) const { return std::stoi(params.at(key)); }
};

// The cases of a file; "input" cases are not listed but handed to the cases that follow them.
inline std::vector<TSpectrumCase> LoadSpectrumCases(const std::string& file)
{
    std::ifstream in(std::string(DV_TEST_DATA_DIR) + "/analysis/data/" + file);
    std::vector<TSpectrumCase> cases;
    std::vector<double> input;
    for (std::string line, word; std::getline(in, line);) {
        std::istringstream words(line);
        if (!(words >> word) || word != "case") {
            std::istringstream numbers(line);  // "end" and the comments above the first case read no number
            for (double v = 0; !cases.empty() && numbers >> v;) cases.back().values.push_back(v);
            continue;
        }
        if (!cases.empty() && cases.back().name == "input") input = cases.back().values;
        TSpectrumCase& c = cases.emplace_back();
        c.header = line;
        c.input = input;
        words >> c.name;
        while (words >> word) c.params[word.substr(0, word.find('='))] = word.substr(word.find('=') + 1);
    }
    std::erase_if(cases, [](const TSpectrumCase& c) { return c.name == "input"; });
    if (cases.empty()) ADD_FAILURE() << "no cases in " << file;
    return cases;
}

// Sines (line, amplitude) over a period of n samples on a DC level; count samples (n when 0).
inline std::vector<double> Tones(double n, const std::vector<std::pair<double, double>>& tones, double dc = 0, std::size_t count = 0)
{
    std::vector<double> x(count > 0 ? count : static_cast<std::size_t>(n), dc);
    for (const auto& [line, amplitude] : tones) {
        for (std::size_t i = 0; i < x.size(); ++i) x[i] += amplitude * std::sin(2 * std::numbers::pi * line * static_cast<double>(i) / n);
    }
    return x;
}

class ScopeCurveTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ScopeStore().ClearAll();
        ScopeStore().ClearCrosses();
        ScopeStore().SetClip("", "");
        ScopeSettings() = TScopeSettings{};
        FFTDataNr = 256;
        FFTReal = 0;
        FFTWindow = 0;
        SuchBreite = 3;
        FFTGetMem();  // static buffers: they may stay in place
    }
    void TearDown() override { SetUp(); }

    static void SetCurve(const std::vector<double>& y, double rate)
    {
        std::vector<double> x(y.size());
        for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<double>(i) / rate;
        ScopeStore().Assign(1, x, y);  // curve 1, times in seconds
    }
};

}  // namespace dv::analysis::test
