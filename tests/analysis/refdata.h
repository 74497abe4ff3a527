#pragma once
// Reads the reference cases that make_measure_refs.py writes (format described there).
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace dv::analysis::test {

struct TRefCase {
    std::string name;
    std::vector<double> x;
    std::vector<double> y;
    std::map<std::string, double> params;
    std::map<std::string, double> expect;
};

inline std::vector<TRefCase> LoadRefCases(const std::string& file)
{
    std::ifstream in(std::string(DV_TEST_DATA_DIR) + "/analysis/data/" + file);
    if (!in) throw std::runtime_error("missing reference file " + file);
    std::vector<TRefCase> cases;
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string kind;
        fields >> kind;
        if (kind == "case") {
            cases.emplace_back();
            fields >> cases.back().name;
            continue;
        }
        if (cases.empty()) throw std::runtime_error("data before the first case in " + file);
        TRefCase& c = cases.back();
        if (kind == "x" || kind == "y") {
            std::size_t n = 0;
            fields >> n;
            std::vector<double>& v = kind == "x" ? c.x : c.y;
            v.resize(n);
            for (double& e : v) fields >> e;
        } else {
            std::string key;
            double value = 0;
            fields >> key >> value;
            (kind == "param" ? c.params : c.expect)[key] = value;
        }
        if (!fields && !fields.eof()) throw std::runtime_error("bad line in " + file + ": " + line);
    }
    return cases;
}

}  // namespace dv::analysis::test
