#pragma once
// Procedure headings: the signature literal of a command and a script's own procedure heading are
// read by this one grammar.
#include "framework/scanner.h"
#include "framework/values.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace dv {

struct TDVParamDecl {
    QString name;       // as spelled in the heading
    TDVType type;
    QString typeText;   // as written: "string", "array of misc"
    bool isVar = false;
    bool hasDefault = false;
    QString defaultText;  // the default's source text, trimmed; empty for "= ;"
};

struct TDVSignature {
    QString name;
    std::vector<TDVParamDecl> params;

    // The parameter of that name, compared without regard to case; nullptr when none.
    const TDVParamDecl* Find(const QString& paramName) const;
    QStringList ParamNames() const;
};

// heading -> PROCEDURE name [ '(' param { ';' param } [';'] ')' ] [';']
// Reads from the scanner's next token; raises TDVSyntaxError on a malformed heading.
TDVSignature ParseProcedureHeading(TScanner& scanner);
// The same on a whole text, as the catalogue's signature literals are.
TDVSignature ParseSignature(const QString& literal);
// type -> NUMBER | STRING | BOOLEAN | MISC | ARRAY OF type; the type record of a type name.
TDVType ParseTypeName(TScanner& scanner, QString* typeText = nullptr);

}  // namespace dv
