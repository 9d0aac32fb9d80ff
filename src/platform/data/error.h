// Failure of a database operation, with the number and the description that ADO would give it, and the one helper that
// runs a statement which can fail so. Nothing above this folder catches anything else.
#pragma once

#include <QString>
#include <exception>
#include <utility>

namespace data {

// ADO's own numbers start at this value; they are printed as the signed 32-bit number that they are.
inline constexpr qint32 ErrorBase = qint32(0x800A0000U);

inline constexpr qint32 ErrorInvalidArgument = ErrorBase + 3001;
inline constexpr qint32 ErrorNoCurrentRecord = ErrorBase + 3021;
inline constexpr qint32 ErrorFeatureNotAvailable = ErrorBase + 3251;
inline constexpr qint32 ErrorItemNotFound = ErrorBase + 3265;
inline constexpr qint32 ErrorDataConversion = ErrorBase + 3421;
inline constexpr qint32 ErrorObjectClosed = ErrorBase + 3704;
inline constexpr qint32 ErrorObjectOpen = ErrorBase + 3705;
inline constexpr qint32 ErrorProviderNotFound = ErrorBase + 3706;
inline constexpr qint32 ErrorInvalidConnection = ErrorBase + 3709;
inline constexpr qint32 ErrorUnspecified = qint32(0x80004005U);   // files that cannot be opened, faults of the store
inline constexpr qint32 ErrorInCommand = qint32(0x80040E14U);     // the text of a statement
inline constexpr qint32 ErrorNoCommand = qint32(0x80040E0CU);     // no text at all
inline constexpr qint32 ErrorRowNotLocated = qint32(0x80040E38U); // the row changed since it was read
inline constexpr qint32 ErrorNotUpdatable = qint32(0x80040E21U);  // a value that its column refuses

class Error : public std::exception {
  public:
    Error() = default;
    // With the standard description of the number.
    explicit Error(qint32 number);
    Error(qint32 number, const QString& description) : number_(number), description_(description) {}

    qint32 Number() const { return number_; }
    const QString& Description() const { return description_; }
    const char* what() const noexcept override { return "database error"; }

  private:
    qint32 number_ = 0;
    QString description_;
};

// Runs exactly this statement and tells whether it ran to its end; `error` takes what failed. The routine that calls it
// goes on with its next statement either way.
template <typename Statement> bool Ran(Statement&& statement, Error* error = nullptr) noexcept {
    try {
        std::forward<Statement>(statement)();
        return true;
    } catch (const Error& failure) {
        if (error != nullptr) {
            *error = failure;
        }
    } catch (const std::exception&) {
        if (error != nullptr) {
            *error = Error(ErrorUnspecified);
        }
    }
    return false;
}

} // namespace data
