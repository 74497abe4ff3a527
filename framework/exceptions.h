#pragma once
// The two failures a command raises: its own run-time failure, and the script run-time error.
#include <QString>
#include <exception>

namespace dv {

// A command's own run-time failure: a German message and an integer code.
class TDravikException : public std::exception {
public:
    TDravikException(QString message, int code = 0)
        : message_(std::move(message)), code_(code), utf8_(message_.toUtf8()) {}
    const QString& Message() const { return message_; }
    int Code() const { return code_; }
    const char* what() const noexcept override { return utf8_.constData(); }

private:
    QString message_;
    int code_;
    QByteArray utf8_;
};

// The script run-time error (undeclared variable, variable of the wrong kind ...).
class TDVRuntimeException : public TDravikException {
public:
    using TDravikException::TDravikException;
};

}  // namespace dv
