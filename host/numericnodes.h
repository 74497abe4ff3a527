#pragma once
// Nodes for arithmetic on numbers, specialised when the script is read: the operator and the way
// each operand is read (a constant, a Number variable of the program or of the running procedure,
// any other node) are fixed in the node's type, so `X + I * 2` runs as two calls that read their
// variables and constant in place instead of five.
#include "host/expressions.h"

namespace dv::host {

// A number read the quickest way its expression allows: a constant, a Number variable of its own
// (read in place), or any other node.
class TNumberSource {
public:
    explicit TNumberSource(const TExpr& e);
    long double Get(TExec& ex) const
    {
        switch (kind_) {
        case TKind::Constant: return constant_;
        case TKind::Global: return ex.globals->Slot(slot_).value.number;
        case TKind::Local: return ex.frame->Slot(slot_).value.number;
        case TKind::Node: break;
        }
        return node_->Num(ex);
    }

private:
    enum class TKind : unsigned char { Constant, Global, Local, Node };
    TKind kind_ = TKind::Node;
    int slot_ = 0;
    long double constant_ = 0;
    const TExpr* node_;
};

// The node for `left op right` where both operands are numbers and op is arithmetic or a
// comparison (not and/or/xor).
TExprPtr MakeNumBinary(int line, int column, TOp op, TExprPtr left, TExprPtr right);

// The statement `target := value` for a Number variable of its own and a number value.
TStmtPtr MakeNumAssign(int line, std::unique_ptr<TVarRef> target, TExprPtr value);

}  // namespace dv::host
