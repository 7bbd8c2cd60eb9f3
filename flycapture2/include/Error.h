// How every function of the camera library answers.
#ifndef KX_FLYCAPTURE2_ERROR_H
#define KX_FLYCAPTURE2_ERROR_H

#include "FlyCapture2Defs.h"

namespace FlyCapture2 {

/// Outcome of a call, returned by value. A call that succeeded answers PGRERROR_OK.
///
/// Copies share nothing; an object belongs to the thread that holds it. Strings that it returns
/// belong to it and live as long as it does.
class FC2_API Error {
public:
    /// Makes a success.
    Error();
    /// Copies the outcome with its causes.
    Error(const Error& other);
    virtual ~Error();

    /// Takes over the other's outcome with its causes.
    virtual Error& operator=(const Error& other);
    /// Whether both have the same type.
    virtual bool operator==(const Error& other) const;
    /// Whether this is an outcome of `type`.
    virtual bool operator==(const ErrorType& type) const;
    /// Whether the types differ.
    virtual bool operator!=(const Error& other) const;
    /// Whether this is no outcome of `type`.
    virtual bool operator!=(const ErrorType& type) const;

    /// Kind of outcome.
    virtual ErrorType GetType() const;
    /// One sentence for people; never null.
    virtual const char* GetDescription() const;
    /// Line of the library's source where it arose.
    virtual unsigned int GetLine() const;
    /// File of the library's source where it arose; never null.
    virtual const char* GetFilename() const;
    /// The outcome that led to this one; a success when there is none.
    virtual Error GetCause() const;
    /// When the library was built; never null.
    virtual const char* GetBuildDate() const;
    /// Text about the host and library to send to the maker's support; never null.
    virtual const char* CollectSupportInformation() const;
    /// Writes the outcome and its causes to the standard error stream.
    virtual void PrintErrorTrace() const;

private:
    struct ErrorData;

    ErrorType m_errorType;
    ErrorData* m_pErrorData;
};

} // namespace FlyCapture2

#endif
