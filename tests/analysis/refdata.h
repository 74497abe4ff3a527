#pragma once
// Shared by the analysis tests: the reference cases that make_measure_refs.py and
// make_spectrum_refs.py write, test tones, and a fixture resetting the curve store and the FFT
// engine.
//
// The one file format: "case NAME key=value ..." opens a case; the numbers after it, up to "end",
// are its values, or, after a line "vector NAME", the named vector. Numbers are read with strtod,
// so nan and inf are numbers too. Lines starting with "#" are comments.
#include "analysis/_fft.h"
#include "analysis/curvestore.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

namespace dv::analysis::test {

struct TRefCase {
    std::string header;  // the "case" line, for messages
    std::string name;
    std::map<std::string, std::string> params;
    std::vector<double> values;
    std::map<std::string, std::vector<double>> vectors;
    std::vector<double> input;  // the values of the latest "input" case before this one

    double Number(const std::string& key) const { return std::strtod(params.at(key).c_str(), nullptr); }
    int Int(const std::string& key) const { return std::stoi(params.at(key)); }
    const std::vector<double>& Vector(const std::string& key) const { return vectors.at(key); }
};

// The cases of a file; "input" cases are not listed but handed to the cases that follow them.
inline std::vector<TRefCase> LoadRefCases(const std::string& file)
{
    std::ifstream in(std::string(DV_TEST_DATA_DIR) + "/analysis/data/" + file);
    std::vector<TRefCase> cases;
    std::vector<double> input;
    std::vector<double>* target = nullptr;
    for (std::string line, word; std::getline(in, line);) {
        std::istringstream words(line);
        if (!(words >> word) || word[0] == '#' || word == "end") continue;
        if (word == "vector" && target != nullptr && words >> word) {
            target = &cases.back().vectors[word];
        } else if (word == "case") {
            if (!cases.empty() && cases.back().name == "input") input = cases.back().values;
            TRefCase& c = cases.emplace_back();
            c.header = line;
            c.input = input;
            words >> c.name;
            while (words >> word) c.params[word.substr(0, word.find('='))] = word.substr(word.find('=') + 1);
            target = &c.values;
        } else if (target != nullptr) {
            for (std::istringstream numbers(line); numbers >> word;) target->push_back(std::strtod(word.c_str(), nullptr));
        }
    }
    std::erase_if(cases, [](const TRefCase& c) { return c.name == "input"; });
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
