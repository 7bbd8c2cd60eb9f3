// FlyCapture2::Error and how the simulation makes one.
#include "base/sdk_error.h"

#include <atomic>
#include <cstdio>
#include <utility>

namespace FlyCapture2 {

/// An error with its data. For `fcsim::makeError`.
Error buildError(ErrorType type, std::string description, const char* file, unsigned line);

/// What a failure carries; shared by the copies of an error. A success carries nothing.
struct Error::ErrorData {
    std::string description;
    const char* file;
    unsigned line;
    std::atomic<unsigned> users{1};

    static ErrorData* share(ErrorData* data)
    {
        if (data != nullptr) {
            data->users.fetch_add(1, std::memory_order_relaxed);
        }
        return data;
    }
    static void drop(ErrorData* data)
    {
        if (data != nullptr && data->users.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete data;
        }
    }
    static Error build(ErrorType type, std::string description, const char* file, unsigned line)
    {
        Error error;
        error.m_errorType = type;
        error.m_pErrorData = new ErrorData{std::move(description), file, line};
        return error;
    }
    // The members are private to the SDK's class; a friend defined in here still reaches them.
    friend Error buildError(ErrorType type, std::string text, const char* inFile, unsigned atLine)
    {
        return build(type, std::move(text), inFile, atLine);
    }
};

Error::Error() : m_errorType(PGRERROR_OK), m_pErrorData(nullptr) {}

Error::Error(const Error& other)
    : m_errorType(other.m_errorType), m_pErrorData(ErrorData::share(other.m_pErrorData))
{}

Error::~Error()
{
    ErrorData::drop(m_pErrorData);
}

Error& Error::operator=(const Error& other)
{
    if (this != &other) {
        ErrorData::drop(m_pErrorData);
        m_errorType = other.m_errorType;
        m_pErrorData = ErrorData::share(other.m_pErrorData);
    }
    return *this;
}

bool Error::operator==(const Error& other) const
{
    return m_errorType == other.m_errorType;
}

bool Error::operator==(const ErrorType& type) const
{
    return m_errorType == type;
}

bool Error::operator!=(const Error& other) const
{
    return m_errorType != other.m_errorType;
}

bool Error::operator!=(const ErrorType& type) const
{
    return m_errorType != type;
}

ErrorType Error::GetType() const
{
    return m_errorType;
}

const char* Error::GetDescription() const
{
    return m_pErrorData == nullptr ? "Ok." : m_pErrorData->description.c_str();
}

unsigned int Error::GetLine() const
{
    return m_pErrorData == nullptr ? 0 : m_pErrorData->line;
}

const char* Error::GetFilename() const
{
    return m_pErrorData == nullptr ? "" : m_pErrorData->file;
}

Error Error::GetCause() const
{
    return {}; // failures of the simulation have no deeper one
}

const char* Error::GetBuildDate() const
{
    return __DATE__ " " __TIME__;
}

const char* Error::CollectSupportInformation() const
{
    return "simulated cameras";
}

void Error::PrintErrorTrace() const
{
    std::fprintf(stderr, "%s(%u): error %d: %s\n", GetFilename(), GetLine(),
                 static_cast<int>(m_errorType), GetDescription());
}

} // namespace FlyCapture2

namespace fcsim {

FlyCapture2::Error makeError(FlyCapture2::ErrorType type, std::string description, const char* file,
                             unsigned line)
{
    return FlyCapture2::buildError(type, std::move(description), file, line);
}

FlyCapture2::Error notImplemented()
{
    return makeError(FlyCapture2::PGRERROR_NOT_IMPLEMENTED,
                     "this operation is not part of the simulation");
}

} // namespace fcsim
