#pragma once
// The host's parser as commands see it: expressions to syntax trees, and the project environment.
#include "framework/values.h"

#include <QString>

#include <memory>
#include <vector>

namespace dv {

// A node of the host's syntax tree; evaluating it gives a new value owned by the caller.
class TDVAbsy {
public:
    virtual ~TDVAbsy() = default;
    virtual TValuePtr Evaluate() const = 0;
};

using TDVAbsyPtr = std::unique_ptr<TDVAbsy>;

// An array literal ([1, 2, 3] or {72}{65}): its element list holds an unused entry at index 0
// (nullptr) and the elements at 1..N.
class TDVAbsyArray : public TDVAbsy {
public:
    explicit TDVAbsyArray(std::vector<TDVAbsyPtr> elements) : elements_(std::move(elements))
    {
        elements_.insert(elements_.begin(), nullptr);
    }
    const std::vector<TDVAbsyPtr>& Elements() const { return elements_; }
    TValuePtr Evaluate() const override;

private:
    std::vector<TDVAbsyPtr> elements_;
};

// The project environment of the running or edited script.
class TDVEnvironment {
public:
    virtual ~TDVEnvironment() = default;
    // Replaces the project-path placeholder of a file name by the project's folder.
    virtual QString ReplaceProjectPath(const QString& path) const = 0;
};

class TDVParser {
public:
    virtual ~TDVParser() = default;
    // Parses an expression text; raises the host's syntax error when it is malformed.
    virtual TDVAbsyPtr ParseExpression(const QString& text) = 0;
    // Parses an expression text; nullptr when it is malformed.
    virtual TDVAbsyPtr ParseSingleExpression(const QString& text) = 0;
    virtual TDVEnvironment& GetEnvironment() = 0;
};

// A file-name parameter as the commands use it: the project placeholder replaced by the project's
// folder when a parser is installed, the name unchanged otherwise.
QString ResolveProjectPath(const QString& fileName);

}  // namespace dv
