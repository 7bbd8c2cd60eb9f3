// The camera maker's interface, first declaration.
#pragma once
#include "FlyCapture2Defs.h"
namespace FlyCapture2 {
class FC2_API Error {
public:
    virtual ~Error();
    virtual Error& operator=(const Error&);
    virtual bool operator==(const Error&) const;
    virtual bool operator==(const ErrorType&) const;
    virtual bool operator!=(const Error&) const;
    virtual bool operator!=(const ErrorType&) const;
    virtual ErrorType GetType() const;
    virtual const char* GetDescription() const;
    virtual unsigned int GetLine() const;
    virtual const char* GetFilename() const;
    virtual Error GetCause() const;
    virtual const char* GetBuildDate() const;
    virtual const char* CollectSupportInformation() const;
    virtual void PrintErrorTrace() const;
    Error();
    Error(const Error&);

private:
    ErrorType m_errorType;
    struct ErrorData;
    ErrorData* m_pErrorData;
};
} // namespace FlyCapture2
