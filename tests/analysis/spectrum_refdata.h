#pragma once
// Reads the reference vectors that make_spectrum_refs.py writes, and compares numbers the way the
// spectrum tests need: relative to a scale, both values printed in full on failure.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iomanip>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace dv::analysis::test {

struct TSpectrumCase {
    std::string name;
    std::map<std::string, std::string> params;
    std::vector<double> values;

    double Number(const std::string& key) const { return std::stod(params.at(key)); }
    int Int(const std::string& key) const { return std::stoi(params.at(key)); }
    std::string Describe() const
    {
        std::string text = name;
        for (const auto& [key, value] : params) text += " " + key + "=" + value;
        return text;
    }
};

inline std::vector<TSpectrumCase> LoadSpectrumCases(const std::string& file)
{
    std::ifstream in(std::string(DV_TEST_DATA_DIR) + "/analysis/data/" + file);
    std::vector<TSpectrumCase> cases;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream words(line);
        std::string word;
        words >> word;
        if (word == "case") {
            TSpectrumCase c;
            words >> c.name;
            while (words >> word) {
                const auto eq = word.find('=');
                c.params[word.substr(0, eq)] = word.substr(eq + 1);
            }
            cases.push_back(std::move(c));
        } else if (word != "end" && !cases.empty()) {
            std::istringstream numbers(line);
            double v = 0;
            while (numbers >> v) cases.back().values.push_back(v);
        }
    }
    return cases;
}

// |actual - expected| <= tolerance * scale.
inline ::testing::AssertionResult NearScaled(double actual, double expected, double scale, double tolerance)
{
    if (std::abs(actual - expected) <= tolerance * scale) return ::testing::AssertionSuccess();
    std::ostringstream text;
    text << std::setprecision(17) << "actual " << actual << " expected " << expected << " (difference "
         << std::abs(actual - expected) << ", allowed " << tolerance * scale << ")";
    return ::testing::AssertionFailure() << text.str();
}

}  // namespace dv::analysis::test
